"""The results of analyses as tables."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, NamedTuple, Optional, Tuple

from . import _vex2

if TYPE_CHECKING:
    import pandas as pd
    from ._run import Run

_WELL = ("plate", "well", "number", "sample", "target", "task", "quantity")
_CQ = (
    "cq",
    "reason",
    "note",
    "threshold",
    "baseline_start",
    "baseline_end",
    "amplitude",
    "noise",
    "estimate",
    "estimate_low",
    "estimate_high",
)
_CURVE = (
    "target",
    "wells",
    "slope",
    "intercept",
    "efficiency",
    "efficiency_low",
    "efficiency_high",
    "r_squared",
    "r_squared_of_means",
    "residual_deviation",
    "limit_of_detection",
)
_PEAK = ("temperature_c", "height", "width", "prominence")
_TEXTS = {"plate", "well", "number", "sample", "target", "task", "reason", "note", "wells"}

Range = Optional[Tuple[float, float]]


def _table(run: Run, rows: Any, names: Tuple[str, ...]) -> pd.DataFrame:
    import pandas

    table = pandas.DataFrame.from_records(list(rows), columns=list(names))
    numbers = [name for name in names if name not in _TEXTS]
    table[numbers] = table[numbers].astype("float64")
    if "plate" in table and not run.is_study:
        del table["plate"]
    return table


class CqOptions(NamedTuple):
    """The arguments of `Run.cq` and `Run.standard_curves`."""

    method: str
    threshold: Optional[float]
    baseline: Range
    detector: Optional[str]


def _analyse(run: Run, options: CqOptions) -> Any:
    run._require_open("the readings")
    return run._source.call(_vex2.analyse_cq, run._reader, *options)


def cq_of(run: Run, options: CqOptions) -> pd.DataFrame:
    """The table of `Run.cq`."""
    wells, _ = _analyse(run, options)
    return _table(run, wells, _WELL + _CQ)


def standard_curves_of(run: Run, options: CqOptions) -> pd.DataFrame:
    """The table of `Run.standard_curves`."""
    _, curves = _analyse(run, options)
    return _table(run, curves, _CURVE)


def melting_peaks_of(run: Run, detector: Optional[str]) -> pd.DataFrame:
    """The table of `Run.melting_peaks`."""
    run._require_open("the readings")
    peaks = run._source.call(_vex2.analyse_melt, run._reader, detector)
    return _table(run, peaks, _WELL + _PEAK)
