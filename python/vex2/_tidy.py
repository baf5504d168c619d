"""Readings as long tables."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, List, Optional

import numpy as np

from . import _vex2
from ._block import Block, stage_names

if TYPE_CHECKING:
    import pandas as pd
    from ._run import Run
    from ._values import Well


COLUMNS = (
    "well",
    "stage",
    "cycle",
    "time_s",
    "temperature_c",
    "fluorescence",
    "sample",
    "target",
)


def target_of(well: Optional[Well], channel: str) -> Optional[str]:
    """The target that a channel of a well measures: the only target or, if there are several, the
    one whose reporter or detector has the name of the channel."""
    targets = well.targets if well is not None else ()
    if len(targets) == 1:
        return targets[0].detector
    for target in targets:
        if channel and channel in (target.reporter, target.detector):
            return target.detector
    return None


def _cells(run: Run, block: Block) -> Any:
    """Returns (stages, cycles, times, temperatures), each (frames, wells), because the wells of a
    frame are read one after the other."""
    log = run._head()[1]
    return run._source.call(_vex2.cells, run._reader, block.info.tag, log)


def _of_plate(run: Run, block: Block) -> Dict[str, Any]:
    run._require_open("the readings")
    stages, cycles, times, temperatures = _cells(run, block)
    frames, wells = stages.shape
    channels = block.channels or ("",)
    values = block.fluorescence
    if values.shape[2] == 0:
        values = np.full((frames, wells, 1), np.nan)
    setup = {well.number: well for well in run.plate.wells}
    here = [setup.get(number) for number in block.info.wells]

    def by_well(items: List[Any]) -> Any:
        column = np.empty(len(items), dtype=object)
        column[:] = items
        return column.repeat(frames * len(channels))

    def by_cell(items: Any) -> Any:
        return items.T.ravel().repeat(len(channels))

    targets = [[target_of(well, channel) for channel in channels] for well in here]
    return {
        "well": by_well(list(block.well_names)),
        "frame": np.tile(np.arange(frames).repeat(len(channels)), wells),
        "channel": np.tile(np.array(channels, dtype=object), wells * frames),
        "stage": by_cell(stage_names(stages)),
        "cycle": by_cell(cycles),
        "time_s": by_cell(times),
        "temperature_c": by_cell(temperatures),
        "fluorescence": values.transpose(1, 0, 2).ravel(),
        "sample": by_well([well.sample if well else None for well in here]),
        "target": np.array(targets, dtype=object)
        .reshape(wells, 1, len(channels))
        .repeat(frames, axis=1)
        .ravel(),
    }


def tidy_of(run: Run) -> pd.DataFrame:
    """The table of `Run.tidy`."""
    import pandas

    tables = []
    plates: Dict[str, Run] = dict(run.plates) if run.is_study else {"": run}
    for name, plate in plates.items():
        table = pandas.DataFrame(_of_plate(plate, plate.block("RAWa")))
        if run.is_study:
            table.insert(0, "plate", name)
        tables.append(table)
    if not tables:
        return pandas.DataFrame(columns=["plate", *COLUMNS])
    table = pandas.concat(tables, ignore_index=True)
    if (table["stage"] != "").all():
        del table["frame"]
    if not table["channel"].any():
        del table["channel"]
    return table
