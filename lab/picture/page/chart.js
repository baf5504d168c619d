'use strict';
// A chart of one curve for each trace. uPlot draws the curves; what follows the pointer is drawn on
// a layer above them, so that hovering never draws the curves again.
(() => {
  // More curves than these are drawn only when they are picked.
  const kMostCurves = 1600;
  const kPickDistance = 24;  // pixels from the pointer to a curve
  const kFaint = 0.13;
  const kPaper = 660;  // what fits on A4 and on letter paper, in pixels

  const css = name => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

  // 1, 2 and 5 in each decade.
  function logTicks(plot, axis, low, high) {
    const ticks = [];
    for (let power = Math.floor(Math.log10(low)); 10 ** power <= high; ++power) {
      for (const factor of [1, 2, 5]) ticks.push(factor * 10 ** power);
    }
    return ticks.filter(tick => tick >= low * 0.999 && tick <= high);
  }

  // A reading that is missing is a gap.
  const gapped = values => (values.some && values.some(Number.isNaN)
    ? Array.from(values, value => (Number.isNaN(value) ? null : value)) : values);

  // One ascending axis for curves with axes of their own.
  function joined(lines) {
    const first = lines[0].x;
    if (lines.every(line => line.x === first || sameNumbers(line.x, first))) {
      return [first, ...lines.map(line => gapped(line.y))];
    }
    const all = Float64Array.from(new Set(lines.flatMap(line => [...line.x]))).sort();
    const place = new Map([...all].map((x, i) => [x, i]));
    return [all, ...lines.map(line => {
      const y = new Array(all.length).fill(undefined);  // a gap that a line goes over
      line.x.forEach((x, i) => { y[place.get(x)] = Number.isNaN(line.y[i]) ? null : line.y[i]; });
      return y;
    })];
  }
  const sameNumbers = (one, other) =>
    one.length === other.length && one.every((value, i) => value === other[i]);

  class Chart {
    // `traces()` gives those that may have a curve, `line(trace)` the curve, {x, y}, without y where
    // there is none; `log()` says whether the axis of readings is logarithmic.
    constructor({place, label, xLabel, yLabel, traces, line, log = () => false, xTip, onDraw}) {
      Object.assign(this, {place, label, xLabel, yLabel, traces, line, log, xTip, onDraw});
      this.plot = null;
      this.shown = [];
      new ResizeObserver(Vex.inFrame(() => this.resize())).observe(place);
      Vex.on('model detector channel plate values scale theme', () => this.rebuild());
      Vex.on('colourBy', () => this.recolour());
      Vex.on('picked', () => this.repick());
      Vex.on('hover', () => this.paintHover());
      Vex.on('thresholds', Vex.inFrame(() => Vex.state.colourBy === 'cq' && this.recolour()));
    }

    size() {
      // Of a page that is printed the browser tells the width only when it is too late.
      const width = Vex.isPrinting ? Math.min(this.place.clientWidth, kPaper) : Math.max(this.place.clientWidth, 200);
      const isTall = this.place.classList.contains('tall');
      return {width, height: Math.round(Math.min(Math.max(width * (isTall ? 0.66 : 0.6), 230), isTall ? 480 : 330))};
    }

    resize() {
      if (this.plot && this.place.clientWidth && this.plot.width !== this.size().width) {
        this.plot.setSize(this.size());
      }
    }

    // The curves to draw, and how many there are.
    allLines() {
      const traces = this.traces();
      let drawn = traces;
      if (traces.length > kMostCurves) {
        const picked = traces.filter(trace => Vex.state.picked.has(trace.key));
        drawn = (picked.length ? picked : traces).slice(0, kMostCurves);
      }
      const lines = drawn.map(trace => ({trace, ...this.line(trace)}))
        .filter(line => line.y && line.x.length > 0);
      return {lines, all: traces.length > kMostCurves ? traces.length : lines.length};
    }

    rebuild() {
      const found = this.allLines();
      this.all = found.all;
      const keep = this.zoomed();
      if (this.plot) this.plot.destroy();
      this.plot = null;
      this.shown = found.lines;
      this.place.replaceChildren();
      if (this.shown.length === 0) {
        this.place.append(Vex.h('p', {class: 'message'}, this.emptyText || 'There are no curves to draw.'));
        return;
      }
      this.colouring = Vex.colouring();
      this.plot = new uPlot(this.options(), joined(this.shown), this.place);
      if (keep) this.zoom(keep);
      this.plot.root.setAttribute('role', 'img');
      this.plot.root.setAttribute('aria-label', `${this.label}: ${Vex.counted(this.shown.length, 'curve')}. ` +
        'The table of wells has the results as text.');
      this.addLayer();
    }

    // The part of the axes that the reader has zoomed to; null for all of it.
    zoomed() {
      const {plot} = this;
      if (!plot || !this.isZoomed || this.wasLog !== this.log()) return null;
      return {x: [plot.scales.x.min, plot.scales.x.max], y: [plot.scales.y.min, plot.scales.y.max]};
    }
    zoom({x, y}) {
      this.plot.batch(() => {
        this.plot.setScale('x', {min: x[0], max: x[1]});
        this.plot.setScale('y', {min: y[0], max: y[1]});
      });
    }

    options() {
      const isLog = this.wasLog = this.log();
      const ink = css('--ink-soft');
      const grid = {stroke: css('--grid'), width: 1};
      const axis = {stroke: ink, grid, ticks: {stroke: css('--grid'), size: 5}, labelSize: 18, labelGap: 2,
        font: '12px system-ui, sans-serif', labelFont: '12px system-ui, sans-serif'};
      return {
        ...this.size(),
        padding: [10, 14, 0, 0],
        legend: {show: false},
        focus: {alpha: 1},
        cursor: {
          points: {show: false}, x: true, y: false, drag: {x: true, y: true, uni: 20, dist: 8},
          bind: {dblclick: () => () => { this.unzoom(); return null; }},
        },
        select: {show: true},
        scales: {
          x: {time: false, range: (plot, low, high) => this.rangeX(low, high)},
          y: isLog ? {distr: 3, log: 10, range: (plot, low, high) => this.rangeLog(low, high)}
            : {range: (plot, low, high) => this.rangeY(low ?? 0, high ?? 1)},
        },
        axes: [
          {...axis, label: this.xLabel(), size: 34},
          {...axis, label: this.yLabel(), size: 56, ...(isLog ? {splits: logTicks} : {}),
            values: (plot, ticks) => ticks.map(tick => (tick === null ? '' : Vex.number(tick)))},
        ],
        series: [{}, ...this.shown.map((line, i) => this.series(line, i))],
        hooks: {
          draw: [() => { this.paintHover(); if (this.onDraw) this.onDraw(this); }],
          setCursor: [Vex.inFrame(() => this.follow())],
          setSelect: [() => { this.isZoomed = true; }],
        },
      };
    }

    rangeX(low, high) {
      return low === high ? [low - 1, high + 1] : [low, high];
    }

    rangeY(low, high) {
      return this.isZoomed ? [low, high] : uPlot.rangeNum(low, high, 0.06, true);
    }

    // Decades that hold the curves: from the noise below the lowest threshold to above the highest
    // curve.
    rangeLog(lowest, highest) {
      if (this.isZoomed && lowest > 0 && highest > lowest) return [lowest, highest];
      let high = 0;
      for (const line of this.shown) for (const value of line.y) if (value > high) high = value;
      if (high === 0) return [0.1, 1];
      let low = high / 1000;
      for (const {trace} of this.shown) {
        const threshold = Vex.thresholdOf(trace.assay);
        if (threshold > 0) low = Math.min(low, threshold / 10);
      }
      return [10 ** Math.floor(Math.log10(Math.max(low, high / 1e5))), 10 ** (Math.log10(high) + 0.08)];
    }

    series(line) {
      return {
        scale: 'y', points: {show: this.isPoint(line), size: 5}, spanGaps: true,
        stroke: () => this.strokeOf(line), width: this.widthOf(line),
        dash: this.colouring.of(line.trace).dash, alpha: this.alphaOf(line),
      };
    }
    isPoint(line) { return line.x.length === 1; }
    strokeOf(line) { return this.colouring.of(line.trace).colour || css('--ink-faint'); }
    isFaint(line) { return Vex.state.picked.size > 0 && !Vex.state.picked.has(line.trace.key); }
    alphaOf(line) {
      if (this.isFaint(line)) return kFaint;
      return this.shown.length > 150 && Vex.state.picked.size === 0 ? 0.75 : 1;
    }
    widthOf(line) {
      if (Vex.state.picked.size > 0 && !this.isFaint(line)) return 2;
      return this.shown.length > 150 ? 1 : 1.5;
    }

    recolour() {
      if (!this.plot) return;
      this.colouring = Vex.colouring();
      this.restyle();
    }
    restyle() {
      this.shown.forEach((line, i) => {
        const series = this.plot.series[i + 1];
        series.alpha = this.alphaOf(line);
        series.width = this.widthOf(line);
        series.dash = this.colouring.of(line.trace).dash;
      });
      this.plot.redraw(false);
    }
    repick() {
      if (this.all > kMostCurves) this.rebuild();
      else if (this.plot) this.restyle();
    }

    unzoom() {
      this.isZoomed = false;
      this.plot.setData(this.plot.data, true);
    }

    // The layer above the curves, and what a click on it picks.
    addLayer() {
      const over = this.plot.over;
      this.layer = Vex.h('canvas', {class: 'hover-layer', 'aria-hidden': 'true'});
      this.tip = Vex.h('div', {class: 'tip', 'aria-hidden': 'true', hidden: true});
      over.append(this.layer, this.tip);
      let down = null;
      over.addEventListener('pointerdown', event => { down = {x: event.clientX, y: event.clientY}; });
      over.addEventListener('click', event => {
        if (down && Math.hypot(event.clientX - down.x, event.clientY - down.y) > 5) return;
        const box = over.getBoundingClientRect();
        const line = this.nearest(event.clientX - box.left, event.clientY - box.top);
        if (line) Vex.pick([line.trace.key], {toggle: event.ctrlKey || event.metaKey || event.shiftKey});
        else if (Vex.state.picked.size > 0) Vex.set({picked: new Set()});
      });
      over.addEventListener('pointerleave', () => { if (Vex.state.hover) Vex.set({hover: null}); });
    }

    // The pointer has moved: whose curve is nearest?
    follow() {
      const {plot} = this;
      if (!plot || plot.cursor.left < 0 || plot.cursor.event === null) return;
      const line = this.nearest(plot.cursor.left, plot.cursor.top);
      this.near = line;
      const key = line ? line.trace.key : null;
      if (Vex.state.hover !== key) Vex.set({hover: key});
      else this.paintHover();
    }

    nearest(left, top) {
      const {plot} = this;
      const x = plot.posToVal(left, 'x');
      const axis = plot.data[0];
      let next = plot.posToIdx(left);
      if (axis[next] < x && next < axis.length - 1) ++next;
      const before = Math.max(next - 1, 0);
      const share = axis[next] > axis[before] ? (x - axis[before]) / (axis[next] - axis[before]) : 0;
      let best = null;
      let least = kPickDistance;
      this.shown.forEach((line, i) => {
        const y = plot.data[i + 1];
        const one = plot.valToPos(y[before], 'y');
        const other = plot.valToPos(y[next], 'y');
        let distance = Math.abs(one + (other - one) * share - top);
        if (this.isFaint(line)) distance += 6;
        if (distance < least) { least = distance; best = line; }
      });
      return best;
    }

    paintHover() {
      const {plot, layer} = this;
      if (!plot || !layer) return;
      const ratio = devicePixelRatio || 1;
      const width = plot.over.clientWidth;
      const height = plot.over.clientHeight;
      if (layer.width !== Math.round(width * ratio) || layer.height !== Math.round(height * ratio)) {
        layer.width = Math.round(width * ratio);
        layer.height = Math.round(height * ratio);
      }
      const context = layer.getContext('2d');
      context.setTransform(ratio, 0, 0, ratio, 0, 0);
      context.clearRect(0, 0, width, height);
      const {hover} = Vex.state;
      this.tip.hidden = true;
      if (!hover) return;
      this.shown.forEach((line, i) => {
        if (line.trace.key === hover) this.drawOver(context, line, plot.data[i + 1]);
      });
      if (this.near && this.near.trace.key === hover && plot.cursor.left >= 0) this.showTip(this.near);
    }

    drawOver(context, line, y) {
      const {plot} = this;
      const axis = plot.data[0];
      for (const [colour, width] of [[css('--card'), 5], [this.strokeOf(line), 2.5]]) {
        context.beginPath();
        let isDown = false;
        for (let i = 0; i < axis.length; ++i) {
          if (y[i] === null || y[i] === undefined || Number.isNaN(y[i])) continue;
          const top = plot.valToPos(y[i], 'y');
          if (!Number.isFinite(top)) { isDown = false; continue; }
          const left = plot.valToPos(axis[i], 'x');
          if (isDown) context.lineTo(left, top);
          else context.moveTo(left, top);
          isDown = true;
        }
        context.strokeStyle = colour;
        context.lineWidth = width;
        context.lineJoin = 'round';
        context.stroke();
      }
    }

    showTip(line) {
      const {plot, tip} = this;
      const index = plot.posToIdx(plot.cursor.left);
      const value = plot.data[this.shown.indexOf(line) + 1][index];
      tip.replaceChildren(
        Vex.h('strong', {}, Vex.describeWell(line.trace.plate, line.trace.number)),
        Vex.h('span', {}, `${this.xTip(plot.data[0][index])}: ${Vex.number(value) || 'no reading'}`));
      tip.hidden = false;
      const {left, top} = plot.cursor;
      const isRight = left > plot.over.clientWidth / 2;
      tip.style.left = isRight ? '' : `${left + 14}px`;
      tip.style.right = isRight ? `${plot.over.clientWidth - left + 14}px` : '';
      tip.style.top = `${Math.max(Math.min(top - 20, plot.over.clientHeight - tip.offsetHeight), 0)}px`;
    }
  }
  Vex.Chart = Chart;
})();
