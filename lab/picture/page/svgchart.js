'use strict';
// Small charts of points and lines, as SVG: they print sharply, and have few enough parts.
(() => {
  const {s} = Vex;
  const kBox = {left: 58, right: 14, top: 12, bottom: 40};

  // Ticks at 1, 2 or 5 times a power of ten.
  Vex.ticks = (low, high, most = 7) => {
    if (!(high > low)) return [low];
    const raw = (high - low) / most;
    const power = 10 ** Math.floor(Math.log10(raw));
    const step = [1, 2, 5, 10].find(factor => factor * power >= raw) * power;
    const ticks = [];
    for (let i = Math.ceil(low / step - 1e-9); i * step <= high + step * 1e-9; ++i) ticks.push(i * step);
    return ticks;
  };

  function rangeOf(values, padding) {
    let low = Infinity;
    let high = -Infinity;
    for (const value of values) {
      if (!Number.isFinite(value)) continue;
      low = Math.min(low, value);
      high = Math.max(high, value);
    }
    if (low > high) return [0, 1];
    const room = high > low ? (high - low) * padding : Math.abs(high) * 0.1 || 1;
    return [low - room, high + room];
  }

  // Draws into `place`. `lines`: [{points: [{x, y}], colour, dash, name}]; `marks`: [{x, y, look,
  // title, key}]; `xText` writes a tick.
  Vex.drawSvgChart = (place, {label, xLabel, yLabel, lines = [], marks = [], xText = Vex.number, wholeX = false, xTicks = null,
    height = 300}) => {
    const width = Math.max(Math.min(place.clientWidth || 480, 760), 260);
    const all = [...lines.flatMap(line => line.points), ...marks];
    const [lowX, highX] = rangeOf(all.map(point => point.x), wholeX ? 0.02 : 0.05);
    const [lowY, highY] = rangeOf(all.map(point => point.y), 0.06);
    const x = value => kBox.left + (value - lowX) / (highX - lowX) * (width - kBox.left - kBox.right);
    const y = value => height - kBox.bottom - (value - lowY) / (highY - lowY) * (height - kBox.top - kBox.bottom);
    const path = points => points.filter(point => Number.isFinite(point.y))
      .map((point, i) => `${i ? 'L' : 'M'}${x(point.x).toFixed(1)} ${y(point.y).toFixed(1)}`).join('');
    const svg = s('svg', {class: 'svg-chart', viewBox: `0 0 ${width} ${height}`, role: 'img', 'aria-label': label});
    for (const tick of Vex.ticks(lowY, highY, 6)) {
      svg.append(s('line', {class: 'grid', x1: kBox.left, x2: width - kBox.right, y1: y(tick), y2: y(tick)}),
        s('text', {class: 'tick', x: kBox.left - 7, y: y(tick) + 4, 'text-anchor': 'end'}, Vex.number(tick)));
    }
    const most = Math.floor((width - kBox.left) / 60);
    const ticks = (xTicks || Vex.ticks(lowX, highX, most)).filter(tick => !wholeX || Number.isInteger(tick));
    for (const tick of ticks) {
      svg.append(s('line', {class: 'grid', y1: kBox.top, y2: height - kBox.bottom, x1: x(tick), x2: x(tick)}),
        s('text', {class: 'tick', x: x(tick), y: height - kBox.bottom + 17, 'text-anchor': 'middle'}, xText(tick)));
    }
    svg.append(s('text', {class: 'axis', x: (kBox.left + width) / 2, y: height - 4, 'text-anchor': 'middle'}, xLabel),
      s('text', {class: 'axis', transform: `translate(13 ${(height - kBox.bottom) / 2}) rotate(-90)`,
        'text-anchor': 'middle'}, yLabel));
    for (const line of lines) {
      svg.append(s('path', {d: path(line.points), fill: 'none', stroke: line.colour,
        'stroke-width': line.width || 2, 'stroke-linejoin': 'round', 'stroke-dasharray': (line.dash || []).join(' ')}));
    }
    for (const mark of marks) {
      if (!Number.isFinite(mark.x) || !Number.isFinite(mark.y)) continue;
      const dot = s('g', {class: `dot${mark.faint ? ' faint' : ''}`}, s('title', {}, mark.title),
        Vex.mark(x(mark.x), y(mark.y), mark.strong ? 6 : 4, mark.look));
      if (mark.key) {
        dot.addEventListener('pointerenter', () => Vex.set({hover: mark.key}));
        dot.addEventListener('pointerleave', () => Vex.set({hover: null}));
        dot.addEventListener('click', event => Vex.pick([mark.key],
          {toggle: event.ctrlKey || event.metaKey || event.shiftKey}));
      }
      svg.append(dot);
    }
    place.replaceChildren(svg);
  };
})();
