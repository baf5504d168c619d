'use strict';
// From the data of a report to what the page shows: plates, and traces. A trace is what one well
// has for one detector: its curves and its results.
(() => {
  const kLittle = new Uint8Array(new Uint16Array([1]).buffer)[0] === 1;

  function bytesOf(base64) {
    const text = atob(base64);
    const bytes = new Uint8Array(text.length);
    for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
    return bytes;
  }

  Vex.uint16 = base64 => {
    const bytes = bytesOf(base64);
    if (kLittle) return new Uint16Array(bytes.buffer);
    const view = new DataView(bytes.buffer);
    return Uint16Array.from({length: bytes.length / 2}, (_, i) => view.getUint16(2 * i, true));
  };
  Vex.float32 = base64 => {
    const view = new DataView(bytesOf(base64).buffer);
    return Float64Array.from({length: view.byteLength / 4}, (_, i) => view.getFloat32(4 * i, true));
  };

  // The readings of a packed curve in real units; NaN where one is missing.
  function readingsOf(curve, readings) {
    const stored = Vex.uint16(curve.values);
    const values = new Float64Array(stored.length);
    for (let i = 0; i < stored.length; ++i) values[i] = readings.offset + stored[i] * readings.step;
    for (const frame of curve.missing || []) values[frame] = NaN;
    return values;
  }

  // The frames of a stage with their places on its axis, ascending and without repeats: a run may
  // have read a cycle or a temperature twice, and the last reading counts.
  function stageOf(readings, stage, axis) {
    const places = new Map();
    for (let i = 0; i < readings.frames; ++i) {
      const isMelting = readings.stages[i] === 'm';
      if (isMelting !== (stage === 'm')) continue;
      const place = axis ? axis[i] : i + 1;
      if (place !== null && place !== undefined) places.set(place, i);
    }
    const sorted = [...places].sort((one, other) => one[0] - other[0]);
    return {x: Float64Array.from(sorted, pair => pair[0]), frames: sorted.map(pair => pair[1])};
  }

  function plateOf(data, documentOf, index) {
    const readings = data.readings;
    const plate = {
      index, data, document: documentOf, name: '', rows: data.rows, columns: data.columns,
      readings, wells: new Map(data.wells.map(well => [well.number, well])),
      cycles: stageOf(readings, 'a', readings.cycles),
      melt: stageOf(readings, 'm', readings.temperatures), curves: new Map(),
    };
    for (const curve of readings.curves) plate.curves.set(`${curve.well}/${curve.channel}`, curve);
    plate.measured = new Set(readings.curves.map(curve => curve.well));
    return plate;
  }

  Vex.wellName = (plate, number) => {
    const well = plate.wells.get(number);
    if (well) return well.name;
    if (!plate.columns) return String(number);
    return Vex.rowName(Math.floor((number - 1) / plate.columns)) + ((number - 1) % plate.columns + 1);
  };
  // A to Z, then AA, AB and so on.
  Vex.rowName = row => {
    let name = '';
    for (let rest = row + 1; rest > 0; rest = Math.floor((rest - 1) / 26)) {
      name = String.fromCharCode(65 + (rest - 1) % 26) + name;
    }
    return name;
  };

  // What a well holds, or is read through: a target and a channel each. A target is read through
  // the channel with the name of its reporter, and through the only one.
  function targetsOf(plate, well, hasTargets) {
    const channels = plate.readings.channels;
    const found = plate.wells.get(well);
    const targets = found && found.targets || [];
    if (!plate.readings.known) return channels.map((_, channel) => ({target: targets[0], channel}));
    if (!hasTargets) return channels.map((_, channel) => ({channel}));
    return targets.map(target => ({
      target, channel: channels.length === 1 ? 0 : channels.indexOf(target.reporter),
    }));
  }

  function traceOf(plate, number, {target, channel}) {
    const well = plate.wells.get(number) || {};
    const channelName = plate.readings.channels[channel] || '';
    const trace = {
      plate, number, key: `${plate.index}:${number}`, well: Vex.wellName(plate, number), channel,
      sample: well.sample || '', detector: target ? target.detector : channelName,
      task: target ? target.task : '', quantity: target ? target.quantity : undefined,
      reporter: target && target.reporter || '', result: null, peaks: [], meltX: null,
    };
    trace.assay = trace.detector && Vex.assayKey(plate.document, trace.detector);
    const curve = plate.curves.get(`${number}/${channel}`);
    if (!curve) return trace;
    // Decoded when first drawn, so that a page opens at once.
    let values = null;
    const take = stage => {
      values = values || readingsOf(curve, plate.readings);
      return Float64Array.from(stage.frames, frame => values[frame]);
    };
    let raw = null;
    let melt = null;
    Object.defineProperty(trace, 'raw', {get: () => (raw = raw || take(plate.cycles))});
    Object.defineProperty(trace, 'melt', {get: () => (melt = melt || take(plate.melt))});
    trace.isMeasured = true;
    return trace;
  }

  function tracesOf(plate) {
    const hasTargets = plate.data.wells.some(well => well.targets);
    const numbers = new Set([...plate.data.wells.filter(well => well.targets || well.sample)
      .map(well => well.number), ...plate.measured]);
    const traces = [];
    for (const number of [...numbers].sort((one, other) => one - other)) {
      const targets = targetsOf(plate, number, hasTargets);
      for (const target of targets.length ? targets : [{channel: -1}]) {
        traces.push(traceOf(plate, number, target));
      }
    }
    return traces;
  }

  function addResults(documentOf, traces) {
    const find = new Map(traces.map(trace =>
      [`${trace.plate.data.name}/${trace.number}/${trace.detector}`, trace]));
    const isStudy = documentOf.data.study;
    const traceOfEntry = entry => find.get(
      `${isStudy ? entry.plate : documentOf.plates[0].data.name}/${entry.well}/${entry.detector}`);
    for (const result of documentOf.data.results || []) {
      const trace = traceOfEntry(result);
      if (trace) trace.result = result;
    }
    for (const melting of documentOf.data.melting || []) {
      const trace = traceOfEntry(melting);
      if (!trace) continue;
      trace.peaks = melting.peaks;
      trace.meltX = documentOf.data.meltAxes[melting.axis];
      let derivative = null;
      Object.defineProperty(trace, 'derivative',
        {get: () => (derivative = derivative || Vex.float32(melting.derivative))});
    }
  }

  // Detectors of different documents are different assays, whatever they are called: each document
  // was analysed alone, with thresholds of its own.
  Vex.assayKey = (documentOf, detector) => `${documentOf.index}/${detector}`;

  function assaysOf(model) {
    const assays = new Map();
    for (const trace of model.traces) {
      if (!trace.detector || assays.has(trace.assay)) continue;
      assays.set(trace.assay, {key: trace.assay, detector: trace.detector, document: trace.plate.document});
    }
    return assays;
  }

  // The same name twice gets a number.
  function numbered(names) {
    const seen = new Map();
    return names.map(name => {
      seen.set(name, (seen.get(name) || 0) + 1);
      return seen.get(name) > 1 ? `${name} (${seen.get(name)})` : name;
    });
  }

  // What documents are called: the name of the file, behind as many of its folders as it takes to
  // tell it from the others.
  function namesOf(documents) {
    const paths = documents.map(each => each.data.path.split('/'));
    const tail = (path, count) => path.slice(-count).join('/');
    return numbered(paths.map(path => {
      let count = 1;
      const isShared = () => paths.some(other =>
        other.join('/') !== path.join('/') && tail(other, count) === tail(path, count));
      while (count < path.length && isShared()) ++count;
      return tail(path, count);
    }));
  }

  function nameAll(model) {
    namesOf(model.documents).forEach((name, i) => { model.documents[i].name = name; });
    const isTaken = plate => model.plates.some(other => other !== plate && other.data.name === plate.data.name);
    const names = model.plates.map(plate => {
      if (!isTaken(plate)) return plate.data.name;
      return plate.document.data.study ? `${plate.data.name}, ${plate.document.name}` : plate.document.name;
    });
    numbered(names).forEach((name, i) => { model.plates[i].name = name; });
  }

  // The largest plate that is drawn well by well.
  Vex.kMostDrawn = 6144;

  Vex.decode = data => {
    const model = {data, documents: [], plates: [], traces: []};
    for (const entry of data.documents) {
      const documentOf = {data: entry, plates: [], index: model.documents.length};
      for (const plate of entry.plates || []) {
        documentOf.plates.push(plateOf(plate, documentOf, model.plates.length));
        model.plates.push(documentOf.plates[documentOf.plates.length - 1]);
      }
      const traces = documentOf.plates.flatMap(tracesOf);
      addResults(documentOf, traces);
      model.documents.push(documentOf);
      for (const trace of traces) model.traces.push(trace);
    }
    nameAll(model);
    model.assays = assaysOf(model);
    model.byKey = new Map();
    for (const trace of model.traces) {
      if (!model.byKey.has(trace.key)) model.byKey.set(trace.key, []);
      model.byKey.get(trace.key).push(trace);
    }
    model.detectors = [...new Set(model.traces.map(trace => trace.detector).filter(Boolean))];
    return model;
  };
})();
