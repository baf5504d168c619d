'use strict';
// The quantification cycle for any threshold, and the line through the standards, by the rules of
// the library's analysis, so that both follow a threshold that is dragged. What does not depend on
// the threshold - the baseline, and whether a curve rises at all - is taken from the analysis.
(() => {
  // Reasons that no threshold changes.
  const kFixedReasons = ['no readings', 'too few cycles', 'no rise', 'noisy'];

  // Readings that are missing are on the straight line between their neighbours; those before the
  // first and behind the last reading are left out.
  Vex.filled = (cycles, readings) => {
    const x = [];
    const y = [];
    for (let i = 0; i < cycles.length; ++i) {
      if (Number.isFinite(readings[i])) { x.push(cycles[i]); y.push(readings[i]); continue; }
      let next = i + 1;
      while (next < cycles.length && !Number.isFinite(readings[next])) ++next;
      if (y.length === 0 || next === cycles.length) continue;
      const before = {x: x[x.length - 1], y: y[y.length - 1]};
      const share = (cycles[i] - before.x) / (cycles[next] - before.x);
      x.push(cycles[i]);
      y.push(before.y + share * (readings[next] - before.y));
    }
    return {x, y};
  };

  // Where the corrected curve passes `threshold` upwards for the last time before its top,
  // interpolated on the logarithm of the fluorescence.
  Vex.crossing = (cycles, corrected, top, threshold) => {
    for (let i = top; i > 0; --i) {
      if (!(corrected[i] >= threshold && corrected[i - 1] < threshold)) continue;
      const low = corrected[i - 1];
      const share = low > 0
        ? Math.log(threshold / low) / Math.log(corrected[i] / low)
        : (threshold - low) / (corrected[i] - low);
      return cycles[i - 1] + share * (cycles[i] - cycles[i - 1]);
    }
    return null;
  };

  // The same curve less its baseline; null where the analysis found none.
  Vex.corrected = trace => {
    const result = trace.result;
    if (!result || !result.line || !trace.raw) return null;
    if (trace.correctedOf === result) return trace.correctedValues;
    const cycles = trace.plate.cycles.x;
    const [intercept, slope] = result.line;
    trace.correctedOf = result;
    trace.correctedValues =
      trace.raw.map((value, i) => value - (intercept + slope * cycles[i]));
    return trace.correctedValues;
  };

  // The quantification cycle of a trace at a threshold, and why there is none.
  Vex.cqAt = (trace, threshold) => {
    const result = trace.result;
    if (!result) return {cq: null, reason: ''};
    if (threshold === null || threshold === undefined || kFixedReasons.includes(result.reason)) {
      return {cq: null, reason: result.reason || ''};
    }
    const corrected = Vex.corrected(trace);
    if (!corrected) return {cq: null, reason: result.reason || ''};
    const {x, y} = Vex.filled(trace.plate.cycles.x, corrected);
    let top = 0;
    for (let i = 1; i < y.length; ++i) {
      if (Math.abs(y[i] - result.amplitude) < Math.abs(y[top] - result.amplitude)) top = i;
    }
    const cq = Vex.crossing(x, y, top, threshold);
    if (cq !== null) return {cq, reason: ''};
    return {cq: null, reason: y[top] < threshold ? 'late' : 'early'};
  };

  // The line y = intercept + slope x by least squares; null for fewer than three points, and for
  // points that all have the same x.
  Vex.fitLine = points => {
    const count = points.length;
    if (count < 3) return null;
    const meanX = points.reduce((sum, point) => sum + point.x, 0) / count;
    const meanY = points.reduce((sum, point) => sum + point.y, 0) / count;
    let xx = 0;
    let xy = 0;
    let yy = 0;
    for (const {x, y} of points) {
      xx += (x - meanX) ** 2;
      xy += (x - meanX) * (y - meanY);
      yy += (y - meanY) ** 2;
    }
    if (xx === 0) return null;
    const slope = xy / xx;
    return {
      slope, intercept: meanY - slope * meanX, count,
      rSquared: yy === 0 ? 1 : xy * xy / (xx * yy),
      efficiency: slope < 0 ? 10 ** (-1 / slope) - 1 : null,
    };
  };
})();
