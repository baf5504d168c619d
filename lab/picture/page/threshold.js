'use strict';
// The threshold line of the amplification chart. It is a slider: dragged with the pointer, or moved
// with the keys. It stands for the detector that is shown, or for all of them together.
(() => {
  const kStep = 1.02;   // a key press: 2 %
  const kLeap = 1.25;   // Page Up and Page Down

  let slider = null;
  let chart = null;

  // The assays whose threshold the line is.
  function assays() {
    const isShown = ({detector, document: of}) =>
      (!Vex.state.detector || detector === Vex.state.detector) &&
      (Vex.state.plate < 0 || Vex.model.plates[Vex.state.plate].document === of);
    return [...Vex.model.assays.values()].filter(isShown).map(assay => assay.key)
      .filter(key => Vex.thresholdOf(key) !== null);
  }

  function median(values) {
    const sorted = [...values].sort((one, other) => one - other);
    return sorted[Math.floor(sorted.length / 2)];
  }

  function current() {
    const keys = assays();
    return keys.length === 0 ? null : median(keys.map(Vex.thresholdOf));
  }

  function move(value) {
    if (!(value > 0)) return;
    const thresholds = new Map(Vex.state.thresholds);
    for (const key of assays()) thresholds.set(key, value);
    Vex.set({thresholds});
  }

  function drag(event) {
    if (event.button !== 0) return;
    event.preventDefault();
    event.stopPropagation();
    slider.focus();
    slider.setPointerCapture(event.pointerId);
    const follow = moved => {
      const box = chart.plot.over.getBoundingClientRect();
      const top = Math.min(Math.max(moved.clientY - box.top, 0), box.height);
      move(chart.plot.posToVal(top, 'y'));
    };
    slider.addEventListener('pointermove', follow);
    const end = () => slider.removeEventListener('pointermove', follow);
    slider.addEventListener('pointerup', end, {once: true});
    slider.addEventListener('pointercancel', end, {once: true});
  }

  function press(event) {
    const factors = {ArrowUp: kStep, ArrowRight: kStep, ArrowDown: 1 / kStep, ArrowLeft: 1 / kStep,
      PageUp: kLeap, PageDown: 1 / kLeap};
    if (event.key === 'Home' || event.key === 'Escape') Vex.set({thresholds: new Map()});
    else if (factors[event.key]) move(current() * factors[event.key]);
    else return;
    event.preventDefault();
  }

  function make() {
    slider = Vex.h('div', {
      class: 'threshold', role: 'slider', tabindex: 0, 'aria-orientation': 'vertical',
      'aria-label': 'Threshold', onpointerdown: drag, onkeydown: press,
      onmousedown: event => event.stopPropagation(), onclick: event => event.stopPropagation(),
    }, Vex.h('span', {class: 'threshold-label'}));
    return slider;
  }

  // Puts the line where the threshold is; called whenever the chart was drawn.
  function place(of) {
    chart = of;
    const value = current();
    const isUsed = value !== null && Vex.state.values === 'corrected';
    if (!slider) make();
    // A new chart lies in the same place; the slider keeps the focus when it is there already.
    if (slider.parentNode !== of.place) of.place.append(slider);
    slider.hidden = !isUsed;
    if (!isUsed) return;
    const {over} = of.plot;
    const top = of.plot.valToPos(value, 'y');
    slider.style.left = `${over.offsetLeft}px`;
    slider.style.width = `${over.offsetWidth}px`;
    slider.style.top = `${over.offsetTop + Math.min(Math.max(top, 0), over.offsetHeight)}px`;
    const keys = assays();
    const differ = new Set(keys.map(Vex.thresholdOf)).size > 1;
    const who = keys.length === 1 ? '' : differ ? ', median of all' : ', all detectors';
    slider.firstChild.textContent = `Threshold ${Vex.number(value, 3)}${who}`;
    slider.setAttribute('aria-valuenow', value);
    slider.setAttribute('aria-valuemin', 0);
    slider.setAttribute('aria-valuemax', Math.max(value, of.plot.scales.y.max));
    slider.setAttribute('aria-valuetext', slider.firstChild.textContent);
  }

  Vex.placeThreshold = place;
  Vex.on('thresholds', () => { if (chart && chart.plot) place(chart); });
})();
