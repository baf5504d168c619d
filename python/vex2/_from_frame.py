"""Documents from long tables."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING, Any, Dict, Iterable, List, Tuple, Union

from . import _vex2
from ._errors import usage
from ._record import MELTING, plate_of, record
from ._run import Run, open as open_run
from ._values import Plate
from ._wells import well_number

if TYPE_CHECKING:
    import pandas as pd


def _frames_of(table: pd.DataFrame, channels: List[str]) -> Iterable[Tuple[Any, pd.DataFrame]]:
    keys = ["stage", "cycle"]
    for name in ("well", *keys, "time_s", "temperature_c", "fluorescence"):
        if name not in table:
            raise usage(f"the table has no column '{name}'", code="invalid-value")
    cells = table.groupby([*keys, "well", "channel"]).size() if channels else None
    if cells is None:
        cells = table.groupby([*keys, "well"]).size()
    if (cells > 1).any():
        stage, cycle, well = cells.idxmax()[:3]
        what = f"the table has several readings of well {well} in {stage} cycle {cycle}"
        raise usage(what, code="invalid-value")
    order = table.groupby(keys, sort=False)["time_s"].min()
    parts = dict(iter(table.groupby(keys, sort=False)))
    ranked = sorted(order.items(), key=lambda item: (item[0][0] in MELTING, item[0][1]))
    return ((key, parts[key]) for key, _ in ranked)


def _plate_in(table: pd.DataFrame, plate: Any) -> Plate:
    if plate is not None:
        return plate_of(plate)
    columns = [name for name in ("well", "sample", "target") if name in table]
    return plate_of(table[columns].drop_duplicates())


def _frame_in(part: pd.DataFrame, order: List[str], channels: List[str], name: str) -> Any:
    """The readings of a frame, and where it stands, for `Recorder.append`."""
    if channels:
        values = part.pivot(index="well", columns="channel", values="fluorescence")
        values = values.reindex(columns=channels)
        part = part.drop_duplicates("well")
    else:
        values = part.set_index("well")[["fluorescence"]]
    place = part.set_index("well")[["time_s", "temperature_c"]].reindex(order)
    missing = place.index[place.isna().any(axis=1)]
    if len(missing):
        raise usage(f"well {missing[0]} has no row for {name}", code="invalid-value")
    columns = {column: place[column].to_numpy() for column in place}
    return values.reindex(order).to_numpy(), columns


def _write(path: Any, table: pd.DataFrame, plate: Any, options: Dict[str, Any]) -> None:
    channels = list(dict.fromkeys(table["channel"])) if "channel" in table else []
    parts = list(_frames_of(table, channels))
    if options.get("scale") is None:
        readings = table["fluorescence"].dropna().to_list()
        options["scale"], options["offset"] = _vex2.choose_scale(readings)
    setup = _plate_in(table, plate)
    wells = dict.fromkeys(table["well"])
    order = sorted(wells, key=lambda name: well_number(name, setup.rows, setup.columns))
    # All of them before the first is recorded: a table that is no run leaves no document.
    frames = [
        (stage, int(cycle), *_frame_in(part, order, channels, f"{stage} cycle {cycle}"))
        for (stage, cycle), part in parts
    ]
    with record(path, setup, wells=order, channels=channels, resume=False, **options) as rec:
        for stage, cycle, values, place in frames:
            rec.append(values, stage=stage, cycle=cycle, **place)


def from_frame(
    table: pd.DataFrame,
    path: Union[None, str, os.PathLike[str]] = None,
    *,
    plate: Union[None, Plate, int, pd.DataFrame] = None,
    **options: Any,
) -> Run:
    """Makes a document of a long table, as `Run.tidy` returns it, and opens it.

    The columns well, stage, cycle, time_s, temperature_c and fluorescence are needed; sample,
    target and channel are used where they are there. Every well needs a row for each frame; a
    reading that is missing is NaN.

    Args:
        table: the readings.
        path: where to save the document; without it, the document is only in memory: see
            `Run.to_bytes`.
        plate: the plate setup, as `record` takes it; without it samples and targets of the table.
        options: other arguments of `record`. Without a scale, the one that loses least is chosen.

    Raises:
        UsageError: the table is no run.
        FileThereError: there is a file at `path`; use `replace=True` to overwrite it.

    >>> run = vex2.from_frame(vex2.open("run.vex").tidy())
    >>> run.readings.shape
    (45, 96, 32)
    """
    if path is not None:
        _write(path, table, plate, options)
        return open_run(path)
    import tempfile

    with tempfile.TemporaryDirectory() as folder:
        target = os.path.join(folder, "table.vex")
        _write(target, table, plate, options)
        with open_run(target) as run:
            return open_run(run.to_bytes())
