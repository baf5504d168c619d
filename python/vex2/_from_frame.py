"""Makes documents from long tables."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING, Any, Dict, Iterable, List, Optional, Tuple, Union

from . import _vex2
from ._errors import Error, called, invalid, system_errors
from ._record import MELTING, plate_of, record
from ._run import Run, open as open_run
from ._source import path_of
from ._values import Plate
from ._wells import well_number

if TYPE_CHECKING:
    import pandas as pd


_NEEDED = ("well", "stage", "cycle", "time_s", "temperature_c", "fluorescence")
_KEYS = ["stage", "cycle"]


def _require_one_reading_each(table: pd.DataFrame, channels: List[str]) -> None:
    cell = [*_KEYS, "well", *(["channel"] if channels else [])]
    again = table.duplicated(cell)
    if again.any():
        stage, cycle, well = table.loc[again, cell].iloc[0][:3]
        raise invalid(f"the table has several readings of well {well} in {stage} cycle {cycle}")


def _frames_of(table: pd.DataFrame) -> Iterable[Tuple[Any, pd.DataFrame]]:
    """Returns ((stage, cycle), rows) for each frame, in the order of the times, with the melting
    last."""
    groups = table.groupby(_KEYS, sort=False)
    order = groups["time_s"].min()
    parts = dict(iter(groups))
    ranked = sorted(order.items(), key=lambda item: (item[0][0] in MELTING, item[0][1]))
    return ((key, parts[key]) for key, _ in ranked)


def _plate_in(table: pd.DataFrame, plate: Any, size: Optional[int]) -> Plate:
    if plate is not None:
        return plate_of(plate, size)
    columns = [name for name in ("well", "sample", "target") if name in table]
    return plate_of(table[columns].drop_duplicates(), size)


def _frame_in(part: pd.DataFrame, order: List[str], channels: List[str], name: str) -> Any:
    """The readings of a frame with its stage, cycle, time and temperature, for
    `Recorder.append`."""
    if channels:
        values = part.pivot(index="well", columns="channel", values="fluorescence")
        values = values.reindex(columns=channels)
        part = part.drop_duplicates("well")
    else:
        values = part.set_index("well")[["fluorescence"]]
    place = part.set_index("well")[["time_s", "temperature_c"]].reindex(order)
    missing = place.index[place.isna().any(axis=1)]
    if len(missing):
        raise invalid(f"well {missing[0]} has no row for {name}")
    columns = {column: place[column].to_numpy() for column in place}
    return values.reindex(order).to_numpy(), columns


def _numbers_in(table: pd.DataFrame) -> pd.DataFrame:
    import pandas

    for name in _NEEDED:
        if name not in table:
            raise invalid(f"the table has no column '{name}'")
    numbers = {}
    for name in _NEEDED[3:]:
        try:
            numbers[name] = pandas.to_numeric(table[name]).astype("float64")
        except (TypeError, ValueError):
            raise invalid(f"the column '{name}' must have numbers") from None
    return table.assign(**numbers)


def _write(
    path: str, name: str, table: pd.DataFrame, plate: Any, options: Dict[str, Any]
) -> None:
    """Makes the document at a temporary path. Errors name the path of the caller."""
    table = _numbers_in(table)
    channels = list(dict.fromkeys(table["channel"])) if "channel" in table else []
    _require_one_reading_each(table, channels)
    if options.get("scale") is None:
        readings = table["fluorescence"].dropna().to_list()
        options = {**options}
        options["scale"], options["offset"] = _vex2.choose_scale(readings)
    setup = _plate_in(table, plate, options.pop("plate_size", None))
    wells = dict.fromkeys(table["well"])
    order = sorted(wells, key=lambda name: well_number(name, setup.rows, setup.columns))
    # Collect all frames before the first one is recorded, so that a table that is not a run is
    # refused before anything is written.
    frames = [
        (stage, cycle, *_frame_in(part, order, channels, f"{stage} cycle {cycle}"))
        for (stage, cycle), part in _frames_of(table)
    ]
    try:
        with record(
            path, setup, wells=order, channels=channels, resume=False, **options
        ) as rec:
            for stage, cycle, values, place in frames:
                rec.append(values, stage=stage, cycle=cycle, **place)
    except Error as error:
        raise error.of_file(path, name) from None


def _replace(path: Any, replace: bool, table: pd.DataFrame, plate: Any, options: Any) -> None:
    """Makes the document in the same folder and then replaces an existing one, which stays complete
    until then."""
    import tempfile

    name = os.fsdecode(path)
    new = called(_vex2.Replacement, path_of(path), replace, file=name)
    with system_errors(name), tempfile.TemporaryDirectory(
        prefix=".vex2-", dir=os.fsdecode(new.folder())
    ) as folder:
        made = os.path.join(folder, "new.vex")
        _write(made, name, table, plate, options)
        new.commit(os.fsencode(made))


def from_frame(
    table: pd.DataFrame,
    path: Union[None, str, os.PathLike[str]] = None,
    *,
    plate: Union[None, Plate, int, pd.DataFrame] = None,
    replace: bool = False,
    **options: Any,
) -> Run:
    """Makes a document from a long table, as `Run.tidy` returns it, and opens it.

    The columns well, stage, cycle, time_s, temperature_c and fluorescence are required; sample,
    target and channel are used if they exist. Every well needs a row for each frame; a missing
    reading is NaN.

    Args:
        table: the readings.
        path: the path of the document; without it, the document is only in memory (see
            `Run.to_bytes`).
        plate: the plate setup, as for `record`; without it, the samples and targets of the table
            are used.
        replace: overwrite an existing document at `path`, but only after the new one is complete.
        options: other arguments of `record`. Without a scale, the scale that loses least is chosen.

    Raises:
        UsageError: the table does not describe a run, or a reading cannot be stored.
        FileThereError: `path` exists already; use `replace=True` to overwrite it.

    >>> run = vex2.from_frame(vex2.open("run.vex").tidy())
    >>> run.readings.shape
    (45, 96, 32)
    """
    if path is not None:
        _replace(path, replace, table, plate, options)
        return open_run(path)
    import tempfile

    with tempfile.TemporaryDirectory() as folder:
        target = os.path.join(folder, "table.vex")
        _write(target, "<table>", table, plate, options)
        with open_run(target) as run:
            return open_run(run.to_bytes())
