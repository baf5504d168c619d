'use strict';
// The table of wells: sorted by any column, searched, and copied as a spreadsheet takes it.
(() => {
  const {h} = Vex;
  const kRowsAtOnce = 1536;
  const view = {sort: 'well', isDown: false, rows: kRowsAtOnce, search: ''};
  let shown = [];       // the traces in the order of the table
  let rowOf = new Map(); // from a well's key to its rows

  const any = test => model => model.traces.some(test);
  const kColumns = [
    {id: 'well', head: 'Well', text: trace => trace.well, order: trace => trace.plate.index * 1e6 + trace.number},
    {id: 'plate', head: 'Plate', text: trace => trace.plate.name, when: model => model.plates.length > 1},
    {id: 'sample', head: 'Sample', text: trace => trace.sample},
    {id: 'detector', head: 'Detector', text: trace => trace.detector},
    {id: 'task', head: 'Task', text: trace => Vex.taskName(trace.task)},
    {id: 'quantity', head: 'Quantity', number: trace => trace.quantity, digits: value => Vex.number(value),
      when: any(trace => trace.quantity !== undefined)},
    {id: 'cq', head: 'Cq', number: trace => Vex.cqOf(trace).cq, digits: value => Vex.fixed(value, 2),
      when: any(trace => trace.result), moves: true},
    {id: 'sdm', head: 'Cq, 2nd derivative', number: trace => trace.result?.sdm, digits: value => Vex.fixed(value, 2),
      when: any(trace => trace.result && trace.result.sdm !== undefined)},
    {id: 'estimate', head: 'Found quantity', number: estimate, digits: value => Vex.number(value),
      title: trace => trace.result?.estimate && !Vex.state.thresholds.has(trace.assay)
        ? `95 %: ${Vex.number(trace.result.estimate.low)} to ${Vex.number(trace.result.estimate.high)}` : null,
      when: any(trace => trace.result && trace.result.estimate), moves: true},
    {id: 'tm', head: 'Tm, °C', number: trace => Vex.mainPeak(trace)?.temperature, digits: value => Vex.fixed(value, 1),
      title: trace => trace.peaks.map(peak => `${Vex.fixed(peak.temperature, 1)} °C`).join(', '),
      when: any(trace => trace.peaks.length > 0)},
    {id: 'peaks', head: 'Peaks', number: trace => trace.peaks.length, digits: String,
      when: any(trace => trace.peaks.length > 0)},
    {id: 'note', head: 'Note', text: note, moves: true,
      when: any(trace => trace.result || !trace.isMeasured)},
  ];

  // From the line through the standards: it follows a threshold that was moved.
  function estimate(trace) {
    const found = trace.result?.estimate;
    if (!found || !Vex.state.thresholds.has(trace.assay)) return found?.quantity;
    const {cq} = Vex.cqOf(trace);
    const line = Vex.standardLine(trace.assay);
    return cq === null || !line ? undefined : 10 ** ((cq - line.intercept) / line.slope);
  }

  function note(trace) {
    if (!trace.isMeasured) return 'not measured';
    const {reason} = Vex.cqOf(trace);
    if (Vex.state.thresholds.has(trace.assay)) return reason;
    return trace.result ? trace.result.note || reason : '';
  }

  const columns = () => kColumns.filter(column => !column.when || column.when(Vex.model));
  const textOf = (column, trace) => {
    if (column.text) return column.text(trace);
    const value = column.number(trace);
    return Number.isFinite(value) ? column.digits(value) : '';
  };

  function compare(column) {
    const direction = view.isDown ? -1 : 1;
    if (column.text && !column.order) {
      return (one, other) => direction * Vex.compareTexts(column.text(one), column.text(other));
    }
    const value = column.order || column.number;
    return (one, other) => {  // wells without a number are last in both directions
      const [a, b] = [value(one), value(other)];
      if (!Number.isFinite(a) || !Number.isFinite(b)) return Number.isFinite(b) - Number.isFinite(a);
      return direction * (a - b);
    };
  }

  function matches(trace, words, list) {
    if (words.length === 0) return true;
    const text = list.map(column => textOf(column, trace)).join(' ').toLowerCase();
    return words.every(word => text.includes(word));
  }

  function select() {
    const list = columns();
    const words = view.search.toLowerCase().split(/\s+/).filter(Boolean);
    const onlyPicked = Vex.byId('only-picked').checked;
    const sorted = list.find(column => column.id === view.sort) || list[0];
    shown = Vex.model.traces.filter(trace => Vex.isShown(trace) &&
      (!onlyPicked || Vex.state.picked.has(trace.key)) && matches(trace, words, list));
    shown.sort((one, other) => compare(sorted)(one, other) || one.plate.index - other.plate.index ||
      one.number - other.number);
    return list;
  }

  function headOf(column) {
    const isSorted = column.id === view.sort;
    return h('th', {
      scope: 'col', class: column.number ? 'number' : null,
      'aria-sort': isSorted ? (view.isDown ? 'descending' : 'ascending') : null,
    }, h('button', {type: 'button', 'data-sort': column.id, onclick: () => sortBy(column.id)}, column.head,
      h('span', {class: 'arrow', 'aria-hidden': 'true'}, isSorted ? (view.isDown ? '▼' : '▲') : '')));
  }

  function sortBy(id) {
    view.isDown = view.sort === id && !view.isDown;
    view.sort = id;
    show();
    Vex.byId('wells-table').querySelector(`[data-sort="${id}"]`).focus();
  }

  function rowFor(trace, list) {
    const row = h('tr', {},
      h('td', {class: 'pick'}, h('input', {type: 'checkbox', 'aria-label': `Pick well ${trace.well}`,
        onchange: () => Vex.pick([trace.key], {toggle: true})})),
      list.map((column, i) => h(i ? 'td' : 'th', {
        class: column.number ? 'number' : null, scope: i ? null : 'row',
        title: column.title ? column.title(trace) : column.number || column.moves ? null : textOf(column, trace),
      }, textOf(column, trace))));
    row.trace = trace;
    row.addEventListener('pointerenter', () => Vex.set({hover: trace.key}));
    row.addEventListener('pointerleave', () => Vex.set({hover: null}));
    row.addEventListener('click', event => {
      if (event.target.closest('input') || String(getSelection()) !== '') return;
      Vex.pick([trace.key], {toggle: event.ctrlKey || event.metaKey || event.shiftKey});
    });
    return row;
  }

  function show() {
    const list = select();
    const rows = shown.slice(0, view.rows).map(trace => rowFor(trace, list));
    rowOf = new Map();
    for (const row of rows) {
      const {key} = row.trace;
      if (!rowOf.has(key)) rowOf.set(key, []);
      rowOf.get(key).push(row);
    }
    Vex.byId('wells-table').replaceChildren(h('table', {class: 'wells'},
      h('thead', {}, h('tr', {}, h('th', {scope: 'col', class: 'pick'}, h('span', {class: 'hidden'}, 'Picked')),
        list.map(headOf))), h('tbody', {}, rows)));
    const more = Vex.byId('wells-more');
    more.replaceChildren();
    if (shown.length > rows.length) {
      more.append(h('button', {type: 'button', class: 'tool',
        onclick: () => { view.rows += kRowsAtOnce; show(); }},
      `Show more of ${Vex.counted(shown.length, 'row')}`));
    } else if (shown.length === 0) {
      more.append(h('p', {class: 'message'}, Vex.model.traces.length ? 'No well is like this.' : 'The document has no wells.'));
    }
    paintPicked();
  }

  // Only what a threshold moves, so that dragging stays smooth.
  function refresh() {
    const list = columns();
    if (view.sort === 'cq' || view.sort === 'estimate' || view.sort === 'note') return show();
    for (const rows of rowOf.values()) {
      for (const row of rows) {
        list.forEach((column, i) => {
          if (!column.moves) return;
          const text = textOf(column, row.trace);
          const cell = row.cells[i + 1];
          if (cell.textContent !== text) cell.textContent = text;
        });
      }
    }
  }

  function paintPicked() {
    for (const [key, rows] of rowOf) {
      const isPicked = Vex.state.picked.has(key);
      for (const row of rows) {
        row.classList.toggle('picked', isPicked);
        row.cells[0].firstChild.checked = isPicked;
      }
    }
  }

  let hovered = [];
  function paintHover() {
    for (const row of hovered) row.classList.remove('hovered');
    hovered = rowOf.get(Vex.state.hover) || [];
    for (const row of hovered) row.classList.add('hovered');
  }

  // A text as a cell that a spreadsheet neither runs nor splits. "-1+cmd|x" is a formula, "-1" is not.
  Vex.cellText = text => {
    const line = text.replace(/[\t\r\n\v\f\u0085\u2028\u2029]+/g, ' ');
    const isFormula = /^\s*[=+@\-]/.test(line) && !/^\s*[+-]?\d+([.,]\d+)?\s*$/.test(line);
    if (line.startsWith('"')) return `"${line.replaceAll('"', '""')}"`;
    return isFormula ? `'${line}` : line;
  };

  // The table as tab-separated text: the picked wells, or all that are listed.
  Vex.tableText = () => {
    const list = columns();
    const picked = shown.filter(trace => Vex.state.picked.has(trace.key));
    const cell = (column, trace) => (column.number ? textOf(column, trace) : Vex.cellText(textOf(column, trace)));
    const rows = (picked.length ? picked : shown).map(trace => list.map(column => cell(column, trace)));
    return {count: rows.length,
      text: [list.map(column => column.head), ...rows].map(row => row.join('\t')).join('\n') + '\n'};
  };

  async function copy() {
    const {text, count} = Vex.tableText();
    let isDone = true;
    try {
      await navigator.clipboard.writeText(text);
    } catch {
      const area = h('textarea', {class: 'hidden', 'aria-hidden': 'true'});
      area.value = text;
      document.body.append(area);
      area.select();
      isDone = document.execCommand('copy');
      area.remove();
    }
    Vex.byId('copied').textContent = isDone ? `${Vex.counted(count, 'row')} copied` : 'the browser refuses to copy';
  }

  Vex.startTable = () => {
    const search = Vex.byId('search');
    search.addEventListener('input', Vex.inFrame(() => { view.search = search.value; show(); }));
    Vex.byId('only-picked').addEventListener('change', show);
    Vex.byId('copy').addEventListener('click', copy);
    Vex.on('model detector channel plate', show);
    Vex.on('thresholds', Vex.inFrame(refresh));
    Vex.on('picked', () => { if (Vex.byId('only-picked').checked) show(); else paintPicked(); });
    Vex.on('hover', paintHover);
  };
})();
