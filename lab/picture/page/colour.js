'use strict';
// What colour a well and its curves have. Groups beyond the colours of the palette repeat them with
// another mark on the plate and other dashes in the charts.
(() => {
  const kDashes = [[], [7, 4], [2, 3], [10, 3, 2, 3]];
  const kModes = {
    detector: {label: 'Detector', group: trace => trace.detector},
    sample: {label: 'Sample', group: trace => trace.sample},
    task: {label: 'Task', group: trace => Vex.taskName(trace.task)},
    quantity: {label: 'Quantity', number: trace => trace.quantity, isLog: true},
    cq: {label: 'Cq', number: trace => Vex.cqOf(trace).cq},
    tm: {label: 'Melting temperature', unit: '°C', number: trace => Vex.mainPeak(trace)?.temperature},
    plate: {label: 'Plate', group: trace => trace.plate.name},
  };
  const kTasks = {
    UNKN: 'unknown', STND: 'standard', NTC: 'no template', NAC: 'no amplification', NRT: 'no reverse transcriptase',
    POSC: 'positive control', BLNK: 'blank',
  };

  Vex.taskName = task => kTasks[task.trim()] || task.trim();
  Vex.mainPeak = trace => trace.peaks.reduce(
    (best, peak) => (!best || peak.height > best.height ? peak : best), null);

  // The ways of colouring that tell anything apart in these data.
  Vex.colourModes = model => Object.entries(kModes).filter(([, mode]) => {
    if (mode.number) return model.traces.some(trace => Number.isFinite(mode.number(trace)));
    return new Set(model.traces.map(mode.group).filter(Boolean)).size > 0 &&
      (mode !== kModes.plate || model.plates.length > 1);
  }).map(([name, mode]) => ({name, label: mode.label}));

  Vex.isDark = () => {
    if (Vex.isPrinting) return false;
    if (Vex.state.theme !== 'auto') return Vex.state.theme === 'dark';
    return matchMedia('(prefers-color-scheme: dark)').matches;
  };

  function mix(low, high, share) {
    const part = i => {
      const from = parseInt(low.slice(i, i + 2), 16);
      const to = parseInt(high.slice(i, i + 2), 16);
      return Math.round(from + (to - from) * share).toString(16).padStart(2, '0');
    };
    return `#${part(1)}${part(3)}${part(5)}`;
  }
  function onScale(scale, share) {
    const place = Math.min(Math.max(share, 0), 1) * (scale.length - 1);
    const index = Math.min(Math.floor(place), scale.length - 2);
    return mix(scale[index], scale[index + 1], place - index);
  }

  function scaleOf(mode, traces, palette) {
    const colours = Vex.isDark() ? palette.scaleDark : palette.scaleLight;
    const place = value => (mode.isLog ? Math.log10(value) : value);
    const numberOf = trace => {
      const value = mode.number(trace);
      return Number.isFinite(value) && (!mode.isLog || value > 0) ? value : null;
    };
    let low = Infinity;
    let high = -Infinity;
    for (const trace of traces) {
      const value = numberOf(trace);
      if (value === null) continue;
      low = Math.min(low, value);
      high = Math.max(high, value);
    }
    const share = value => (high > low ? (place(value) - place(low)) / (place(high) - place(low)) : 0.5);
    return {
      mode, low, high, colours, groups: null,
      of: trace => {
        const value = numberOf(trace);
        if (value === null) return {colour: null, mark: 0, dash: []};
        return {colour: onScale(colours, share(value)), mark: 0, dash: []};
      },
    };
  }

  function groupsOf(mode, traces, palette) {
    const colours = Vex.isDark() ? palette.dark : palette.light;
    const names = [...new Set(traces.map(mode.group).filter(Boolean))].sort(Vex.compareTexts);
    const looks = new Map(names.map((name, i) => [name, {
      colour: colours[i % colours.length],
      mark: Math.floor(i / colours.length) % kDashes.length,
      dash: kDashes[Math.floor(i / colours.length) % kDashes.length],
    }]));
    const none = {colour: null, mark: 0, dash: []};
    return {mode, groups: looks, of: trace => looks.get(mode.group(trace)) || none};
  }

  // The colouring of the moment: `of(trace)` is {colour, mark, dash}, without a colour where the
  // trace has no value; `groups` by name, or null for a scale from `low` to `high`.
  Vex.colouring = () => {
    const {model, state} = Vex;
    const mode = kModes[state.colourBy] || kModes.detector;
    const traces = model.traces.filter(Vex.isShown);
    const palette = model.data.palette;
    return mode.number ? scaleOf(mode, traces, palette) : groupsOf(mode, traces, palette);
  };

  // A mark of the plate and the legend, centred, of that radius.
  Vex.mark = (x, y, radius, look) => {
    const {s} = Vex;
    if (!look.colour) return s('circle', {cx: x, cy: y, r: radius, class: 'mark-none'});
    const solid = {cx: x, cy: y, r: radius, fill: look.colour};
    if (look.mark === 1) {
      return s('circle', {cx: x, cy: y, r: radius * 0.74, fill: 'none', stroke: look.colour,
        'stroke-width': radius * 0.52});
    }
    if (look.mark === 2) {
      return s('g', {}, s('circle', solid), s('circle', {cx: x, cy: y, r: radius * 0.36, class: 'mark-dot'}));
    }
    if (look.mark === 3) {
      return s('rect', {x: x - radius * 0.82, y: y - radius * 0.82, width: radius * 1.64,
        height: radius * 1.64, fill: look.colour});
    }
    return s('circle', solid);
  };

  Vex.drawLegend = (place, colouring) => {
    const {h, s} = Vex;
    place.replaceChildren();
    if (!colouring.groups) {
      if (!Number.isFinite(colouring.low)) return;
      const unit = colouring.mode.unit ? ` ${colouring.mode.unit}` : '';
      const stops = colouring.colours.map((colour, i) =>
        s('stop', {offset: i / (colouring.colours.length - 1), 'stop-color': colour}));
      place.append(h('span', {}, colouring.mode.label), h('span', {class: 'number'}, Vex.number(colouring.low)),
        s('svg', {class: 'ramp', viewBox: '0 0 120 10', 'aria-hidden': 'true', preserveAspectRatio: 'none'},
          s('defs', {}, s('linearGradient', {id: 'ramp'}, stops)),
          s('rect', {width: 120, height: 10, rx: 3, fill: 'url(#ramp)'})),
        h('span', {class: 'number'}, Vex.number(colouring.high) + unit),
        h('span', {class: 'hint'}, 'open circle: none'));
      return;
    }
    for (const [name, look] of colouring.groups) {
      place.append(h('button', {
        type: 'button', class: 'legend-item', title: `Pick the wells of ${name}`,
        onclick: event => pickGroup(colouring, name, event),
      }, s('svg', {viewBox: '0 0 14 14', 'aria-hidden': 'true'}, Vex.mark(7, 7, 5.5, look)), name));
    }
  };

  function pickGroup(colouring, name, event) {
    const keys = Vex.model.traces.filter(Vex.isShown)
      .filter(trace => colouring.mode.group(trace) === name).map(trace => trace.key);
    Vex.pick([...new Set(keys)], {add: event.shiftKey || event.ctrlKey || event.metaKey});
  }
})();
