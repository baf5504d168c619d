'use strict';
// Puts the page together, and shows new data of the same documents: `vexReport.update(data)`.
(() => {
  const {h, byId} = Vex;
  const kThemes = {auto: 'Theme: system', light: 'Theme: light', dark: 'Theme: dark'};
  const kStates = {ZERO: 'not started', PROG: 'in progress', DONE: 'complete'};

  function title(model) {
    const names = model.documents.map(each => each.name);
    const text = names.length > 2 ? `${names[0]} and ${names.length - 1} more` : names.join(' and ') || 'Run report';
    byId('title').textContent = text;
    document.title = `${text} - run report`;
  }

  function chip(text, kind) { return h('span', {class: `chip ${kind || ''}`}, text); }

  // "96 wells", or "96 to 384 wells" of plates that differ.
  function span(numbers, noun) {
    const [low, high] = [Math.min(...numbers), Math.max(...numbers)];
    const each = numbers.length > 1 && low === high ? ' each' : '';
    return `${low === high ? '' : `${low.toLocaleString('en')} to `}${Vex.counted(high, noun)}${each}`;
  }

  // What a plate's status says is true of the run, not of a file that was cut off since.
  function statusOf(plate) {
    if ((plate.document.data.faults || []).length > 0) return {text: 'shown in part', kind: 'bad'};
    const code = plate.data.status.trim();
    return {text: kStates[code] || code, kind: {DONE: 'good', PROG: 'busy'}[code] || ''};
  }

  function checkChip({data, name}, isOnly) {
    const of = isOnly ? '' : `${name}: `;
    if (data.error) return chip(`${of || `${name}: `}not read`, 'bad');
    if (!data.findings) return null;
    const {errors, warnings} = data.findings;
    const text = errors ? Vex.counted(errors, 'error') : warnings ? Vex.counted(warnings, 'warning') : 'no errors';
    return chip(`${of}check: ${text}`, errors ? 'bad' : warnings ? 'busy' : 'good');
  }

  function summary(model) {
    const {documents, plates} = model;
    const chips = [];
    if (documents.length > 1) chips.push(chip(Vex.counted(documents.length, 'document')));
    if (plates.length > 1) chips.push(chip(Vex.counted(plates.length, 'plate')));
    if (plates.length) {
      const states = plates.map(statusOf);
      const texts = [...new Set(states.map(state => state.text))];
      const worst = ['bad', 'busy', ''].find(kind => states.some(state => state.kind === kind)) ?? 'good';
      chips.push(chip(texts.join(', '), worst),
        chip(span(plates.map(plate => plate.rows * plate.columns), 'well')),
        chip(span(plates.map(plate => plate.readings.frames), 'frame')));
    }
    chips.push(...documents.map(each => checkChip(each, documents.length === 1)).filter(Boolean));
    byId('summary').replaceChildren(...chips);
  }

  function messages(model) {
    const list = [];
    for (const {data, name, plates} of model.documents) {
      if (data.error) list.push(h('p', {class: 'message bad'}, data.error));
      for (const fault of (data.faults || []).slice(0, 5)) {
        list.push(h('p', {class: 'message bad'}, `${name} is shown in part. Byte ${fault.offset}: ${fault.what}`));
      }
      for (const plate of plates) list.push(...plateMessages(plate));
      if (data.analysisError) list.push(h('p', {class: 'message'}, `${name} has no Cq: ${data.analysisError}`));
    }
    const {note} = model.data;
    if (note) list.unshift(h('p', {class: 'message'}, note));
    else if (model.documents.length === 0) list.push(h('p', {class: 'message bad'}, 'The report has no documents.'));
    byId('messages').replaceChildren(...list);
  }

  function plateMessages(plate) {
    const words = [];
    const isDamaged = (plate.document.data.faults || []).length > 0;
    if (plate.readings.frames === 0) {
      words.push(`has no frames ${isDamaged ? 'that can be read' : 'yet'}, so there are no curves`);
    }
    if (plate.readings.frames > 0 && !plate.readings.known) words.push('was not recorded by this program, so the page shows the stored values, whose meaning it does not know');
    if (plate.data.wells.length === 0) words.push('has no plate setup: samples and detectors are not known');
    return words.map(text => h('p', {class: 'message'}, `${plate.name} ${text}.`));
  }

  function sections() {
    const shown = [...document.querySelectorAll('main section')].filter(section => !section.hidden);
    byId('sections').replaceChildren(...shown.map(section =>
      h('li', {}, h('a', {href: `#${section.id}`}, section.querySelector('h2').textContent))));
  }

  function colourField(model) {
    const select = byId('colour-by');
    const modes = Vex.colourModes(model);
    if (!modes.some(mode => mode.name === Vex.state.colourBy)) {
      const best = model.detectors.length > 1 ? 'detector' : 'sample';
      Vex.state.colourBy = (modes.find(mode => mode.name === best) || modes[0] || {name: 'detector'}).name;
    }
    // A list that is open would close.
    const shape = modes.map(mode => mode.name).join();
    if (select.shape !== shape) select.replaceChildren(...modes.map(mode => h('option', {value: mode.name}, mode.label)));
    select.shape = shape;
    select.value = Vex.state.colourBy;
    select.disabled = modes.length === 0;
  }

  function thresholdsOf(model) {
    const thresholds = new Map();
    for (const of of model.documents) {
      for (const each of of.data.detectorResults || []) {
        if (each.threshold !== undefined) thresholds.set(Vex.assayKey(of, each.name), each.threshold);
      }
    }
    return thresholds;
  }

  // The charts are drawn in the next frame. Until then the page is shorter, and a browser scrolls up.
  function keepPlace(work) {
    if (!Vex.model) return work();
    document.body.style.minHeight = `${document.body.scrollHeight}px`;
    work();
    requestAnimationFrame(() => requestAnimationFrame(() => {
      const top = scrollY;  // not earlier: the reader may scroll meanwhile
      document.body.style.minHeight = '';
      scrollTo({top, behavior: 'instant'});
    }));
  }

  // Shows the data. What the reader has chosen stays, as far as the data still have it.
  function update(data) {
    keepPlace(() => show(data));
  }

  function show(data) {
    if (data.version !== 1) {
      byId('messages').replaceChildren(h('p', {class: 'message bad'},
        `The page is for data of version 1, and these have version ${data.version}.`));
      return;
    }
    const model = Vex.model = Vex.decode(data);
    model.thresholds = thresholdsOf(model);
    const {state} = Vex;
    state.picked = new Set([...state.picked].filter(key => model.byKey.has(key)));
    if (!model.detectors.includes(state.detector)) state.detector = '';
    if (state.plate >= model.plates.length) state.plate = -1;
    colourField(model);
    byId('plate-title').textContent = model.plates.length > 1 ? 'Plates' : 'Plate';
    title(model);
    summary(model);
    messages(model);
    for (const id of ['plate', 'amplification', 'wells']) byId(id).hidden = model.plates.length === 0;
    Vex.tell('model');
    sections();
    byId('footer').textContent = ['Report', data.program && `by ${data.program}`, data.made && `made ${data.made}`,
      'curves drawn by uPlot (MIT licence)'].filter(Boolean).join(' · ');
  }

  function applyTheme() {
    const theme = Vex.isPrinting ? 'light' : Vex.state.theme;
    document.documentElement.dataset.theme = theme;
    byId('theme').textContent = kThemes[Vex.state.theme];
  }

  function startTheme() {
    byId('theme').addEventListener('click', () => {
      const order = ['auto', 'light', 'dark'];
      Vex.set({theme: order[(order.indexOf(Vex.state.theme) + 1) % 3]});
    });
    // The charts read the colours when they are told, so the theme is applied before.
    Vex.on('theme', applyTheme);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => Vex.tell('theme'));
    const print = isPrinting => () => {
      Vex.isPrinting = isPrinting;
      Vex.tell('theme');
    };
    addEventListener('beforeprint', print(true));
    addEventListener('afterprint', print(false));
    byId('print').addEventListener('click', () => window.print());
  }

  // A server of the page sends the data of a run that goes on. A browser has few connections to a
  // server, so a page that nobody sees gives its own back.
  function listen(path) {
    if (!path) return;
    const live = byId('live');
    const tell = (text, kind) => { live.hidden = false; live.textContent = text; live.className = `chip ${kind}`; };
    const url = new URL(path, location.href);
    let source = null;
    const close = () => { if (source) source.close(); source = null; };
    const open = () => {
      close();
      if (document.hidden) return;
      const opened = source = new EventSource(url);
      opened.onopen = () => tell('live', 'good');
      opened.onmessage = event => {
        url.searchParams.set('seen', event.lastEventId);
        tell('live', 'good');
        update(JSON.parse(event.data));
      };
      opened.onerror = () => {
        tell('connection lost, trying again', 'bad');
        if (opened.readyState === EventSource.CLOSED) setTimeout(() => opened === source && open(), 3000);
      };
    };
    document.addEventListener('visibilitychange', open);
    open();
  }

  startTheme();
  applyTheme();
  Vex.startPlates();
  Vex.startCurves();
  Vex.startStandard();
  Vex.startTable();
  Vex.startDetails();
  byId('colour-by').addEventListener('change', event => Vex.set({colourBy: event.target.value}));
  update(JSON.parse(byId('data').textContent));
  listen(JSON.parse(byId('events').textContent));
  window.vexReport = {update};
})();
