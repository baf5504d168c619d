"""The raw interface: `Vex2FileManager` with the operations of the C++ class, under their C++ names.

It is for code that is ported from a host, and for tests of such code. `vex2.open`, `vex2.record`
and `vex2.edit` are easier and safer. The operations do what the C++ reference describes, with these
differences:

- Statuses are returned unchanged: 0 or a negative number. `require` raises an exception for a
  negative status.
- Values that C++ returns through a parameter follow the status in a tuple: `GetCalibrator()`
  returns `(status, name)`, `GetUsageArray()` returns `(done, usage)`.
- Arguments and results are copies: the classes of this module, bytes for a program and for times,
  and uint16 arrays for well records (44,) and frames (wells, 44). Components and plates of a study
  are copies as well, so they stay valid when the document changes.
- Texts are str, in which each character is one byte. None means a null pointer.
- If C++ has two overloads, for a plate name of type `CString` and of type `const char*`, a str
  calls the first and bytes the second.
- `ReadHeaderData(header, file)` is `ReadHeaderDataInto(file)`, and the static `SetUsageArray`
  is `SetUsageArrayIn`.

A manager holds the interpreter's lock while it works, so threads cannot harm it.

>>> manager = vex2.raw.Vex2FileManager()
>>> manager.ReadFromFile("run.vex"), manager.GetDataFrameCount(vex2.raw.DataRAWa)
(0, 45)
"""

from __future__ import annotations

from dataclasses import dataclass, field
from enum import IntEnum
from typing import Dict, List, Optional, Tuple

from ._errors import DocumentError, Error, FileError
from ._vex2 import Vex2FileManager, raw_numbers

# The enumerations have the same numbers as in C++.
_TYPES, _OPERATIONS, _REASONS = raw_numbers()


class Vex2DataType(IntEnum):
    """Selects a data block."""

    DataRAWa = _TYPES["DataRAWa"]
    DataREPr = _TYPES["DataREPr"]
    DataREPn = _TYPES["DataREPn"]
    DataREPd = _TYPES["DataREPd"]
    DataREPt = _TYPES["DataREPt"]


DataRAWa = Vex2DataType.DataRAWa
DataREPr = Vex2DataType.DataREPr
DataREPn = Vex2DataType.DataREPn
DataREPd = Vex2DataType.DataREPd
DataREPt = Vex2DataType.DataREPt


class FileOperation(IntEnum):
    """An operation on a file."""

    kNone = _OPERATIONS["kNone"]
    kOpen = _OPERATIONS["kOpen"]
    kLock = _OPERATIONS["kLock"]
    kCreate = _OPERATIONS["kCreate"]
    kRead = _OPERATIONS["kRead"]
    kSeek = _OPERATIONS["kSeek"]
    kWrite = _OPERATIONS["kWrite"]
    kResize = _OPERATIONS["kResize"]
    kSync = _OPERATIONS["kSync"]
    kRename = _OPERATIONS["kRename"]


class FileErrorReason(IntEnum):
    """Why an operation on a file failed."""

    kNone = _REASONS["kNone"]
    kSystem = _REASONS["kSystem"]
    kLocked = _REASONS["kLocked"]
    kNotADocument = _REASONS["kNotADocument"]
    kNotOpen = _REASONS["kNotOpen"]
    kNoPath = _REASONS["kNoPath"]
    kNoMemory = _REASONS["kNoMemory"]
    kFailedSyncBefore = _REASONS["kFailedSyncBefore"]


@dataclass
class ReadFault:
    """The first fault that prevented a document from being read completely; an empty reason means
    no fault."""

    offset: int
    reason: str


@dataclass
class FileErrorRecord:
    """Why and where an operation on a file failed."""

    path: str
    operation: FileOperation
    reason: FileErrorReason
    systemError: int
    offset: int

    def __post_init__(self) -> None:
        self.operation = FileOperation(self.operation)
        self.reason = FileErrorReason(self.reason)


@dataclass
class Vex2HeaderData:
    """The header of a document. Texts are padded with spaces when they are stored."""

    magic: str = "Vex2"
    formatA: int = 2
    formatB: int = 2
    assayCode: str = "AbsQ"
    runCode: str = "RtRn"
    plateTypeCode: str = "p9C "
    rows: int = 8
    columns: int = 12
    thermocycleOffset: int = 0
    flagG: int = 0
    text: str = " " * 31
    kindMarker: str = "Kest"
    acquisitionStatus: str = "ZERO"
    acquisitionDataOffset: int = 0
    usage: List[int] = field(default_factory=lambda: [4095] * 8)


@dataclass
class Vex2GlobalComplex:
    """The run-wide settings; texts are bytes without a terminator."""

    version: int = 512
    comment: bytes = b""
    sampleVolume: int = 0
    passiveReference: bytes = b""
    unitCode: int = 1
    ftrd: int = 0
    drks: int = 0
    preFlag: int = 0
    postFlag: int = 0
    log: bytes = b""


@dataclass
class Vex2WellDetector:
    """One detector in one well."""

    detectorName: str = ""
    task: str = ""
    quantity: float = 0.0
    used: bool = True


@dataclass
class Vex2WellSetup:
    """The setup of one well. The description is stored, but not returned."""

    coord1: int = 0
    coord2: int = 0
    flag: bool = True
    name: str = ""
    description: str = ""
    detectors: List[Vex2WellDetector] = field(default_factory=list)


