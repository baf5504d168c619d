'use strict';
// The charts of amplification and melting, and their controls.
(() => {
  const {h} = Vex;

  // Two or three buttons of which one is chosen.
  function choice(key, label, options) {
    const name = `choice-${key}`;
    return h('fieldset', {class: 'choice'}, h('legend', {class: 'hidden'}, label),
      options.map(([value, text]) => h('label', {},
        h('input', {type: 'radio', name, value, checked: Vex.state[key] === value,
          onchange: () => Vex.set({[key]: value})}), h('span', {}, text))));
  }

  function detectorField() {
    const {detectors} = Vex.model;
    if (detectors.length < 2) return null;
    const select = h('select', {id: 'detector', onchange: () => Vex.set({detector: select.value})},
      h('option', {value: ''}, 'all'), detectors.map(name => h('option', {value: name}, name)));
    select.value = Vex.state.detector;
    return h('label', {class: 'field'}, 'Detector ', select);
  }

  function channelField() {
    const unknown = Vex.model.plates.filter(plate => !plate.readings.known);
    const channels = unknown.map(plate => plate.readings.channels)
      .reduce((most, each) => (each.length > most.length ? each : most), []);
    if (channels.length < 2) return null;
    const select = h('select', {onchange: () => Vex.set({channel: Number(select.value)})},
      channels.map((name, i) => h('option', {value: i}, name)));
    select.value = Vex.state.channel;
    return h('label', {class: 'field'}, 'Stored ', select);
  }

  let isWaiting = false;  // for results

  function controls() {
    const hasResults = Vex.model.traces.some(trace => trace.result && trace.result.line);
    // A run that has just begun has none yet; what the reader wants comes back with them.
    if (!hasResults && Vex.state.values === 'corrected') [Vex.state.values, isWaiting] = ['raw', true];
    else if (hasResults && isWaiting) [Vex.state.values, isWaiting] = ['corrected', false];
    const reset = h('button', {type: 'button', id: 'reset-thresholds', class: 'tool',
      onclick: () => Vex.set({thresholds: new Map()})}, 'Reset thresholds');
    const place = Vex.byId('amplification-controls');
    const {model} = Vex;
    const shape = JSON.stringify([hasResults, model.detectors,
      model.plates.filter(plate => !plate.readings.known).map(plate => plate.readings.channels)]);
    if (place.shape === shape) return;  // a list that is open would close
    place.shape = shape;
    place.replaceChildren();
    for (const part of [detectorField(), channelField(),
      choice('scale', 'Axis', [['linear', 'Linear'], ['log', 'Log']]),
      hasResults ? choice('values', 'Readings', [['corrected', 'Corrected'], ['raw', 'Raw']]) : null, reset]) {
      if (part) place.append(part);
    }
    reset.hidden = Vex.state.thresholds.size === 0;
  }

  // The logarithm of a reading at or below zero does not exist.
  const forLog = values => Array.from(values, value => (value > 0 ? value : null));

  const amplificationTraces = () =>
    Vex.model.traces.filter(trace => trace.isMeasured && Vex.isShown(trace));

  function amplificationLine(trace) {
    const {state} = Vex;
    const values = state.values === 'corrected' ? Vex.corrected(trace) : trace.raw;
    if (!values) return {x: [], y: null};
    return {x: trace.plate.cycles.x, y: state.scale === 'log' ? forLog(values) : values};
  }

  const meltTraces = () => Vex.model.traces.filter(trace =>
    trace.isMeasured && trace.plate.melt.x.length > 0 && Vex.isShown(trace));

  function hint(chart) {
    const words = [];
    if (chart.all > chart.shown.length) {
      words.push(`${chart.shown.length.toLocaleString('en')} of ${Vex.counted(chart.all, 'curve')} are drawn; pick wells to see theirs.`);
    }
    const outside = Vex.model.plates.reduce((sum, plate) => sum + plate.readings.wellsLeftOut, 0);
    if (outside) words.push(`The readings of ${Vex.counted(outside, 'well')} are left out: a page has 65,536 curves and 16,777,216 readings of a plate.`);
    if (chart.shown.length) words.push('Drag to zoom, double-click to see all, click a curve to pick its well.');
    Vex.byId('amplification-hint').textContent = words.join(' ');
  }

  Vex.startCurves = () => {
    // Before the charts are told: what they draw depends on it.
    Vex.on('model', () => {
      controls();
      Vex.byId('melting').hidden = Vex.model.plates.every(plate => plate.melt.x.length === 0);
    });
    const isKnown = () => Vex.model.plates.some(plate => plate.readings.known);
    const amplification = Vex.amplification = new Vex.Chart({
      place: Vex.byId('amplification-chart'), label: 'Amplification curves',
      xLabel: () => (isKnown() ? 'cycle' : 'frame'),
      yLabel: () => (!isKnown() ? 'stored value'
        : Vex.state.values === 'corrected' ? 'fluorescence above baseline' : 'fluorescence'),
      xTip: x => `${isKnown() ? 'cycle' : 'frame'} ${x}`,
      traces: amplificationTraces, line: amplificationLine, log: () => Vex.state.scale === 'log',
      onDraw: chart => { Vex.placeThreshold(chart); hint(chart); },
    });
    amplification.emptyText = 'There are no amplification readings.';
    const temperature = {xLabel: () => 'temperature, °C', xTip: x => `${Vex.fixed(x, 1)} °C`};
    new Vex.Chart({
      ...temperature, place: Vex.byId('melting-chart'), label: 'Melting curves', yLabel: () => 'fluorescence',
      traces: meltTraces, line: trace => ({x: trace.plate.melt.x, y: trace.melt}),
    });
    new Vex.Chart({
      ...temperature, place: Vex.byId('derivative-chart'), label: 'Derivative of the melting curves',
      yLabel: () => '−dF/dT, per °C',
      traces: () => meltTraces().filter(trace => trace.meltX),
      line: trace => ({x: trace.meltX, y: trace.derivative}),
    });
    Vex.on('thresholds', () => {
      Vex.byId('reset-thresholds').hidden = Vex.state.thresholds.size === 0;
    });
  };
})();
