'use strict';
// Every file of this page adds its part to this one object.
const Vex = {};

// Elements and texts. Texts of documents go into the page as text nodes and attribute values only,
// never as HTML, so that nothing in a document can run.
(() => {
  const kSvg = 'http://www.w3.org/2000/svg';

  function fill(element, attributes, children) {
    for (const [name, value] of Object.entries(attributes || {})) {
      if (value === null || value === undefined || value === false) continue;
      if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
      else element.setAttribute(name, value === true ? '' : value);
    }
    for (const child of children.flat()) {
      if (child === null || child === undefined || child === false) continue;
      element.append(child instanceof Node ? child : String(child));
    }
    return element;
  }

  Vex.h = (tag, attributes, ...children) =>
    fill(document.createElement(tag), attributes, children);
  Vex.s = (tag, attributes, ...children) =>
    fill(document.createElementNS(kSvg, tag), attributes, children);
  Vex.byId = id => document.getElementById(id);

  // "1 well", "2 wells".
  Vex.counted = (count, noun) =>
    `${count.toLocaleString('en')} ${noun}${count === 1 ? '' : 's'}`;

  // A number for people: a few significant digits, no more than it takes.
  Vex.number = (value, digits = 4) => {
    if (value === null || value === undefined || !Number.isFinite(value)) return '';
    const size = Math.abs(value);
    if (size !== 0 && (size < 1e-3 || size >= 1e6)) return trim(value.toExponential(digits - 1)).replace('e+', 'e');
    return trim(value.toPrecision(Math.max(digits, size < 1 ? digits : Math.ceil(Math.log10(size + 1)))));
  };
  const trim = text => text.includes('.') ? text.replace(/\.?0+(e|$)/, '$1') : text;

  Vex.fixed = (value, decimals) =>
    value === null || value === undefined || !Number.isFinite(value) ? '' : value.toFixed(decimals);

  Vex.bytes = count => {
    const units = ['bytes', 'kB', 'MB', 'GB'];
    let unit = 0;
    let value = count;
    while (value >= 1000 && unit < units.length - 1) { value /= 1000; ++unit; }
    return unit === 0 ? Vex.counted(count, 'byte') : `${Vex.number(value, 3)} ${units[unit]}`;
  };

  // Sorts "A2" before "A10".
  Vex.compareTexts = new Intl.Collator('en', {numeric: true}).compare;

  // Calls `work` once in the next frame, however often it is asked for until then.
  Vex.inFrame = work => {
    let isAsked = false;
    return () => {
      if (isAsked) return;
      isAsked = true;
      requestAnimationFrame(() => { isAsked = false; work(); });
    };
  };
})();
