"""Runs, plates and curves as HTML with pictures, for notebooks."""

from __future__ import annotations

from html import escape
from typing import TYPE_CHECKING, List, Tuple

import numpy as np

from ._wells import row_name

if TYPE_CHECKING:
    from ._block import Curves
    from ._run import Run
    from ._values import Plate, Well

# Colours that people with any colour vision can distinguish, light enough for black text.
_FILLS = ("#cfe8fa", "#fbe3c0", "#d3f0e2", "#f7d4e6", "#fbf6c4", "#dcd8f2", "#e4e4e4")
_LINES = ("#0072b2", "#d55e00", "#009e73", "#cc79a7", "#b8860b", "#6a5acd", "#555555")
_WIDTH, _HEIGHT, _LEFT, _BOTTOM = 480, 220, 56, 34
_MOST_LINES = 96
# The number of wells of the largest existing plate. The header of a damaged document can declare
# thousands of millions of wells.
_MOST_WELLS = 1536


def _well_title(well: Well) -> str:
    lines = [f"{well.name} {well.sample}".rstrip()]
    for target in well.targets:
        quantity = "" if target.quantity is None else f" {target.quantity:g}"
        lines.append(f"{target.detector} {target.task}{quantity}")
    return escape("\n".join(lines), quote=True)


def plate_html(plate: Plate) -> str:
    """The plate as a grid with a cell for each well, coloured by sample. For a plate that is too
    large for a picture, the number of wells in its setup."""
    if plate.rows * plate.columns > _MOST_WELLS:
        setup = f"{len(plate.wells)} in its setup"
        return f"<p>a plate of {plate.rows} x {plate.columns} wells, {setup}</p>"
    samples = list(dict.fromkeys(well.sample for well in plate.wells if well.sample))
    fills = {sample: _FILLS[i % len(_FILLS)] for i, sample in enumerate(samples)}
    wells = {well.number: well for well in plate.wells}
    style = "border:1px solid #ccc;padding:1px 4px;font-size:85%;text-align:center"
    heads = "".join(f"<th>{column + 1}</th>" for column in range(plate.columns))
    rows = [f"<tr><th></th>{heads}</tr>"]
    for row in range(plate.rows):
        cells = [f"<th>{row_name(row)}</th>"]
        for column in range(plate.columns):
            well = wells.get(row * plate.columns + column + 1)
            if well is None:
                cells.append(f'<td style="{style}"></td>')
                continue
            fill = f";background:{fills[well.sample]};color:#000" if well.sample else ""
            text = escape(well.sample)
            cells.append(f'<td style="{style}{fill}" title="{_well_title(well)}">{text}</td>')
        rows.append(f"<tr>{''.join(cells)}</tr>")
    return f'<table style="border-collapse:collapse">{"".join(rows)}</table>'


def _ticks(low: float, high: float) -> List[float]:
    """Four to eight round numbers between the limits."""
    span = high - low
    step = 10 ** np.floor(np.log10(span / 4))
    step *= max(factor for factor in (1, 2, 5) if span / (step * factor) >= 4)
    first = int(np.ceil(low / step - 1e-9))
    return [float(i * step) for i in range(first, int(np.floor(high / step + 1e-9)) + 1)]


def _range(values: np.ndarray) -> Tuple[float, float]:  # type: ignore[type-arg]
    low, high = float(np.nanmin(values)), float(np.nanmax(values))
    return (low, high) if high > low else (low - 0.5, high + 0.5)


def curves_html(curves: Curves) -> str:
    """The curves as a small picture with axes. If there are many wells, only a part of the curves
    is drawn."""
    is_melting = curves.stage == "melt"
    across = curves.temperature_c if is_melting else curves.cycle.astype(float)
    values = curves.fluorescence[:, :, :1]
    if values.size == 0 or np.isnan(values).all():
        return f"<p>{escape(repr(curves))}</p>"
    (left, right), (low, high) = _range(across), _range(values)

    def x(value: float) -> float:
        return _LEFT + (value - left) / (right - left) * (_WIDTH - _LEFT - 10)

    def y(value: float) -> float:
        return _HEIGHT - _BOTTOM - (value - low) / (high - low) * (_HEIGHT - _BOTTOM - 10)

    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{_WIDTH}" height="{_HEIGHT}" '
        f'viewBox="0 0 {_WIDTH} {_HEIGHT}" font-family="sans-serif" font-size="11" '
        f'style="background:#fff"><title>{escape(repr(curves)[1:-1])}</title>'
    ]
    for tick in _ticks(low, high):
        parts.append(
            f'<path d="M{_LEFT} {y(tick):.1f}H{_WIDTH - 10}" stroke="#e5e5e5"/>'
            f'<text x="{_LEFT - 5}" y="{y(tick) + 4:.1f}" text-anchor="end">{tick:.6g}</text>'
        )
    for tick in _ticks(left, right):
        parts.append(
            f'<text x="{x(tick):.1f}" y="{_HEIGHT - _BOTTOM + 14}" text-anchor="middle">'
            f"{tick:.6g}</text>"
        )
    step = max(1, -(-values.shape[1] // _MOST_LINES))
    for index, well in enumerate(range(0, values.shape[1], step)):
        known = [(a, b) for a, b in zip(across, values[:, well, 0]) if not np.isnan(b)]
        points = " ".join(f"{x(a):.1f},{y(b):.1f}" for a, b in known)
        parts.append(
            f'<polyline points="{points}" fill="none" stroke="{_LINES[index % len(_LINES)]}" '
            f'stroke-opacity="0.7"><title>{escape(curves.wells[well])}</title></polyline>'
        )
    name = "temperature in °C" if is_melting else "cycle"
    middle = (_LEFT + _WIDTH) / 2
    parts.append(f'<text x="{middle}" y="{_HEIGHT - 4}" text-anchor="middle">{name}</text></svg>')
    return "".join(parts)


def run_html(run: Run) -> str:
    """A summary of the document, its plate, and a small picture of its amplification."""
    block = run.block("RAWa").info
    facts = [("document", run.path), ("status", run.status), ("assay", run.assay)]
    if run.is_study:
        facts.append(("plates", ", ".join(run.plates)))
    else:
        facts.append(("readings", f"{block.frame_count} frames of {len(block.wells)} wells"))
        if block.start:
            facts.append(("started", block.start))
    if not run.is_whole:
        facts.append(("damaged", run.faults[0].what))
    rows = "".join(f"<tr><th>{escape(a)}</th><td>{escape(b)}</td></tr>" for a, b in facts)
    parts = [f"<table>{rows}</table>"]
    if not run.is_study:
        parts.append(plate_html(run.plate))
        if not run.closed and block.is_recorded and block.frame_count > 0:
            parts.append(curves_html(run.amplification))
    return "<div>" + "".join(parts) + "</div>"