@dataclass
class Vex2Detector:
    """A detector: a name, dyes, a colour, and the initial settings of an analysis."""

    name: str = ""
    reporterDye: str = ""
    quencherDye: str = ""
    description: str = ""
    comment: str = ""
    owner: str = ""
    location: str = ""
    color: bytes = b"\0\0\0"
    dateCreated: int = 0
    dateModified: int = 0
    baselineStart: int = 6
    baselineEnd: int = 15
    threshold: float = 0.2
    analysisFlags: int = 0
    autoBaseline: int = 0
    autoThreshold: int = 0


@dataclass
class _Spectrum:
    key1: int = 0
    key2: int = 0
    dyeIndex: int = 0
    name: str = ""
    values: List[int] = field(default_factory=list)


@dataclass
class Vex2DyeSpectrum(_Spectrum):
    """The spectrum of one pure dye. The values are 32-bit numbers, which are stored unchanged."""

    byte1: int = 0
    byte2: int = 0
    param1: int = 0
    param2: int = 0
    param3: int = 0


@dataclass
class Vex2BackgroundSpectrum(_Spectrum):
    """One spectrum of the background. The values are 32-bit numbers, which are stored unchanged."""

    limit: int = 189


@dataclass
class _CalibrationHead:
    code: bytes = b"\0\0\0\0"
    setting: int = 10
    option: int = 0
    value: int = 0
    extra1: bytes = b"\0\0\0\0"
    extra2: bytes = b"\0\0\0\0"


@dataclass
class Vex2PureDye(_CalibrationHead):
    """The spectra of the pure dyes with which an instrument was calibrated."""

    entries: List[Vex2DyeSpectrum] = field(default_factory=list)


@dataclass
class Vex2BGC(_CalibrationHead):
    """The background of an instrument."""

    entries: List[Vex2BackgroundSpectrum] = field(default_factory=list)


@dataclass
class Vex2DyeInfo:
    """One dye in a list of dyes."""

    name: str
    index: int
    values: List[int]


@dataclass
class KestorSpectrum:
    """The readings of one well in one frame. `LoadSpectrum` fills all values that exist."""

    values: List[int] = field(default_factory=lambda: [0] * 32)
    frameIndex: int = 0
    well: int = 0
    failed: int = 0
    wellValue: int = 0


@dataclass
class CAnalysisParameters:
    """The parameters of the analysis of a detector."""

    parameter1: int = 6
    parameter2: int = 15
    parameter3: float = 0.2
    parameter4: int = 0
    parameter5: int = 0
    parameter6: int = 0


@dataclass
class CAnalysisSettings:
    """The analysis settings of one detector, and its threshold cycles as (well, ct)."""

    settingsWord: int = 0
    parameters: CAnalysisParameters = field(default_factory=CAnalysisParameters)
    ctList: List[Tuple[int, float]] = field(default_factory=list)
    queryFlag: int = 0


@dataclass
class CAnalysisSettingsDetectorMap:
    """The analysis settings of a plate, by detector."""

    map: Optional[Dict[str, CAnalysisSettings]]
    ownsMap: bool
    text: str


@dataclass
class TAGPROBE:
    """A detector's name and parameters, as an analysis application passes them."""

    name: str
    parameters: CAnalysisParameters = field(default_factory=CAnalysisParameters)


@dataclass
class Component:
    """A copy of a component, made when it was requested. `size` is its length plus 8."""

    tag: str
    length: int
    size: int
    text: str
    isPlateSetup: bool
    isThermocycle: bool
    className: str


NO_CT = -999.1
"""What `GetCtAt` returns where there is no threshold cycle, in the precision of the document."""


_WHY = {
    FileErrorReason.kNone: "the document does not allow it",
    FileErrorReason.kSystem: "the system refused",
    FileErrorReason.kLocked: "another program or manager holds the file's lock",
    FileErrorReason.kNotADocument: "the file is not a plate document",
    FileErrorReason.kNotOpen: "no file is open",
    FileErrorReason.kNoPath: "there is no path",
    FileErrorReason.kNoMemory: "memory ran out",
    FileErrorReason.kFailedSyncBefore: "an earlier sync of this file failed",
}


def require(manager: Vex2FileManager, status: int) -> None:
    """Does nothing if the status is not negative. Otherwise raises an exception with the status
    and, if the manager knows them, the file, the offset and the system error.

    >>> manager = vex2.raw.Vex2FileManager()
    >>> try:
    ...     vex2.raw.require(manager, manager.ReadFromFile("missing.vex"))
    ... except vex2.FileError as error:
    ...     print(error.status, error.file, error.errno)
    -100 missing.vex 2
    """
    if status >= 0:
        return
    error = manager.GetLastFileError()
    offset = error.offset or None
    file = error.path or manager.GetFilePath()
    what = f"failed with status {status}: {_WHY[error.reason]}"
    kind = FileError if error.reason == FileErrorReason.kSystem else DocumentError
    code = "system" if kind is FileError else "document"
    raised: Error = kind(
        what, code=code, status=status, file=file, offset=offset, errno=error.systemError
    )
    raise raised


__all__ = [
    "CAnalysisParameters",
    "CAnalysisSettings",
    "CAnalysisSettingsDetectorMap",
    "Component",
    "DataRAWa",
    "DataREPd",
    "DataREPn",
    "DataREPr",
    "DataREPt",
    "FileErrorReason",
    "FileErrorRecord",
    "FileOperation",
    "KestorSpectrum",
    "NO_CT",
    "ReadFault",
    "TAGPROBE",
    "Vex2BGC",
    "Vex2BackgroundSpectrum",
    "Vex2DataType",
    "Vex2Detector",
    "Vex2DyeInfo",
    "Vex2DyeSpectrum",
    "Vex2FileManager",
    "Vex2GlobalComplex",
    "Vex2HeaderData",
    "Vex2PureDye",
    "Vex2WellDetector",
    "Vex2WellSetup",
    "require",
]
