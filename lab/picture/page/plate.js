'use strict';
// The plates: an SVG each, whose wells are the cells of a grid for keyboard and screen reader.
(() => {
  const kPitch = 20;  // of wells, in units of the drawing
  const kRadius = 8;
  const kHead = 22;

  const views = [];
  let drag = null;

  const isLarge = plate => plate.rows * plate.columns > Vex.kMostDrawn;

  Vex.describeWell = (plate, number) => {
    const traces = (Vex.model.byKey.get(`${plate.index}:${number}`) || []).filter(Vex.isShown);
    const words = [Vex.wellName(plate, number)];
    if (traces.length === 0) return `${words[0]}, empty`;
    if (traces[0].sample) words.push(traces[0].sample);
    for (const trace of traces) {
      if (trace.detector) words.push(trace.detector);
      if (trace.task) words.push(Vex.taskName(trace.task));
      const {cq} = Vex.cqOf(trace);
      words.push(cq === null ? 'no Cq' : `Cq ${cq.toFixed(2)}`);
    }
    return words.join(', ');
  };

  function cellOf(view, row, column) {
    const number = row * view.plate.columns + column + 1;
    const cell = Vex.s('g', {
      role: 'gridcell', class: 'well', tabindex: -1,
      transform: `translate(${kHead + column * kPitch + kPitch / 2} ${kHead + row * kPitch + kPitch / 2})`,
    }, Vex.s('rect', {class: 'hit', x: -kPitch / 2, y: -kPitch / 2, width: kPitch, height: kPitch}));
    cell.well = {number, row, column, key: `${view.plate.index}:${number}`};
    view.cells.push(cell);
    return cell;
  }

  function headOf(view, text, x, y, cells) {
    return Vex.s('text', {
      class: 'plate-head', x, y, 'aria-hidden': 'true',
      onclick: event => Vex.pick(cells(view).map(cell => cell.well.key)
        .filter(key => Vex.model.byKey.has(key)), {add: event.shiftKey || event.ctrlKey || event.metaKey}),
    }, text);
  }

  function build(plate) {
    const {s} = Vex;
    const view = {plate, cells: [], focus: 0};
    const width = kHead + plate.columns * kPitch + 4;
    const height = kHead + plate.rows * kPitch + 4;
    const heads = [];
    for (let column = 0; column < plate.columns; ++column) {
      heads.push(headOf(view, column + 1, kHead + column * kPitch + kPitch / 2, kHead - 7,
        ({cells}) => cells.filter(cell => cell.well.column === column)));
    }
    const rows = [];
    for (let row = 0; row < plate.rows; ++row) {
      heads.push(headOf(view, Vex.rowName(row), kHead - 12, kHead + row * kPitch + kPitch / 2 + 4,
        ({cells}) => cells.filter(cell => cell.well.row === row)));
      rows.push(s('g', {role: 'row'},
        Array.from({length: plate.columns}, (_, column) => cellOf(view, row, column))));
    }
    view.band = s('rect', {class: 'band', visibility: 'hidden'});
    view.grid = s('g', {role: 'grid', 'aria-multiselectable': 'true', 'aria-label': `Wells of ${plate.name}`}, rows);
    view.svg = s('svg', {class: 'plate', viewBox: `0 0 ${width} ${height}`},
      s('rect', {class: 'plate-ground', x: kHead - 3, y: kHead - 3, width: width - kHead + 1,
        height: height - kHead + 1, rx: 7}), heads, view.grid, view.band);
    view.svg.style.maxWidth = `${Math.max(width * 2.2, 300)}px`;
    listen(view);
    return view;
  }

  function pointIn(view, event) {
    const box = view.svg.getBoundingClientRect();
    const scale = view.svg.viewBox.baseVal.width / box.width;
    return {x: (event.clientX - box.left) * scale, y: (event.clientY - box.top) * scale};
  }

  const cellAt = event => event.target.closest && event.target.closest('.well');

  function listen(view) {
    const {svg} = view;
    svg.addEventListener('pointermove', event => {
      const cell = cellAt(event);
      const key = cell ? cell.well.key : null;
      if (Vex.state.hover !== key) Vex.set({hover: key});
      if (drag && drag.view === view) stretch(event);
    });
    svg.addEventListener('pointerleave', () => Vex.state.hover && Vex.set({hover: null}));
    svg.addEventListener('pointerdown', event => {
      if (event.button !== 0 || event.pointerType === 'touch' || event.target.closest('.plate-head')) return;
      drag = {view, from: pointIn(view, event), cell: cellAt(event), moved: false};
      svg.setPointerCapture(event.pointerId);
    });
    svg.addEventListener('pointerup', event => {
      const done = drag;
      drag = null;
      view.band.setAttribute('visibility', 'hidden');
      if (event.pointerType === 'touch') return;
      if (done && done.moved) pickWithin(view, done.from, pointIn(view, event), event);
      else if (done && done.cell) click(view, done.cell, event);
    });
    svg.addEventListener('pointercancel', () => { drag = null; });
    svg.addEventListener('click', event => {
      const cell = cellAt(event);
      if (cell && event.pointerType === 'touch') Vex.pick([cell.well.key], {toggle: true});
    });
    svg.addEventListener('keydown', event => press(view, event));
  }

  function click(view, cell, event) {
    moveFocus(view, view.cells.indexOf(cell));
    Vex.pick([cell.well.key], {toggle: event.ctrlKey || event.metaKey || event.shiftKey});
  }

  function stretch(event) {
    const {view, from} = drag;
    const to = pointIn(view, event);
    if (!drag.moved && Math.hypot(to.x - from.x, to.y - from.y) < kPitch / 2) return;
    drag.moved = true;
    const {band} = view;
    band.setAttribute('visibility', 'visible');
    band.setAttribute('x', Math.min(from.x, to.x));
    band.setAttribute('y', Math.min(from.y, to.y));
    band.setAttribute('width', Math.abs(from.x - to.x));
    band.setAttribute('height', Math.abs(from.y - to.y));
  }

  function pickWithin(view, from, to, event) {
    const column = x => (x - kHead) / kPitch - 0.5;
    const isBetween = (value, one, other) =>
      value >= Math.min(one, other) - 0.4 && value <= Math.max(one, other) + 0.4;
    const keys = view.cells.filter(({well}) => Vex.model.byKey.has(well.key) &&
      isBetween(well.column, column(from.x), column(to.x)) &&
      isBetween(well.row, column(from.y), column(to.y))).map(cell => cell.well.key);
    Vex.pick(keys, {add: event.shiftKey || event.ctrlKey || event.metaKey});
  }

  function press(view, event) {
    const {rows, columns} = view.plate;
    const at = view.cells.indexOf(document.activeElement);
    if (at < 0) return;
    const [row, column] = [Math.floor(at / columns), at % columns];
    const targets = {
      ArrowRight: [row, column + 1], ArrowLeft: [row, column - 1],
      ArrowDown: [row + 1, column], ArrowUp: [row - 1, column],
      Home: [event.ctrlKey ? 0 : row, 0], End: [event.ctrlKey ? rows - 1 : row, columns - 1],
    };
    const target = targets[event.key];
    if (target) {
      const next = Math.min(Math.max(target[0], 0), rows - 1) * columns +
        Math.min(Math.max(target[1], 0), columns - 1);
      moveFocus(view, next);
      view.cells[next].focus();
      Vex.set({hover: view.cells[next].well.key});
      if (event.shiftKey) Vex.pick([view.cells[at].well.key, view.cells[next].well.key], {add: true});
    } else if (event.key === ' ' || event.key === 'Enter') {
      Vex.pick([view.cells[at].well.key], {toggle: true});
    } else if (event.key === 'Escape') {
      Vex.set({picked: new Set()});
    } else {
      return;
    }
    event.preventDefault();
  }

  function moveFocus(view, index) {
    view.cells[view.focus].setAttribute('tabindex', -1);
    view.focus = index;
    view.cells[index].setAttribute('tabindex', 0);
  }

  // One mark for a well: of the first of its traces that has a colour.
  function lookOf(traces, colouring) {
    let look = {colour: null};
    for (const trace of traces) {
      look = colouring.of(trace);
      if (look.colour) return look;
    }
    return look;
  }

  function paint(view, colouring) {
    const {byKey} = Vex.model;
    for (const cell of view.cells) {
      const traces = (byKey.get(cell.well.key) || []).filter(Vex.isShown);
      cell.replaceChildren(cell.firstChild);
      if (traces.length === 0) {
        cell.append(Vex.s('circle', {r: 2, class: 'mark-empty'}));
      } else {
        cell.append(Vex.mark(0, 0, kRadius, lookOf(traces, colouring)));
      }
      cell.setAttribute('aria-label', Vex.describeWell(view.plate, cell.well.number));
      cell.hasTraces = traces.length > 0;
    }
  }

  function paintPicked(view) {
    const {picked} = Vex.state;
    for (const cell of view.cells) {
      const isPicked = picked.has(cell.well.key);
      cell.setAttribute('aria-selected', String(isPicked));
      cell.classList.toggle('picked', isPicked);
      cell.classList.toggle('dimmed', picked.size > 0 && !isPicked);
    }
  }

  let hovered = null;
  function paintHover() {
    if (hovered) hovered.classList.remove('hovered');
    hovered = null;
    const {hover} = Vex.state;
    if (!hover) return;
    const [index, number] = hover.split(':').map(Number);
    const view = views.find(each => each.plate.index === index);
    hovered = view && view.cells[number - 1] || null;
    if (hovered) hovered.classList.add('hovered');
  }

  function titleOf(plate) {
    const {h} = Vex;
    const isOnly = Vex.state.plate === plate.index;
    return h('h3', {}, h('button', {
      type: 'button', class: 'plate-title', 'aria-pressed': String(isOnly),
      title: isOnly ? 'Show the curves of all plates' : 'Show the curves of this plate alone',
      onclick: () => Vex.set({plate: isOnly ? -1 : plate.index}),
    }, plate.name));
  }

  function rebuild() {
    const {h, model} = Vex;
    const place = Vex.byId('plates');
    const shape = model.plates.map(plate => `${plate.name}:${plate.rows}x${plate.columns}`).join();
    if (place.shape === shape) {
      model.plates.filter(plate => !isLarge(plate) && plate.columns > 0)
        .forEach((plate, i) => { views[i].plate = plate; });
      return;
    }
    place.shape = shape;
    views.length = 0;
    place.replaceChildren();
    place.className = model.plates.length > 1 ? 'plates several' : 'plates';
    for (const plate of model.plates) {
      const box = h('div', {class: 'plate-box'}, model.plates.length > 1 ? titleOf(plate) : null);
      if (plate.rows * plate.columns === 0) {
        box.append(h('p', {class: 'message'}, 'The header says no size of the plate.'));
      } else if (isLarge(plate)) {
        box.append(h('p', {class: 'message'}, `The plate has ${plate.rows} rows and ${plate.columns} columns, ` +
          'too many to draw. The table below lists its wells.'));
      } else {
        views.push(build(plate));
        moveFocus(views[views.length - 1], 0);
        box.append(views[views.length - 1].svg);
      }
      place.append(box);
    }
  }

  function tellPicked() {
    const {picked} = Vex.state;
    const place = Vex.byId('picked');
    place.replaceChildren();
    if (picked.size === 0) {
      place.append('Click a well, drag across several, or click a row or a column.');
      return;
    }
    const names = [...picked].slice(0, 6).map(key => {
      const [plate, number] = key.split(':').map(Number);
      return Vex.wellName(Vex.model.plates[plate], number);
    });
    place.append(`${Vex.counted(picked.size, 'well')} picked: ${names.join(', ')}${picked.size > 6 ? ' …' : ''} `,
      Vex.h('button', {type: 'button', class: 'tool', onclick: () => Vex.set({picked: new Set()})}, 'Clear'));
  }

  Vex.startPlates = () => {
    const repaint = () => {
      const colouring = Vex.colouring();
      for (const view of views) paint(view, colouring);
      Vex.drawLegend(Vex.byId('legend'), colouring);
      views.forEach(paintPicked);
      if (Vex.model.plates.length > 1) {
        document.querySelectorAll('.plate-title').forEach((button, i) =>
          button.setAttribute('aria-pressed', String(Vex.state.plate === i)));
      }
    };
    Vex.on('model', () => { rebuild(); repaint(); tellPicked(); });
    Vex.on('colourBy detector channel plate theme', repaint);
    Vex.on('thresholds', Vex.inFrame(repaint));
    Vex.on('picked', () => { views.forEach(paintPicked); tellPicked(); });
    Vex.on('hover', paintHover);
  };
})();
