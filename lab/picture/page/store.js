'use strict';
// What the reader has chosen, in one place. Parts of the page listen to the keys that they show.
(() => {
  const state = {
    picked: new Set(),      // keys of wells, "plate:well"
    hover: null,            // one such key
    colourBy: '',
    detector: '',           // '' is all
    channel: 0,             // of readings whose meaning is not known
    scale: 'linear',        // or 'log'
    values: 'corrected',    // or 'raw'
    thresholds: new Map(),  // by assay, where the reader has moved it
    plate: -1,              // the one plate that is shown; -1 is all
    theme: 'auto',          // or 'light' or 'dark'
  };
  const listeners = [];

  Vex.state = state;
  // Calls `listener` after any of `keys` has changed. "model" is the data.
  Vex.on = (keys, listener) => listeners.push({keys: keys.split(' '), listener});
  Vex.set = changes => {
    Object.assign(state, changes);
    Vex.tell(...Object.keys(changes));
  };
  Vex.tell = (...keys) => {
    for (const entry of listeners) {
      if (entry.keys.some(key => keys.includes(key))) entry.listener();
    }
  };

  // How a click or a key changes what is picked: it replaces, or with Ctrl or Shift adds.
  Vex.pick = (keys, {add = false, toggle = false} = {}) => {
    const next = new Set(add || toggle ? state.picked : []);
    const isSame = !add && !toggle && keys.length === state.picked.size &&
      keys.every(key => state.picked.has(key));
    for (const key of keys) {
      if (toggle && next.has(key) || isSame) next.delete(key);
      else next.add(key);
    }
    Vex.set({picked: next});
  };

  // The threshold of an assay: where the reader has put it, else that of the analysis.
  Vex.thresholdOf = assay => {
    if (state.thresholds.has(assay)) return state.thresholds.get(assay);
    const found = Vex.model.thresholds.get(assay);
    return found === undefined ? null : found;
  };

  // Whether a trace is in what the reader has chosen to see.
  Vex.isShown = trace => {
    if (state.plate >= 0 && trace.plate.index !== state.plate) return false;
    if (!trace.plate.readings.known) return trace.channel === state.channel;
    return state.detector === '' || trace.detector === state.detector;
  };

  // The results of a trace at the thresholds of the moment.
  Vex.cqOf = trace => {
    const threshold = Vex.thresholdOf(trace.assay);
    const moved = state.thresholds.has(trace.assay);
    if (!moved && trace.result) return {cq: trace.result.cq ?? null, reason: trace.result.reason || ''};
    if (trace.cqAt !== threshold || !trace.cqNow) {
      trace.cqNow = Vex.cqAt(trace, threshold);
      trace.cqAt = threshold;
    }
    return trace.cqNow;
  };
})();
