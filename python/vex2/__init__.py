"""Plate documents of a real-time PCR instrument.

    import vex2

    run = vex2.open("run.vex")
    run.readings        # the stored readings: NumPy uint16 (frames, wells, 32)
    run.wells           # the contents of the wells: a pandas DataFrame
    run.tidy()          # a long table: well, stage, cycle, time_s, temperature_c, fluorescence, ...

Wells are numbered from 1, row by row, and have the names that are printed on the plate: "A1".
Frames count from 0. Temperatures are degrees Celsius, times are seconds since the run began.
"""

from typing import TYPE_CHECKING, Any

from ._block import Axis, Block, Curves, Frame, Frames
from ._checks import check, recover, repair, set_run_status
from ._edit import Editor, PlateEditor, Settings, edit
from ._errors import (
    AccessError,
    CancelledError,
    DocumentError,
    Error,
    FileError,
    FileThereError,
    MissingFileError,
    NotFoundError,
    UsageError,
)
from ._follow import Follow, follow
from ._from_frame import from_frame
from ._record import Recorder, record
from ._run import Plates, Run, open, read_frame
from ._vex2 import __version__
from ._values import (
    BlockInfo,
    Calibration,
    CalibrationPart,
    Detector,
    Fault,
    Finding,
    Findings,
    Header,
    Patch,
    Plate,
    Program,
    Record,
    RecoverNote,
    RecoverReport,
    RepairReport,
    Spectrum,
    Target,
    Well,
)


if TYPE_CHECKING:
    from . import raw as raw


def __getattr__(name: str) -> Any:
    """Imports the module `raw` when it is first used, because few programs need it."""
    if name == "raw":
        import importlib

        return importlib.import_module("vex2.raw")
    raise AttributeError(f"module 'vex2' has no attribute {name!r}")


__all__ = [
    "AccessError",
    "Axis",
    "Block",
    "BlockInfo",
    "Calibration",
    "CalibrationPart",
    "CancelledError",
    "Curves",
    "Detector",
    "DocumentError",
    "Editor",
    "Error",
    "Fault",
    "FileError",
    "FileThereError",
    "Finding",
    "Findings",
    "Follow",
    "Frame",
    "Frames",
    "Header",
    "MissingFileError",
    "NotFoundError",
    "Patch",
    "Plate",
    "PlateEditor",
    "Plates",
    "Program",
    "Record",
    "Recorder",
    "RecoverNote",
    "RecoverReport",
    "RepairReport",
    "Run",
    "Settings",
    "Spectrum",
    "Target",
    "UsageError",
    "Well",
    "check",
    "edit",
    "follow",
    "from_frame",
    "open",
    "read_frame",
    "record",
    "recover",
    "repair",
    "set_run_status",
]
