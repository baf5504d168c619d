"""The content of a plate document without its readings."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Callable, Dict, Optional, Self, Tuple, Union

from . import _vex2
from ._errors import usage
from ._source import Source
from ._values import BlockInfo, Calibration, Detector, Fault, Header, Plate, Program, Record

if TYPE_CHECKING:
    import pandas as pd


class Document:
    """A document that was read without its frames. `Run` adds the frames."""

    def __init__(
        self,
        source: Source,
        reader: Optional[Any] = None,
        plate: Optional[Tuple[int, str]] = None,
    ) -> None:
        self._source = source
        self._reader = reader or source.call(_vex2.Reader, source.path)
        self._plate = plate
        self._is_open = True
        self._kept: Dict[str, Any] = {}

    # --- Opening and closing ---

    @property
    def path(self) -> str:
        """The path as it was given; for a file object its name, for bytes "<bytes>".

        >>> vex2.open("run.vex").path
        'run.vex'
        """
        return self._source.name

    def close(self) -> None:
        """Releases the readings. What was read at opening stays available, but frames can no longer
        be read.

        Arrays that were returned before stay valid. Closing again does nothing.

        >>> run = vex2.open("run.vex")
        >>> run.close()
        >>> run.closed
        True
        """
        self._is_open = False
        self._let_go()

    def _let_go(self) -> None:
        """Releases what can be read again."""

    @property
    def closed(self) -> bool:
        """Whether the run was closed.

        >>> vex2.open("run.vex").closed
        False
        """
        return not self._is_open

    def __enter__(self) -> Self:
        return self

    def __exit__(self, *failure: object) -> None:
        self.close()

    def _require_open(self, what: str) -> None:
        if not self._is_open:
            raise usage(f"cannot read {what}: the run is closed; open it again", self.path)

    def _read(self, operation: str, what: str, *arguments: Any) -> Any:
        self._require_open(what)
        return self._source.call(getattr(self._reader, operation), *arguments)

    def _keep(self, name: str, make: Callable[[], Any]) -> Any:
        if name not in self._kept:
            self._kept[name] = make()
        return self._kept[name]

    # --- What the document says ---

    @property
    def is_whole(self) -> bool:
        """Whether the whole file could be read.

        >>> vex2.open("run.vex").is_whole
        True
        """
        whole: bool = self._reader.is_whole()
        return whole

    @property
    def faults(self) -> Tuple[Fault, ...]:
        """What could not be read or was left out, in the order of the offsets.

        >>> vex2.open("run.vex").faults
        ()
        """
        faults: Tuple[Fault, ...] = self._reader.faults()
        return faults

    @property
    def status(self) -> str:
        """The acquisition status: "ZERO", "PROG", "DONE", or a code of another program.

        >>> vex2.open("run.vex").status
        'DONE'
        """
        return str(self._reader.status())

    @property
    def assay(self) -> str:
        """The assay code, such as "AbsQ".

        >>> vex2.open("run.vex").assay
        'AbsQ'
        """
        return str(self._reader.assay())

    @property
    def kind(self) -> str:
        """The kind marker, such as "Kest".

        >>> vex2.open("run.vex").kind
        'Kest'
        """
        return str(self._reader.kind())

    @property
    def header(self) -> Header:
        """All fields of the header. They are read from the file on the first access.

        >>> vex2.open("run.vex").header.columns
        12
        """
        header: Header = self._head()[0]
        return header

    def _head(self) -> Any:
        def read() -> Any:
            self._require_open("the header")
            return self._source.call(_vex2.head, self._source.path, self._plate_index)

        return self._keep("head", read)

    @property
    def _plate_index(self) -> Optional[int]:
        return None if self._plate is None else self._plate[0]

    @property
    def plate(self) -> Plate:
        """The plate and the contents of its wells, without pandas.

        >>> [target.detector for target in vex2.open("run.vex").plate["A3"].targets]
        ['GENE']
        """
        plate: Plate = self._keep("plate", self._reader.plate_setup)
        return plate

    @property
    def wells(self) -> pd.DataFrame:
        """The plate setup as a DataFrame, with one row for each target and for each well without a
        target.

        The columns are well (its name), number (from 1), row, column (from 1), sample, target,
        task, quantity and reporter. Target, task and reporter are None in a well without a target;
        a quantity that is not set is NaN.

        >>> vex2.open("run.vex").wells.loc[2, ["well", "sample", "target", "quantity"]].tolist()
        ['A3', 'standard', 'GENE', 1000.0]
        """
        return self.plate.to_frame()

    @property
    def settings(self) -> Dict[str, Union[int, float, str]]:
        """The run-wide settings in the document, under the names that `vex set --help` lists.

        >>> vex2.open("run.vex").settings["comment"]
        'a sample run'
        """
        settings: Dict[str, Union[int, float, str]] = self._reader.settings()
        return settings

    @property
    def program(self) -> Optional[Program]:
        """The thermal cycling program; None if the document has none.

        >>> type(vex2.open("run.vex").program.data)
        <class 'bytes'>
        """
        program: Optional[Program] = self._reader.program()
        return program

    @property
    def detectors(self) -> Tuple[Detector, ...]:
        """The detectors in the order of the document; `pandas.DataFrame(run.detectors)` is a table.

        >>> [detector.name for detector in vex2.open("run.vex").detectors]
        ['GENE']
        """
        detectors: Tuple[Detector, ...] = self._reader.detectors()
        return detectors

    @property
    def required_dyes(self) -> Tuple[str, ...]:
        """The names of the dyes that the run requires.

        >>> vex2.open("run.vex").required_dyes
        ('FAM',)
        """
        dyes: Tuple[str, ...] = self._reader.required_dyes()
        return dyes

    @property
    def calibration(self) -> Calibration:
        """The spectra of the pure dyes and the background.

        >>> vex2.open("run.vex").calibration
        Calibration(pure_dyes=None, background=None)
        """
        calibration: Calibration = self._reader.calibration()
        return calibration

    @property
    def blocks(self) -> Tuple[BlockInfo, ...]:
        """The data blocks in the order of the document.

        >>> [block.tag for block in vex2.open("run.vex").blocks]
        ['RAWa']
        """
        blocks: Tuple[BlockInfo, ...] = self._keep("infos", self._reader.blocks)
        return blocks

    def records(self) -> Tuple[Record, ...]:
        """Every record of the document, as a tree.

        Raises:
            UsageError: the run is closed.
            FileError: the file cannot be read.

        >>> [record.tag for record in vex2.open("run.vex").records()][:2]
        ['CELS', 'DETL']
        """
        self._require_open("the records")
        path = self._source.path
        records: Tuple[Record, ...] = self._source.call(_vex2.records, path, self._plate_index)
        return records

    def to_bytes(self) -> bytes:
        """The document's file, byte by byte.

        >>> vex2.open(vex2.open("run.vex").to_bytes()).status
        'DONE'
        """
        self._require_open("the file")
        return self._source.content()
