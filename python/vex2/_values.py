"""The content of a document as plain values: named tuples, which can be compared, copied and
pickled."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, Iterator, NamedTuple, Optional, Tuple, Union

if TYPE_CHECKING:
    import numpy as np
    import pandas as pd
    from numpy.typing import NDArray


class Target(NamedTuple):
    """One detector in a well.

    >>> vex2.Target("FAM", "STND", 1000.0)
    Target(detector='FAM', task='STND', quantity=1000.0, reporter='')
    """

    detector: str
    task: str = "UNKN"
    quantity: Optional[float] = None
    reporter: str = ""


class Well(NamedTuple):
    """A well of the plate setup. `number` counts from 1, row by row.

    >>> vex2.open("run.vex").plate["A1"].sample
    'control'
    """

    number: int
    name: str = ""
    sample: str = ""
    targets: Tuple[Target, ...] = ()


class Plate(NamedTuple):
    """The plate and its wells, in ascending order of their numbers.

    >>> plate = vex2.open("run.vex").plate
    >>> plate.rows, plate.columns, plate["B2"].number
    (8, 12, 14)
    """

    rows: int = 8
    columns: int = 12
    wells: Tuple[Well, ...] = ()
    type: str = ""

    def __getitem__(self, key: Any) -> Any:
        """Returns the well with this name or number (from 1). Raises `NotFoundError` if there is
        none."""
        from ._wells import well_number

        if not isinstance(key, (str, int)):
            return tuple.__getitem__(self, key)
        number = well_number(key, self.rows, self.columns)
        for well in self.wells:
            if well.number == number:
                return well
        from ._errors import usage

        raise usage(f"the plate setup has no well {key!r}", code="no-such-well")

    def to_frame(self) -> pd.DataFrame:
        """Returns a pandas DataFrame of the wells, with one row for each target; see `Run.wells`.

        >>> vex2.open("run.vex").plate.to_frame().shape
        (96, 9)
        """
        from ._wells import frame_of

        return frame_of(self)

    def _repr_html_(self) -> str:
        from ._html import plate_html

        return plate_html(self)


class Detector(NamedTuple):
    """A named pair of dyes, with the initial settings of an analysis.

    >>> vex2.open("run.vex").detectors[0].reporter_dye
    'FAM'
    """

    name: str
    reporter_dye: str = ""
    quencher_dye: str = ""
    description: str = ""
    comment: str = ""
    owner: str = ""
    location: str = ""
    color: Tuple[int, int, int] = (0, 0, 0)
    created: int = 0
    modified: int = 0
    baseline_start: int = 6
    baseline_end: int = 15
    threshold: float = 0.2
    analysis_flags: int = 0
    auto_baseline: bool = False
    auto_threshold: bool = False


class Program(NamedTuple):
    """The thermal cycling program: the bytes that the instrument defines, and their text if they
    are a text.

    >>> program = vex2.open("run.vex").program
    >>> program.text == program.data.decode("latin-1")
    True
    """

    data: bytes
    text: Optional[str] = None


class Spectrum(NamedTuple):
    """One spectrum of a calibration. `values` is a float32 array, one number for each filter.

    Only pure dyes use `bytes` and `params`; only the background uses `limit`. Fields that are not
    used are 0.

    >>> import numpy as np
    >>> vex2.Spectrum("FAM", values=np.ones(12, "float32")).values.shape
    (12,)
    """

    name: str
    key1: int = 0
    key2: int = 0
    dye_index: int = 0
    bytes: bytes = b"\0\0"
    params: Tuple[int, int, int] = (0, 0, 0)
    limit: int = 0
    values: Union[NDArray[np.float32], Tuple[float, ...]] = ()

    def __eq__(self, other: object) -> bool:
        """Whether all fields are equal. Values are compared by their bytes, so NaN equals NaN."""
        if not isinstance(other, Spectrum):
            return NotImplemented
        mine, theirs = (tuple.__getitem__(each, slice(7)) for each in (self, other))
        return mine == theirs and _bits(self.values) == _bits(other.values)

    def __ne__(self, other: object) -> bool:
        return not self == other

    def __hash__(self) -> int:
        return hash(tuple.__getitem__(self, slice(7)))


def _bits(values: Any) -> Any:
    import numpy

    return numpy.asarray(values, dtype="float32").tobytes()


class CalibrationPart(NamedTuple):
    """The pure dyes or the background. The instrument defines the meaning of the other fields.

    >>> vex2.CalibrationPart().setting
    10
    """

    code: bytes = b"\0\0\0\0"
    setting: int = 10
    option: int = 0
    value: int = 0
    extra1: bytes = b"\0\0\0\0"
    extra2: bytes = b"\0\0\0\0"
    spectra: Tuple[Spectrum, ...] = ()


class Calibration(NamedTuple):
    """The calibration of a document; a missing part is None.

    >>> vex2.open("run.vex").calibration.background is None
    True
    """

    pure_dyes: Optional[CalibrationPart] = None
    background: Optional[CalibrationPart] = None


class BlockInfo(NamedTuple):
    """A data block without its frames. `start` and `end` are in ISO 8601 if they are known.

    >>> block = vex2.open("run.vex").blocks[0]
    >>> block.tag, block.frame_count, len(block.wells), block.is_recorded
    ('RAWa', 45, 96, True)
    """

    tag: str
    offset: int
    version: int
    wells: Tuple[int, ...]
    frame_count: int
    is_recorded: bool
    start: Optional[str]
    end: Optional[str]
    stored_start: bytes
    stored_end: bytes


class Header(NamedTuple):
    """The header of a document. Codes are as stored, with trailing spaces.

    `usage` has a mask for each row of the plate: bit j is set if the well in column j (from 0) is
    in use.

    >>> vex2.open("run.vex").header.assay_code
    'AbsQ'
    """

    magic: str
    format_a: int
    format_b: int
    assay_code: str
    run_code: str
    plate_type_code: str
    rows: int
    columns: int
    thermocycle_offset: int
    flag_g: int
    text: str
    kind_marker: str
    acquisition_status: str
    acquisition_data_offset: int
    usage: Tuple[int, ...]


class Record(NamedTuple):
    """A record of the file: its tag, length and value, and the records in it.

    `value` is the content that is not records: a number, a text, bytes, the three bytes of a
    colour, or None. `fields` holds the fields of a well or of a data block.

    >>> tree = vex2.open("run.vex").records()
    >>> tree[0].tag, [record.tag for record in tree[0].children][:2]
    ('CELS', ['CELL', 'CELL'])
    """

    tag: str
    offset: int
    length: int
    known: bool
    value: Union[None, int, float, str, bytes, Tuple[int, int, int]] = None
    fields: Dict[str, Any] = {}
    children: Tuple["Record", ...] = ()

    def walk(self) -> Iterator["Record"]:
        """Yields this record and all records in it, in the order of the file.

        >>> tree = vex2.open("run.vex").records()
        >>> sum(1 for record in tree[0].walk()) > 1
        True
        """
        yield self
        for child in self.children:
            yield from child.walk()


class Fault(NamedTuple):
    """A defect at an offset in the file.

    >>> vex2.open("run.vex").faults
    ()
    """

    offset: int
    what: str


class Finding(NamedTuple):
    """A problem or a note about a document; `severity` is error, warning or note.

    >>> [finding.severity for finding in vex2.check(b"no document").list]
    ['error']
    """

    severity: str
    record: str
    offset: int
    problem: str
    consequence: str
    remedy: str


class Findings(NamedTuple):
    """What `check` found: the first 1000 findings, errors first, and the number of each severity.

    >>> findings = vex2.check(b"nothing")
    >>> findings.errors, findings.warnings, findings.notes
    (1, 0, 0)
    """

    list: Tuple[Finding, ...]
    errors: int
    warnings: int
    notes: int


class Patch(NamedTuple):
    """A 32-bit number that a repair overwrites.

    >>> vex2.Patch(1028, 70, 72, "length of GLBL").offset
    1028
    """

    offset: int
    before: int
    after: int
    what: str


class RepairReport(NamedTuple):
    """What a repair found and changed; `backup` is the path of the backup that was made before.

    >>> vex2.repair("run.vex").is_repaired
    False
    """

    patches: Tuple[Patch, ...]
    size: int
    new_size: Optional[int]
    cut: str
    is_repaired: bool
    backup: Optional[str]


class RecoverNote(NamedTuple):
    """A loss or correction at an offset in the damaged file; `bytes` is the number of lost bytes.

    >>> vex2.RecoverNote(1024, 8, "the record is cut short").bytes
    8
    """

    offset: int
    bytes: int
    what: str


class RecoverReport(NamedTuple):
    """What a recovery found in a damaged file, and what was lost.

    >>> report = vex2.recover("run.vex", "recovered.vex")
    >>> report.is_whole, report.frames
    (True, 45)
    """

    size: int
    written: int
    records: int
    frames: int
    plates: int
    has_header: bool
    lost_bytes: int
    lost_records: int
    lost_frames: int
    made_heads: int
    lost: Tuple[RecoverNote, ...]
    corrected: Tuple[RecoverNote, ...]

    @property
    def is_whole(self) -> bool:
        """Whether nothing was lost and no head of a record was reconstructed.

        >>> vex2.recover("run.vex", "recovered.vex", replace=True).is_whole
        True
        """
        return not (self.lost_bytes or self.lost_records or self.lost_frames or self.made_heads)
