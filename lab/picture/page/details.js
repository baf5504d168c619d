'use strict';
// What the document says of the run, and what there is to say of the file.
(() => {
  const {h} = Vex;
  const kStates = {given: 'given', missing: 'missing', outside: 'elsewhere'};

  function table(heads, rows, attributes = {}) {
    return h('div', {class: 'scroll', tabindex: 0, role: 'region', 'aria-label': attributes.label},
      h('table', {}, h('thead', {}, h('tr', {}, heads.map(head => h('th', {scope: 'col'}, head)))),
        h('tbody', {}, rows)));
  }
  const row = cells => h('tr', {}, cells.map((cell, i) => (i ? h('td', {}, cell) : h('th', {scope: 'row'}, cell))));
  const list = pairs => h('dl', {}, pairs.filter(pair => pair[1] !== '' && pair[1] !== null && pair[1] !== undefined)
    .map(([name, value]) => h('div', {}, h('dt', {}, name), h('dd', {}, value))));

  function part(title, isOpen, ...content) {
    return h('details', {class: 'part', open: isOpen}, h('summary', {}, h('h3', {}, title)), ...content);
  }

  function runPart(plate) {
    const {data} = plate;
    const pairs = [['Plate', `${data.rows} × ${data.columns}, type ${data.type}`], ['Kind', data.kind],
      ['Assay', data.assay], ['Status', data.status]];
    for (const block of data.blocks) {
      const when = block.start ? `, ${block.start}${block.end ? ` to ${block.end}` : ''}` : '';
      pairs.push([`Data ${block.tag}`, `${Vex.counted(block.frames, 'frame')} of ${Vex.counted(block.wells, 'well')}${when}` +
        (block.recorded ? '' : '; the meaning of the readings is not known')]);
    }
    for (const setting of data.settings) pairs.push([setting.name, String(setting.value)]);
    if (data.dyes.length) pairs.push(['Required dyes', data.dyes.join(', ')]);
    const program = data.program && (data.program.text === undefined
      ? Vex.counted(data.program.bytes, 'byte') : h('pre', {}, data.program.text));
    return part('Settings', true, list(pairs), program ? h('h4', {}, 'Thermal cycling program') : null, program);
  }

  function detectorsPart({data}) {
    const rows = data.detectors.map(each => row([
      h('span', {}, h('span', {class: 'swatch', 'data-colour': each.colour}), each.name),
      each.reporter, each.quencher, each.autoBaseline ? 'automatic' : `${each.baselineStart}–${each.baselineEnd}`,
      each.autoThreshold ? 'automatic' : typeof each.threshold === 'number' ? Vex.number(each.threshold) : each.threshold,
      [each.description, each.comment, each.owner, each.location].filter(Boolean).join('; ')]));
    if (rows.length === 0) return part('Detectors', false, h('p', {class: 'message'}, 'The document has no detectors.'));
    const made = part(`Detectors (${rows.length})`, false,
      table(['Detector', 'Reporter', 'Quencher', 'Baseline', 'Threshold', 'Words'], rows, {label: 'Detectors'}));
    for (const swatch of made.querySelectorAll('.swatch')) swatch.style.background = swatch.dataset.colour;
    return made;
  }

  function miqePart({data}) {
    const items = data.miqe || [];
    const missing = items.filter(item => item.state === 'missing').length;
    const rows = items.map(item => h('tr', {class: `miqe-${item.state}`}, h('th', {scope: 'row'}, item.item),
      h('td', {}, item.section), h('td', {}, item.essential ? 'essential' : 'desirable'),
      h('td', {}, h('span', {class: `badge ${item.state}`}, kStates[item.state])), h('td', {}, item.value)));
    return part(`MIQE checklist (${missing ? `${missing} missing` : 'nothing missing'})`, true,
      h('p', {class: 'hint'}, 'What the MIQE guidelines ask of a publication, as far as the document can tell. ' +
        '“Elsewhere” is what plate documents do not hold.'),
      table(['Item', 'Part', 'Importance', 'State', 'What the document says'], rows, {label: 'MIQE checklist'}));
  }

  const kSeverities = {error: 'errors', warning: 'warnings', note: 'notes'};

  function checkPart({data}) {
    const {findings} = data;
    if (!findings) return null;
    const counts = Object.entries(kSeverities).filter(([, key]) => findings[key])
      .map(([name, key]) => Vex.counted(findings[key], name)).join(', ');
    const items = findings.findings.map(finding => h('li', {class: 'finding'},
      h('span', {class: `badge ${finding.severity}`}, finding.severity),
      h('strong', {}, `${finding.record ? `${finding.record}, ` : ''}byte ${finding.offset}`),
      h('p', {}, finding.problem), h('p', {class: 'hint'}, `Effect: ${finding.consequence}`),
      finding.remedy ? h('p', {class: 'hint'}, `Fix: ${finding.remedy}`) : null));
    return part(`Check (${counts || 'no findings'})`, findings.errors + findings.warnings > 0,
      items.length ? h('ul', {class: 'plain'}, items) : h('p', {class: 'message'}, 'The check found nothing.'),
      findings.leftOut ? h('p', {}, `and ${Vex.counted(findings.leftOut, 'finding')} more`) : null);
  }

  // A record, and those in it when it is opened: a plate of 384 wells has thousands.
  function recordItem(record) {
    const words = [h('code', {}, record.tag), ` ${record.value || ''} `,
      h('span', {class: 'hint'}, `offset ${record.offset}, ${Vex.counted(record.length, 'byte')}` +
        (record.known === false ? ', unknown tag' : ''))];
    if (!record.records) return h('li', {}, words);
    const inner = h('ul', {class: 'tree'});
    const item = h('details', {ontoggle: () => {
      if (item.open && !inner.firstChild) inner.append(...record.records.map(recordItem));
    }}, h('summary', {}, words, h('span', {class: 'hint'}, `, ${Vex.counted(record.records.length, 'record')}`)), inner);
    return h('li', {}, item);
  }

  function recordsPart({data}) {
    if (!data.records) return null;
    return part('Records of the file', false, h('ul', {class: 'tree'}, data.records.list.map(recordItem)),
      data.records.leftOut ? h('p', {}, `and ${Vex.counted(data.records.leftOut, 'record')} more`) : null);
  }

  function filePart({data}) {
    const reports = Vex.model.data;
    return part('File', true, list([['Path', data.path], ['Size', data.bytes === undefined ? '' :
      `${Vex.bytes(data.bytes)} (${data.bytes.toLocaleString('en')} bytes)`],
    ['SHA-256', data.sha256 ? h('code', {class: 'long'}, data.sha256) : ''],
    ['Report by', reports.program], ['Report made', reports.made]]));
  }

  let chosen = 0;
  function show() {
    const {plates, documents} = Vex.model;
    const select = Vex.byId('details-of');
    Vex.byId('details-field').hidden = plates.length < 2;
    if (chosen >= plates.length) chosen = 0;
    select.replaceChildren(...plates.map((plate, i) => h('option', {value: i}, plate.name)));
    select.value = chosen;
    const plate = plates[chosen];
    const of = plate ? plate.document : documents[0];
    const parts = plate ? [runPart(plate), detectorsPart(plate), miqePart(plate)] : [];
    if (of) parts.push(checkPart(of), recordsPart(of), filePart(of));
    Vex.byId('details').replaceChildren(...parts.filter(Boolean));
  }

  function quality() {
    const {documents} = Vex.model;
    const findings = documents.flatMap(of => (of.data.quality || []).map(finding => ({...finding, of})));
    Vex.byId('quality').hidden = findings.length === 0;
    const plateOf = ({of, plate: name}) =>
      (of.data.study ? of.plates.find(plate => plate.data.name === name) : of.plates[0]);
    const item = finding => {
      const plate = plateOf(finding);
      const keys = Vex.model.traces.filter(trace => trace.plate === plate && finding.wells.includes(trace.well))
        .map(trace => trace.key);
      const of = documents.length > 1 ? `${finding.of.name}: ` : '';
      return h('li', {}, `${of}${finding.text} `, keys.length ? showButton(finding, keys) : null);
    };
    const kinds = [...new Set(findings.map(finding => finding.problem))];
    Vex.byId('quality-list').replaceChildren(...kinds.map((kind, i) => {
      const some = findings.filter(finding => finding.problem === kind);
      return part(`${kind[0].toUpperCase()}${kind.slice(1)} (${some.length})`, i === 0 && some.length <= 8,
        h('ul', {class: 'plain tight'}, some.map(item)));
    }));
  }

  function showButton(finding, keys) {
    return h('button', {type: 'button', class: 'tool', onclick: () => {
      Vex.pick([...new Set(keys)]);
      Vex.byId('plate').scrollIntoView();
    }}, `Show ${finding.wells.length === 1 ? finding.wells[0] : Vex.counted(finding.wells.length, 'well')}`);
  }

  function spectra() {
    const plate = Vex.model.plates[chosen];
    const parts = plate ? [['pureDyes', 'Pure dyes'], ['background', 'Background']]
      .filter(([key]) => plate.data[key].some(entry => entry.values.length)) : [];
    Vex.byId('spectra').hidden = parts.length === 0;
    const place = Vex.byId('spectra-charts');
    place.replaceChildren();
    const colours = Vex.model.data.palette[Vex.isDark() ? 'dark' : 'light'];
    const looks = i => ({colour: colours[i % colours.length], mark: 0, dash: [[], [7, 4], [2, 3]][Math.floor(i / colours.length) % 3]});
    for (const [key, title] of parts) {
      const chart = h('div', {class: 'chart'});
      const entries = plate.data[key].filter(entry => entry.values.length);
      place.append(h('figure', {}, h('figcaption', {}, title), chart,
        h('div', {class: 'legend'}, entries.map((entry, i) => h('span', {class: 'legend-item'},
          Vex.s('svg', {viewBox: '0 0 14 14', 'aria-hidden': 'true'}, Vex.mark(7, 7, 5.5, looks(i))), entry.name)))));
      Vex.drawSvgChart(chart, {
        label: `${title}: spectra of ${entries.map(entry => entry.name).join(', ')}`, xLabel: 'filter', yLabel: 'reading',
        wholeX: true, height: 260,
        lines: entries.map((entry, i) => ({...looks(i), points: entry.values.map((y, x) => ({x: x + 1, y}))})),
      });
    }
  }

  Vex.startDetails = () => {
    Vex.byId('details-of').addEventListener('change', event => {
      chosen = Number(event.target.value);
      show();
      spectra();
    });
    Vex.on('model', () => { show(); quality(); spectra(); });
    Vex.on('theme', spectra);
  };
})();
