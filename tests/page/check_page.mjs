// Uses the report page as a user does: check_page.mjs VEX
//
// Makes pages with the command, opens them in a browser without a network, and selects wells,
// switches to the logarithmic scale, drags the threshold, sorts, copies and prints. axe-core checks
// the accessibility of the page. Exits with 77 if the browser or axe-core is missing.
import assert from 'node:assert/strict';
import {execFileSync, spawnSync} from 'node:child_process';
import {existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, statSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {dirname, join, resolve} from 'node:path';
import {fileURLToPath, pathToFileURL} from 'node:url';
import {Browser, browserPath} from './browser.mjs';

const vex = resolve(process.argv[2]);
const here = dirname(fileURLToPath(import.meta.url));
const axe = join(here, 'node_modules/axe-core/axe.min.js');
if (!browserPath() || !existsSync(axe)) {
  console.log(`skipped: ${browserPath() ? 'axe-core' : 'chromium'} is missing; scripts/setup installs it`);
  process.exit(77);
}

const folder = mkdtempSync(join(tmpdir(), 'vex-report-'));
const run = (...words) => execFileSync(vex, words, {cwd: folder, encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe']});
const report = (page, ...files) => spawnSync(vex, ['report', ...files, '-o', page], {cwd: folder, encoding: 'utf8'});
const urlOf = name => pathToFileURL(join(folder, name)).href;
let browser = null;

const kWells = 'well,sample,target,task,quantity,reporter\n';
// A text that would run as a script, or end the page, if it were not escaped.
const kHostile = '</script><img src=x onerror=alert(1)>"\'&<b>{{data}}';

function makeDocuments() {
  run('simulate', 'large.vex', '--wells', '384', '--cycles', '45', '--melt', '176');
  run('simulate', 'one.vex', '--seed', '1', '--melt', '30');
  run('simulate', 'two.vex', '--seed', '2', '--melt', '30');
  run('study', 'new', 'study.vex', 'one.vex', 'two.vex');
  run('simulate', 'short.vex', '--cycles', '1');
  mkdirSync(join(folder, 'one'));
  mkdirSync(join(folder, 'two'));
  run('simulate', 'one/run.vex', '--seed', '3', '--cycles', '40', '--melt', '30');
  run('simulate', 'two/run.vex', '--seed', '4', '--cycles', '30', '--wells', '384');
  writeFileSync(join(folder, 'wells.csv'), `${kWells}A1,"${kHostile.replaceAll('"', '""')}",T,UNKN,,FAM\n`);
  writeFileSync(join(folder, 'readings.csv'),
    'well,stage,cycle,time_s,temperature_c,fluorescence\nA1,amplification,1,0,60,1\n');
  run('simulate', 'names.vex', '--melt', '20', '--readings-out', 'long-readings.csv', '--wells-out', 'names.csv');
  const long = 'patient_2026_11_22_of_the_north_wing_sample_number_00000000';
  const [head, ...wells] = readFileSync(join(folder, 'names.csv'), 'utf8').trim().split('\n');
  const names = wells.map(line => line.split(',')).map(([well, sample, target, ...rest]) =>
    [well, sample && `${long}_${sample}`, target && `${target}_${long}`, ...rest].join(','));
  writeFileSync(join(folder, 'long.csv'), [head, ...names, ''].join('\n'));
  run('record', 'long.vex', '--readings', 'long-readings.csv', '--wells', 'long.csv');
  run('record', 'hostile.vex', '--readings', 'readings.csv', '--wells', 'wells.csv');
  const bytes = readFileSync(join(folder, 'one.vex'));
  writeFileSync(join(folder, 'damaged.vex'), bytes.subarray(0, bytes.length - 1000));
  writeFileSync(join(folder, 'empty.vex'), '');
}

const tests = {
  async 'PageOpensInEveryWindowWithoutAMessageOrARequest'() {
    for (const view of [{}, {dark: true}, {width: 390, height: 844, mobile: true}, {width: 427, height: 267, scale: 3}]) {
      const page = await browser.open(urlOf('large.html'), view);
      assert.deepEqual(page.messages, []);
      assert.deepEqual(page.requests.filter(url => !url.startsWith('file:') && !url.startsWith('data:')), []);
      await fits(page, view);
      await page.close();
    }
  },

  async 'PageOf384WellsIsSmallAndQuick'() {
    const size = statSync(join(folder, 'large.html')).size;
    assert.ok(size < 5e6, `the page has ${size} bytes`);
    const page = await browser.open(urlOf('large.html'));
    assert.equal(await page.run('Vex.model.traces.length'), 384);
    assert.equal(await page.run('Vex.model.traces[0].plate.readings.frames'), 221);
    console.log(`    ${size} bytes, drawn after ${Math.round(page.loadTime)} ms`);
    await page.close();
  },

  async 'WellsArePickedOnThePlateAndInThePlot'(page) {
    await page.click('.well:nth-child(3)');
    assert.deepEqual(await page.run('[...Vex.state.picked]'), ['0:3']);
    await page.click('.well:nth-child(5)', {modifiers: 2});
    assert.deepEqual(await page.run('[...Vex.state.picked]'), ['0:3', '0:5']);
    assert.equal(await page.run('document.querySelectorAll("tr.picked").length'), 2);
    assert.equal(await page.run('document.querySelectorAll(".well[aria-selected=true]").length'), 2);
    // A click on a curve selects its well; a click far from all curves selects none.
    const place = await placeOnCurve(page, '0:20', 0.97);
    await page.clickAt(place);
    const picked = await page.run('[...Vex.state.picked]');
    assert.equal(picked.length, 1);
    const away = await page.run(`(() => { const box = document.querySelector('#amplification .u-over').getBoundingClientRect();
      return {x: box.left + 20, y: box.top + 8}; })()`);
    await page.clickAt(away);
    assert.deepEqual(await page.run('[...Vex.state.picked]'), []);
  },

  async 'DraggingAcrossThePlatePicksARectangle'(page) {
    const from = await page.middle('.well:nth-child(2)');
    const to = await page.run(`(() => { const box = document.querySelectorAll('#plate [role=row]')[2]
      .children[3].getBoundingClientRect(); return {x: box.x + box.width / 2, y: box.y + box.height / 2}; })()`);
    await page.drag(from, to);
    assert.equal(await page.run('Vex.state.picked.size'), 9);
    await page.run('Vex.set({picked: new Set()})');
  },

  async 'HoveringShowsTheSameWellEverywhere'(page) {
    await page.mouse('mouseMoved', await placeOnCurve(page, '0:40', 0.9));
    await page.settle();
    const key = await page.run('Vex.state.hover');
    assert.match(key, /^0:\d+$/);
    assert.equal(await page.run('document.querySelectorAll(".well.hovered").length'), 1);
    assert.equal(await page.run('document.querySelector("tr.hovered").trace.key'), key);
    assert.ok(await page.run('!document.querySelector("#amplification .tip").hidden'));
  },

  async 'LogarithmsAndRawReadingsAreDrawn'(page) {
    await page.run('document.querySelector("input[name=choice-scale][value=log]").click()');
    await page.settle();
    const [low, high] = await page.run('(() => { const {min, max} = Vex.amplification.plot.scales.y; return [min, max]; })()');
    assert.ok(low > 0 && high > 10 * low, `${low} to ${high}`);
    await page.run('document.querySelector("input[name=choice-values][value=raw]").click()');
    await page.settle();
    assert.ok(await page.run('document.querySelector(".threshold").hidden'), 'raw readings have no threshold');
    await page.run('document.querySelector("input[name=choice-scale][value=linear]").click()');
    await page.run('document.querySelector("input[name=choice-values][value=corrected]").click()');
    await page.settle();
  },

  async 'CqFollowsTheThresholdThatIsDragged'(page) {
    const cqs = () => page.run('Vex.model.traces.map(trace => Vex.cqOf(trace).cq)');
    const before = await cqs();
    const cell = () => page.run('document.querySelector("table.wells tbody tr").cells[6].textContent');
    const text = await cell();
    const from = await page.middle('.threshold');
    await page.drag(from, {x: from.x, y: from.y - 40});
    const after = await cqs();
    const both = before.map((cq, i) => [cq, after[i]]).filter(pair => pair[0] !== null && pair[1] !== null);
    assert.ok(both.length > 200);
    for (const [low, high] of both) assert.ok(high > low);
    assert.notEqual(await cell(), text);
    await page.press('ArrowUp');
    assert.ok((await cqs())[0] > after[0], 'the keys move it, too');
    await page.click('#reset-thresholds');
    assert.deepEqual(await cqs(), before);
  },

  // The page and the library implement the same rule separately.
  async 'CqOfThePageIsThatOfTheLibrary'(page) {
    const differences = await page.run(`Vex.model.traces.filter(trace => trace.result).map(trace => {
      const {cq, reason} = Vex.cqAt(trace, Vex.thresholdOf(trace.assay));
      return [trace.well, cq, trace.result.cq ?? null, reason, trace.result.reason || ''];
    }).filter(([, one, other, why, reason]) => (one === null) !== (other === null) ||
      Math.abs(one - other) > 1e-9 || (other === null && why !== reason))`);
    assert.deepEqual(differences, []);
    assert.ok(await page.run('Vex.model.traces.filter(trace => trace.result.cq).length') > 200);
    const lines = await page.run(`Vex.model.documents[0].data.detectorResults.map(each => {
      const line = Vex.standardLine(Vex.assayKey(Vex.model.documents[0], each.name));
      return [line.slope - each.curve.slope, line.intercept - each.curve.intercept, line.rSquared - each.curve.rSquared];
    })`);
    assert.ok(lines.length > 0);
    for (const difference of lines.flat()) assert.ok(Math.abs(difference) < 1e-9, `${difference}`);
  },

  async 'TableSortsSearchesAndCopies'(page) {
    const first = () => page.run('document.querySelector("table.wells tbody tr").trace.well');
    await page.click('[data-sort=cq]');
    assert.equal(await page.run('document.querySelector("th[aria-sort]").getAttribute("aria-sort")'), 'ascending');
    const low = await page.run('Math.min(...Vex.model.traces.map(trace => Vex.cqOf(trace).cq).filter(cq => cq !== null))');
    assert.equal(await page.run('Vex.cqOf(document.querySelector("table.wells tbody tr").trace).cq'), low);
    await page.click('[data-sort=well]');
    assert.equal(await first(), 'A1');
    await page.click('[data-sort=well]');
    assert.equal(await first(), 'P24');
    await page.run('(() => { const field = document.querySelector("#search"); field.value = "B2 "; field.dispatchEvent(new Event("input")); })()');
    await page.settle();
    const found = await page.run('document.querySelectorAll("table.wells tbody tr").length');
    assert.ok(found > 0 && found < 50, `${found} rows`);
    await page.run('(() => { const field = document.querySelector("#search"); field.value = ""; field.dispatchEvent(new Event("input")); })()');
    await page.settle();
    await page.run('Vex.pick(["0:1", "0:2"])');
    const copied = (await page.run('Vex.tableText().text')).split('\n');
    assert.equal(copied.length, 4);  // the head, two wells, and the empty text after the last line end
    assert.equal(copied[0].split('\t')[0], 'Well');
    assert.equal(copied[1].split('\t').length, copied[0].split('\t').length);
    await page.click('[data-sort=well]');
    await page.run('Vex.set({picked: new Set()})');
  },

  async 'PlateIsUsedWithKeysAlone'(page) {
    await page.run('document.querySelector(".well").focus()');
    await page.press('ArrowRight');
    await page.press('ArrowDown');
    await page.press(' ');
    assert.deepEqual(await page.run('[...Vex.state.picked]'), ['0:26']);
    assert.match(await page.run('document.activeElement.getAttribute("aria-label")'), /^B2, /);
    await page.press('Escape');
    assert.equal(await page.run('Vex.state.picked.size'), 0);
  },

  async 'NewDataKeepWhatTheReaderChose'(page) {
    await page.run('Vex.pick(["0:7"]); Vex.set({scale: "log"})');
    const scroll = await page.run('scrollTo({top: 300, behavior: "instant"}), scrollY');
    await page.run('vexReport.update(JSON.parse(document.querySelector("#data").textContent))');
    await page.settle();
    assert.deepEqual(await page.run('[[...Vex.state.picked], Vex.state.scale, scrollY]'), [['0:7'], 'log', scroll]);
    // The reader scrolls before the charts of the new data are drawn.
    await page.run('vexReport.update(JSON.parse(document.querySelector("#data").textContent)); scrollTo({top: 150, behavior: "instant"})');
    await page.settle();
    assert.equal(await page.run('scrollY'), 150, 'new data do not undo scrolling');
    assert.equal(await page.run('document.querySelectorAll(".well").length'), 384);
    await page.run('Vex.set({picked: new Set(), scale: "linear"})');
  },

  async 'HoveringKeepsUpWithTheScreen'(page) {
    const box = await page.run(`(() => { const over = document.querySelector('#amplification .u-over');
      over.scrollIntoView({block: 'center', behavior: 'instant'});
      const {left, top, width, height} = over.getBoundingClientRect(); return {left, top, width, height}; })()`);
    const time = await page.run(`(() => {
      const chart = Vex.amplification;
      const begin = performance.now();
      for (let i = 0; i < 60; ++i) {
        chart.plot.setCursor({left: ${box.width} * i / 60, top: ${box.height} * 0.6});
        chart.follow();
      }
      return (performance.now() - begin) / 60;
    })()`);
    console.log(`    ${time.toFixed(2)} ms a move`);
    assert.ok(time < 16, `${time} ms a move`);
  },

  async 'PagePrints'(page) {
    const pdf = await page.pdf();
    assert.equal(pdf.subarray(0, 5).toString(), '%PDF-');
    const pages = (pdf.toString('latin1').match(/\/Type\s*\/Page\b/g) || []).length;
    assert.ok(pages >= 3 && pages < 40, `${pages} pages`);
    assert.equal(await page.run('Vex.isPrinting'), false);
    assert.deepEqual(page.messages, []);
  },

  async 'AxeFindsNothing'() {
    const source = readFileSync(axe, 'utf8');
    for (const [name, view] of [['one.html', {}], ['study.html', {dark: true, width: 390, height: 844, mobile: true}]]) {
      const page = await browser.open(urlOf(name), view);
      await page.run('document.querySelectorAll(".part").forEach(part => { part.open = true; })');
      await page.run(`${source}; 1`);
      const found = await page.run('axe.run().then(result => result.violations.map(each => ' +
        '`${each.id}: ${each.help}: ${each.nodes.slice(0, 3).map(node => node.html.slice(0, 120)).join(" | ")}`))');
      assert.deepEqual(found, [], name);
      await page.close();
    }
  },

  async 'StudyHasItsPlatesSideBySide'() {
    const page = await browser.open(urlOf('study.html'));
    const boxes = await page.run('[...document.querySelectorAll(".plate")].map(plate => plate.getBoundingClientRect().top)');
    assert.equal(boxes.length, 2);
    assert.equal(boxes[0], boxes[1]);
    await page.click('.plate-title');
    assert.equal(await page.run('Vex.amplification.shown.length'), 96);
    assert.deepEqual(page.messages, []);
    await page.close();
  },

  // Each document was analysed separately, and detectors of two documents may have the same name.
  async 'DocumentsKeepThresholdsAndStandardsApart'() {
    const page = await browser.open(urlOf('both.html'));
    const differences = await page.run(`Vex.model.documents.flatMap((of, i) => of.data.detectorResults.map(each => {
      const key = Vex.assayKey(of, each.name);
      const line = Vex.standardLine(key);
      return [Vex.thresholdOf(key) - each.threshold, line.slope - each.curve.slope, line.count - each.curve.wells];
    }))`);
    assert.ok(differences.length > 8, 'both documents have standards');
    for (const difference of differences.flat()) assert.ok(Math.abs(difference) < 1e-9, `${differences}`);
    const thresholds = await page.run('[0, 1].map(i => Vex.thresholdOf(Vex.model.documents[i].plates[0] && ' +
      'Vex.model.traces.find(trace => trace.plate.index === i && trace.detector).assay))');
    assert.notEqual(thresholds[0], thresholds[1]);
    assert.match(await page.run('document.querySelector("#standard-table").textContent'), /Document/);
    await page.close();
  },

  async 'FindingsPickWellsOfTheirOwnDocument'() {
    const page = await browser.open(urlOf('both.html'));
    const picked = await page.run(`(() => {
      const data = JSON.parse(document.querySelector('#data').textContent);
      data.documents.forEach(each => { each.quality = []; });
      data.documents[1].quality = [{problem: 'saturated', plate: '', wells: ['A3'], detector: '', text: 'A3 is saturated'}];
      vexReport.update(data);
      document.querySelector('#quality-list button').click();
      return [...Vex.state.picked];
    })()`);
    assert.deepEqual(picked, ['1:3']);
    assert.match(await page.run('document.querySelector("#quality-list").textContent'), /two\/run\.vex: A3/);
    await page.close();
  },

  async 'DocumentsOfTheSameNameAreToldApart'() {
    const page = await browser.open(urlOf('both.html'));
    assert.deepEqual(await page.run('Vex.model.plates.map(plate => plate.name)'), ['one/run.vex', 'two/run.vex']);
    assert.match(await page.run('document.title'), /^one\/run\.vex and two\/run\.vex/);
    const chips = await page.run('[...document.querySelectorAll("#summary .chip")].map(chip => chip.textContent)');
    assert.deepEqual(chips, ['2 documents', '2 plates', 'complete', '96 to 384 wells', '30 to 70 frames',
      'one/run.vex: check: no errors', 'two/run.vex: check: no errors']);
    await page.close();
  },

  async 'DamagedRunIsNotCalledCompleteOrNotStarted'() {
    const page = await browser.open(urlOf('damaged.html'));
    assert.equal(await page.run('document.querySelector("#summary .chip").textContent'), 'shown in part');
    assert.doesNotMatch(await page.run('document.body.innerText'), /no frames yet/);
    await page.close();
  },

  async 'CopiedTextsAreNoFormulas'(page) {
    const texts = {'-1+cmd|x': "'-1+cmd|x", '=1': "'=1", ' =1': "' =1", '@SUM(A1)': "'@SUM(A1)", '+A1': "'+A1",
      '-1': '-1', '-1.5': '-1.5', 'a\tb\n': 'a b ', '"a': '"""a"', 'plain - text': 'plain - text'};
    assert.deepEqual(await page.run(`${JSON.stringify(Object.keys(texts))}.map(Vex.cellText)`), Object.values(texts));
  },

  async 'AxesWritePowersWithoutAPlus'(page) {
    assert.deepEqual(await page.run('[1e6, 2.5e7, 1e-5, 1e5].map(value => Vex.number(value))'), ['1e6', '2.5e7', '1e-5', '100000']);
  },

  // A name of 60 letters without a space at which it could be broken.
  async 'LongNamesKeepThePageWithinItsWindow'() {
    for (const view of [{}, {width: 390, height: 844, mobile: true}]) {
      const page = await browser.open(urlOf('long.html'), view);
      const window = await fits(page, view);
      const cell = await page.run('Math.max(...[...document.querySelectorAll(".wells td")].map(each => each.offsetWidth))');
      const wide = await page.run('[...document.querySelectorAll("section > *, .card-head > *, .controls > *")].filter(each => each.offsetParent && each.getBoundingClientRect().right > innerWidth).map(each => each.id || each.className)');
      assert.deepEqual(wide, [], 'parts that leave the window');
      assert.ok(cell <= 360, `a cell is ${cell} wide`);
      const select = await page.run('Math.max(...[...document.querySelectorAll("select")].map(each => each.offsetWidth))');
      assert.ok(select < window, `a field is ${select} wide`);
      await page.close();
    }
  },

  async 'PrintedPageFitsThePaper'() {
    for (const name of ['large', 'study', 'long']) {
      const page = await browser.open(urlOf(`${name}.html`));
      await page.send('Emulation.setEmulatedMedia', {media: 'print'});
      await page.run('dispatchEvent(new Event("beforeprint"))');
      // A4 without its margins is 186 mm wide.
      await page.send('Emulation.setDeviceMetricsOverride', {width: 703, height: 1000, deviceScaleFactor: 1, mobile: false});
      await page.settle();
      const content = await page.run('document.documentElement.scrollWidth');
      assert.ok(content <= 703, `${name} is ${content} wide on paper of 703`);
      const widest = await page.run('Math.max(...[...document.querySelectorAll("table, .uplot")].filter(each => each.offsetParent).map(each => each.getBoundingClientRect().right))');
      assert.ok(widest <= 704, `${name} reaches to ${widest} on paper of 703`);
      await page.close();
    }
  },

  async 'RunOfOneFrameIsShown'() {
    const page = await browser.open(urlOf('short.html'));
    assert.equal(await page.run('Vex.amplification.shown.length'), 96);
    assert.deepEqual(page.messages, []);
    await page.close();
  },

  async 'TextsOfADocumentDoNotRun'() {
    const page = await browser.open(urlOf('hostile.html'));
    assert.deepEqual(page.messages, []);
    assert.equal(await page.run('document.querySelectorAll("img, main script").length'), 0);
    assert.equal(await page.run('Vex.model.traces[0].sample'), kHostile);
    assert.ok(await page.run(`document.querySelector('.wells').textContent.includes(${JSON.stringify(kHostile)})`));
    await page.close();
  },

  async 'PageOf65535WellsListsThemAndDrawsThoseThatArePicked'() {
    const page = await browser.open(urlOf('one.html'));
    const time = await page.run(`(() => {
      const data = JSON.parse(document.querySelector('#data').textContent);
      const plate = data.documents[0].plates[0];
      const well = plate.wells[0];
      const curve = plate.readings.curves[0];
      Object.assign(plate, {rows: 255, columns: 257});
      plate.wells = Array.from({length: 65535}, (_, i) => ({...well, number: i + 1, name: 'W' + (i + 1)}));
      plate.readings.curves = plate.wells.map(each => ({...curve, well: each.number}));
      Vex.state.values = 'raw';
      const begin = performance.now();
      vexReport.update(data);
      return performance.now() - begin;
    })()`);
    await page.settle();
    console.log(`    ${Math.round(time)} ms`);
    assert.match(await page.run('document.querySelector("#plates").textContent'), /too many to draw/);
    assert.match(await page.run('document.querySelector("#amplification-hint").textContent'), /of 65,535 curves are drawn/);
    await page.run('Vex.pick(["0:65535"])');
    assert.deepEqual(await page.run('Vex.amplification.shown.map(line => line.trace.number)'), [65535]);
    assert.deepEqual(page.messages, []);
    await page.close();
  },

  async 'DamagedAndEmptyFilesGetAPageThatSaysSo'() {
    for (const name of ['damaged', 'empty']) {
      const page = await browser.open(urlOf(`${name}.html`));
      assert.deepEqual(page.messages, []);
      assert.ok(await page.run('document.querySelectorAll(".message.bad").length') > 0, name);
      await page.close();
    }
  },
};

// On a phone, the browser makes its window as wide as the page.
async function fits(page, {width = 1280}) {
  const content = await page.run('document.documentElement.scrollWidth');
  assert.ok(content <= width, `the page is ${content} wide in a window of ${width}`);
  return width;
}

// The coordinates of the curve of a well in the window.
function placeOnCurve(page, key, share) {
  return page.run(`(() => {
    const chart = Vex.amplification;
    chart.place.scrollIntoView({block: 'center', behavior: 'instant'});
    const index = chart.shown.findIndex(line => line.trace.key === ${JSON.stringify(key)});
    const at = Math.round((chart.plot.data[0].length - 1) * ${share});
    const box = chart.plot.over.getBoundingClientRect();
    return {x: box.left + chart.plot.valToPos(chart.plot.data[0][at], 'x'),
      y: box.top + chart.plot.valToPos(chart.plot.data[index + 1][at], 'y')};
  })()`);
}

async function main() {
  makeDocuments();
  assert.equal(report('large.html', 'large.vex').status, 0);
  assert.equal(report('one.html', 'one.vex').status, 0);
  assert.equal(report('study.html', 'study.vex').status, 0);
  assert.equal(report('both.html', 'one/run.vex', 'two/run.vex').status, 0);
  assert.equal(report('long.html', 'long.vex').status, 0);
  assert.equal(report('hostile.html', 'hostile.vex').status, 0);
  assert.equal(report('short.html', 'short.vex').status, 0);
  assert.equal(report('damaged.html', 'damaged.vex').status, 1);
  assert.equal(report('empty.html', 'empty.vex').status, 1);
  browser = await Browser.start();
  const shared = await browser.open(urlOf('large.html'));
  let failed = 0;
  const only = process.argv[3];
  for (const [name, test] of Object.entries(tests)) {
    if (only && !name.includes(only)) continue;
    const begin = performance.now();
    try {
      await test(shared);
      console.log(`ok      ${name} (${Math.round(performance.now() - begin)} ms)`);
    } catch (error) {
      ++failed;
      console.log(`FAILED  ${name}\n${error.stack}`);
    }
  }
  assert.deepEqual(shared.messages, []);
  return failed;
}

let code = 1;
try {
  code = await main() ? 1 : 0;
} finally {
  if (browser) await browser.stop();
  rmSync(folder, {recursive: true, force: true});
}
process.exit(code);
