"""What a document says, as plain values: named tuples, which compare, copy and pickle."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, Iterator, NamedTuple, Optional, Tuple, Union

if TYPE_CHECKING:
    import numpy as np
    import pandas as pd
    from numpy.typing import NDArray


class Target(NamedTuple):
    """What a well holds for one detector.

    >>> vex2.Target("FAM", "STND", 1000.0)
    Target(detector='FAM', task='STND', quantity=1000.0, reporter='')
    """

    detector: str
    task: str = "UNKN"
    quantity: Optional[float] = None
    reporter: str = ""


class Well(NamedTuple):
    """A well of the plate setup. `number` counts from 1, by rows of the plate.

    >>> vex2.open("run.vex").plate["A1"].sample
    'control'
    """

    number: int
    name: str = ""
    sample: str = ""
    targets: Tuple[Target, ...] = ()


class Plate(NamedTuple):
    """The plate and what its wells hold; `wells` ascend by number.

    >>> plate = vex2.open("run.vex").plate
    >>> plate.rows, plate.columns, plate["B2"].number
    (8, 12, 14)
    """

    rows: int = 8
    columns: int = 12
    wells: Tuple[Well, ...] = ()
    type: str = ""

    def __getitem__(self, key: Any) -> Any:
        """The well of this name, or of this number from 1; `NotFoundError` without one."""
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
        """A pandas DataFrame of the wells, a row for each target: see `Run.wells`.

        >>> vex2.open("run.vex").plate.to_frame().shape
        (96, 9)
        """
        from ._wells import frame_of

        return frame_of(self)

    def _repr_html_(self) -> str:
        from ._html import plate_html

        return plate_html(self)


class Detector(NamedTuple):
    """A named pair of dyes, with the settings that an analysis starts from.

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
    """The thermal cycling program: bytes of the instrument, and the text where they are one.

    >>> program = vex2.open("run.vex").program
    >>> program.text == program.data.decode("latin-1")
    True
    """

    data: bytes
    text: Optional[str] = None


class Spectrum(NamedTuple):
    """One spectrum of a calibration. `values` is a float32 array, one number for each filter.

    `bytes` and `params` belong to pure dyes, `limit` to the background; the other part's are 0.

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
        """Whether all fields are equal; the values by their bytes, so that NaN equals itself."""
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
    """The pure dyes or the background; the numbers of the head are the instrument's.

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
    """A document's calibration; a part that it lacks is None.

    >>> vex2.open("run.vex").calibration.background is None
    True
    """

    pure_dyes: Optional[CalibrationPart] = None
    background: Optional[CalibrationPart] = None


class BlockInfo(NamedTuple):
    """A data block without its frames. `start` and `end` are ISO 8601, where they are known.

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
    """The document's header, its codes as they are stored, with the blanks behind them.

    `usage` has a mask for each row of the plate: bit j is set where column j, from 0, is in use.

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
    """A record of the file: a tag, a length and a body, with the records within it.

    `value` is what it holds besides records: a number, a text, bytes, the three bytes of a colour,
    or None. `fields` are those of a well's record and of a data block.

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
        """This record and all records within it, in the order of the file.

        >>> tree = vex2.open("run.vex").records()
        >>> sum(1 for record in tree[0].walk()) > 1
        True
        """
        yield self
        for child in self.children:
            yield from child.walk()


class Fault(NamedTuple):
    """What is wrong at a place in the file.

    >>> vex2.open("run.vex").faults
    ()
    """

    offset: int
    what: str


class Finding(NamedTuple):
    """Something about a document that its owner should know; `severity` is error, warning or note.

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
    """What `check` found: the first 1000 findings, the gravest first, and how many there were.

    >>> findings = vex2.check(b"nothing")
    >>> findings.errors, findings.warnings, findings.notes
    (1, 0, 0)
    """

    list: Tuple[Finding, ...]
    errors: int
    warnings: int
    notes: int


class Patch(NamedTuple):
    """A 32-bit word that a repair overwrites.

    >>> vex2.Patch(1028, 70, 72, "length of GLBL").offset
    1028
    """

    offset: int
    before: int
    after: int
    what: str


class RepairReport(NamedTuple):
    """What a repair found and did; `backup` is the path of the copy that was made before.

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
    """A place in the damaged file: `bytes` are those that were lost there.

    >>> vex2.RecoverNote(1024, 8, "the record is cut short").bytes
    8
    """

    offset: int
    bytes: int
    what: str


class RecoverReport(NamedTuple):
    """What a recovery found of a damaged file, and what it did not.

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
        """Whether nothing was lost and no head was made anew.

        >>> vex2.recover("run.vex", "recovered.vex", replace=True).is_whole
        True
        """
        return not (self.lost_bytes or self.lost_records or self.lost_frames or self.made_heads)
