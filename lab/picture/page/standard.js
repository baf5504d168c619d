'use strict';
// The line through the standards of each detector, which follows the thresholds, and the quantities
// relative to the calibrator.
(() => {
  const {h} = Vex;

  function pointsOf(assay) {
    const points = [];
    for (const trace of Vex.model.traces) {
      if (trace.assay !== assay || trace.task.trim() !== 'STND' || !(trace.quantity > 0)) continue;
      if (!Vex.isShown(trace)) continue;
      const {cq} = Vex.cqOf(trace);
      if (cq !== null) points.push({x: Math.log10(trace.quantity), y: cq, trace});
    }
    return points;
  }

  // The line at the thresholds of the moment.
  let lines = {of: [], known: new Map()};
  Vex.standardLine = assay => {
    const {thresholds, plate, detector} = Vex.state;
    const of = [Vex.model, thresholds, plate, detector];
    if (of.some((each, i) => each !== lines.of[i])) lines = {of, known: new Map()};
    if (!lines.known.has(assay)) lines.known.set(assay, Vex.fitLine(pointsOf(assay)));
    return lines.known.get(assay);
  };

  // Of the analysis, where nothing was moved: it also has the limits and the interval.
  function analysed({detector, document: of}) {
    const found = (of.data.detectorResults || []).find(each => each.name === detector);
    return found && found.curve || null;
  }

  const hasSeveral = () => Vex.model.documents.length > 1;

  function curves() {
    const assays = [...Vex.model.assays.values()]
      .filter(assay => !Vex.state.detector || assay.detector === Vex.state.detector);
    return assays.map(assay => {
      const points = pointsOf(assay.key);
      return {assay, points, line: Vex.fitLine(points), analysed: analysed(assay)};
    }).filter(curve => curve.points.length > 0);
  }

  function draw(found) {
    const colouring = Vex.colouring();
    const byDetector = Vex.state.colourBy === 'detector';
    const lines = [];
    const marks = [];
    for (const {points, line} of found) {
      const look = colouring.of(points[0].trace);
      for (const {x, y, trace} of points) {
        const isPicked = Vex.state.picked.has(trace.key);
        marks.push({x, y, key: trace.key, look: colouring.of(trace), strong: isPicked,
          faint: Vex.state.picked.size > 0 && !isPicked, title: Vex.describeWell(trace.plate, trace.number)});
      }
      if (!line) continue;
      const places = points.map(point => point.x);
      const ends = [Math.min(...places), Math.max(...places)];
      lines.push({points: ends.map(x => ({x, y: line.intercept + line.slope * x})), width: 1.5,
        colour: byDetector && look.colour || 'var(--ink-soft)', dash: look.dash});
    }
    Vex.drawSvgChart(Vex.byId('standard-chart'), {
      label: `Cq against quantity of ${Vex.counted(found.length, 'assay')}; the table has the numbers`,
      height: 360, xTicks: ticksOf(marks), xLabel: 'quantity (logarithmic)', yLabel: 'Cq, cycles', lines, marks, xText: tick => Vex.number(10 ** tick, 3),
    });
  }

  // The quantities themselves where they are few, else whole decades.
  function ticksOf(marks) {
    const places = [...new Set(marks.map(mark => mark.x))];
    if (places.length <= 8) return places;
    const low = Math.floor(Math.min(...places));
    return Array.from({length: Math.ceil(Math.max(...places)) - low + 1}, (_, i) => low + i);
  }

  const percent = value => (value === null || value === undefined ? '' : `${(100 * value).toFixed(1)} %`);

  // 90 to 110 % is what the guidelines call a good curve.
  function judged(line) {
    if (line.efficiency === null || line.efficiency >= 0.9 && line.efficiency <= 1.1) return null;
    return h('span', {class: 'flag', title: 'outside 90 to 110 %'}, line.efficiency < 0.9 ? ' low' : ' high');
  }

  function row({assay, points, line, analysed: stated}) {
    const moved = Vex.state.thresholds.has(assay.key);
    const extra = moved || !stated ? null : stated;
    const interval = extra && extra.efficiencyLow !== undefined
      ? `95 %: ${percent(extra.efficiencyLow)} to ${percent(extra.efficiencyHigh)}` : null;
    const head = [h('th', {scope: 'row'}, assay.detector), hasSeveral() ? h('td', {}, assay.document.name) : null];
    if (!line) return h('tr', {}, head, h('td', {colspan: 7}, 'too few standards have a Cq'));
    return h('tr', {}, head,
      h('td', {class: 'number'}, Vex.fixed(line.slope, 3)), h('td', {class: 'number'}, Vex.fixed(line.intercept, 2)),
      h('td', {class: 'number', title: interval}, percent(line.efficiency), judged(line)),
      h('td', {class: 'number'}, Vex.fixed(line.rSquared, 4)),
      h('td', {class: 'number'}, extra && extra.limitOfDetection !== undefined ? Vex.number(extra.limitOfDetection) : ''),
      h('td', {class: 'number'}, points.length), h('td', {class: 'number'}, Vex.number(Vex.thresholdOf(assay.key), 3)));
  }

  function table(found) {
    const words = hasSeveral() ? ['Detector', 'Document'] : ['Detector'];
    const heads = [...words, 'Slope', 'Intercept', 'Efficiency', 'r²', 'Limit of detection', 'Wells', 'Threshold'];
    Vex.byId('standard-table').replaceChildren(h('table', {},
      h('thead', {}, h('tr', {}, heads.map((head, i) => h('th', {scope: 'col', class: i >= words.length ? 'number' : null}, head)))),
      h('tbody', {}, found.map(row))));
  }

  function show() {
    const found = curves();
    Vex.byId('standard').hidden = found.length === 0;
    if (found.length === 0) return;
    draw(found);
    table(found);
  }

  function relative() {
    const rows = Vex.model.documents.flatMap(of => (of.data.relative || []).map(each => ({...each, of})));
    Vex.byId('relative').hidden = rows.length === 0;
    if (rows.length === 0) return;
    const words = hasSeveral() ? ['Sample', 'Detector', 'Document'] : ['Sample', 'Detector'];
    const heads = [...words, 'ΔCq', '± SD', 'ΔΔCq', 'Ratio', 'from', 'to', 'Corrected for efficiency'];
    const cell = text => h('td', {class: 'number'}, text);
    Vex.byId('relative-table').replaceChildren(h('table', {},
      h('thead', {}, h('tr', {}, heads.map((head, i) => h('th', {scope: 'col', class: i >= words.length ? 'number' : null}, head)))),
      h('tbody', {}, rows.map(each => h('tr', {}, h('th', {scope: 'row'}, each.sample), h('td', {}, each.detector),
        hasSeveral() ? h('td', {}, each.of.name) : null,
        cell(Vex.fixed(each.deltaCq, 2)), cell(Vex.fixed(each.deviation, 2)), cell(Vex.fixed(each.deltaDeltaCq, 2)),
        cell(Vex.number(each.ratio)), cell(Vex.number(each.ratioLow)), cell(Vex.number(each.ratioHigh)),
        cell(Vex.number(each.correctedRatio)))))));
  }

  Vex.startStandard = () => {
    Vex.on('model', () => { show(); relative(); });
    Vex.on('colourBy detector plate picked theme', show);
    Vex.on('thresholds', Vex.inFrame(show));
    new ResizeObserver(Vex.inFrame(show)).observe(Vex.byId('standard'));
  };
})();
