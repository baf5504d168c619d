"""A plate document that is read."""

from __future__ import annotations

import os
from collections.abc import Mapping
from typing import TYPE_CHECKING, Any, BinaryIO, Callable, Dict, Iterator, Optional, Tuple, Union

from . import _vex2
from ._block import Axis, Block, Curves, Frame, Frames
from ._errors import usage
from ._source import Source, source_of
from ._values import BlockInfo, Calibration, Detector, Fault, Header, Plate, Program, Record

if TYPE_CHECKING:
    import numpy as np
    import pandas as pd
    from numpy.typing import NDArray

RAW = "RAWa"


class Run:
    """What a plate document says, and its readings on demand: see `open`.

    Opening reads all but the frames. Each later access to frames opens the file, reads and closes
    it, so a recorder may go on; a new run sees the frames that came since. A document that was
    replaced since refuses to give frames. Runs can be used from several threads, copied, pickled
    (by path, or with their bytes where they have none) and used after a fork.

    >>> run = vex2.open("run.vex")
    >>> run
    <vex2.Run run.vex: DONE, 96 wells, 45 frames>
    """

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
        """As it was given; the name of a file object, or "<bytes>".

        >>> vex2.open("run.vex").path
        'run.vex'
        """
        return self._source.name

    def close(self) -> None:
        """Lets go of the readings. What was read at opening stays; frames can be read no more.

        Arrays that were handed out stay valid. Closing again does nothing.

        >>> run = vex2.open("run.vex")
        >>> run.close()
        >>> run.closed
        True
        """
        self._is_open = False
        for block in self._kept.get("blocks", {}).values():
            block._content = None

    @property
    def closed(self) -> bool:
        """Whether the run was closed.

        >>> vex2.open("run.vex").closed
        False
        """
        return not self._is_open

    def __enter__(self) -> Run:
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
        """Whether all that stands in the file was read.

        >>> vex2.open("run.vex").is_whole
        True
        """
        whole: bool = self._reader.is_whole()
        return whole

    @property
    def faults(self) -> Tuple[Fault, ...]:
        """What could not be read or was left out, by offset.

        >>> vex2.open("run.vex").faults
        ()
        """
        faults: Tuple[Fault, ...] = self._reader.faults()
        return faults

    @property
    def status(self) -> str:
        """How far the run has come: "ZERO", "PROG", "DONE", or another program's code.

        >>> vex2.open("run.vex").status
        'DONE'
        """
        return str(self._reader.status())

    @property
    def assay(self) -> str:
        """The code of the kind of run, as "AbsQ".

        >>> vex2.open("run.vex").assay
        'AbsQ'
        """
        return str(self._reader.assay())

    @property
    def kind(self) -> str:
        """The kind marker, as "Kest".

        >>> vex2.open("run.vex").kind
        'Kest'
        """
        return str(self._reader.kind())

    @property
    def header(self) -> Header:
        """All fields of the header, read from the file when they are first asked for.

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
        """The plate and what its wells hold, without pandas.

        >>> [target.detector for target in vex2.open("run.vex").plate["A3"].targets]
        ['GENE']
        """
        plate: Plate = self._keep("plate", self._reader.plate_setup)
        return plate

    @property
    def wells(self) -> pd.DataFrame:
        """The plate setup as a DataFrame, a row for each target and for each well without one.

        The columns are well (its name), number (from 1), row, column (from 1), sample, target,
        task, quantity and reporter. Target, task and reporter are None in a well without a target;
        a quantity that was not given is NaN.

        >>> vex2.open("run.vex").wells.loc[2, ["well", "sample", "target", "quantity"]].tolist()
        ['A3', 'standard', 'GENE', 1000.0]
        """
        return self.plate.to_frame()

    @property
    def settings(self) -> Dict[str, Union[int, float, str]]:
        """The run-wide settings that the document has, under the names of `vex set --help`.

        >>> vex2.open("run.vex").settings["comment"]
        'a sample run'
        """
        settings: Dict[str, Union[int, float, str]] = self._reader.settings()
        return settings

    @property
    def program(self) -> Optional[Program]:
        """The thermal cycling program; None where the document has none.

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

    # --- Readings ---

    def block(self, tag: str) -> Block:
        """The first data block of this tag: "RAWa", "REPr", "REPn", "REPd" or "REPt".

        A run without raw readings has an empty block of them.

        Raises:
            NotFoundError: there is no such block.

        >>> vex2.open("run.vex").block("RAWa")
        <vex2.Block RAWa: 45 frames, 96 wells>
        """
        blocks: Dict[str, Block] = self._keep("blocks", dict)
        if tag in blocks:
            return blocks[tag]
        infos = [info for info in self.blocks if info.tag == tag]
        if not infos and tag != RAW:
            raise usage(f'it has no data block "{tag}"', self.path, "no-such-value")
        info = infos[0] if infos else BlockInfo(tag, 0, 0, (), 0, False, None, None, b"", b"")
        plate = self.plate
        return blocks.setdefault(tag, Block(info, self._read, plate.rows, plate.columns))

    @property
    def readings(self) -> NDArray[np.uint16]:
        """The raw readings as stored: uint16 array (frames, wells, 32), read-only.

        The array is the memory that the file was read into; nothing is copied. It is kept until the
        run is closed.

        Raises:
            UsageError: the run is closed.
            DocumentError: the file was replaced, or the readings are cut short.
            FileError: the file cannot be read.

        >>> readings = vex2.open("run.vex").readings
        >>> readings.shape, str(readings.dtype)
        ((45, 96, 32), 'uint16')
        """
        return self.block(RAW).readings

    @property
    def fluorescence(self) -> NDArray[np.float64]:
        """The raw readings in real units: float64 array (frames, wells, channels).

        NaN where a reading is missing; no channels where the meaning of the readings is not known,
        which is so where another program recorded them.

        >>> vex2.open("run.vex").fluorescence.shape
        (45, 96, 1)
        """
        return self.block(RAW).fluorescence

    @property
    def axis(self) -> Axis:
        """Where each frame stands in the run.

        >>> vex2.open("run.vex").axis.temperature_c[:2].tolist()
        [60.0, 60.0]
        """
        return self.block(RAW).axis

    @property
    def frames(self) -> Frames:
        """The frames of the raw readings, each read from the file when it is asked for.

        >>> len(vex2.open("run.vex").frames)
        45
        """
        return self.block(RAW).frames

    @property
    def amplification(self) -> Curves:
        """The curves of the amplification, by cycle.

        >>> vex2.open("run.vex").amplification
        <vex2.Curves amplification: 40 frames, 96 wells, 1 channels>
        """
        return Curves("amplification", self.block(RAW))

    @property
    def melting(self) -> Curves:
        """The curves of the melting, by temperature.

        >>> vex2.open("run.vex").melting.temperature_c.tolist()
        [60.0, 65.0, 70.0, 75.0, 80.0]
        """
        return Curves("melt", self.block(RAW))

    def tidy(self) -> pd.DataFrame:
        """The readings as a long table: a row for each well, frame and channel, wells outermost.

        The columns are well, stage ("amplification" or "melt"), cycle, time_s, temperature_c,
        fluorescence, sample and target; behind the well the frame, from 0, where readings are of
        another program and their meaning is not known, and the channel where they have names. Of
        a study the plate stands in front.

        >>> table = vex2.open("run.vex").tidy()
        >>> table.columns.tolist()
        ['well', 'stage', 'cycle', 'time_s', 'temperature_c', 'fluorescence', 'sample', 'target']
        >>> len(table)
        4320
        """
        from ._tidy import tidy_of

        return tidy_of(self)

    # --- Studies ---

    @property
    def is_study(self) -> bool:
        """Whether the document holds plates to be compared.

        >>> vex2.open("run.vex").is_study
        False
        """
        study: bool = self._reader.is_study()
        return study

    @property
    def plates(self) -> Plates:
        """The plates of a study, by name; none of another document.

        >>> len(vex2.open("run.vex").plates)
        0
        """
        plates: Plates = self._keep("plates", lambda: Plates(self))
        return plates

    # --- As an object ---

    def __repr__(self) -> str:
        plate = f" [{self._plate[1]}]" if self._plate else ""
        if self.is_study:
            return f"<vex2.Run {self.path}: a study of {len(self.plates)} plates>"
        block = self.block(RAW).info
        size = self.plate.rows * self.plate.columns
        closed = ", closed" if self.closed else ""
        frames = f"{size} wells, {block.frame_count} frames"
        return f"<vex2.Run {self.path}{plate}: {self.status}, {frames}{closed}>"

    def _repr_html_(self) -> str:
        from ._html import run_html

        return run_html(self)

    def __reduce__(self) -> Tuple[Callable[..., Run], Tuple[Any, ...]]:
        return _again, (self._source, self._plate, self._is_open)

    def __copy__(self) -> Run:
        copy = Run(self._source, self._reader, self._plate)
        copy._is_open = self._is_open
        return copy

    def __deepcopy__(self, memo: Dict[int, Any]) -> Run:
        return self.__copy__()


def _again(source: Source, plate: Optional[Tuple[int, str]], is_open: bool) -> Run:
    run = Run(source)
    if plate is not None:
        run = run.plates[plate[1]]
    run._is_open = is_open
    return run


class Plates(Mapping[str, Run]):
    """The plates of a study by name, in its order.

    >>> list(vex2.open("study.vex").plates)
    ['plate1', 'plate2']
    """

    def __init__(self, study: Run) -> None:
        self._study = study
        self._names: Tuple[str, ...] = study._reader.plate_names()
        self._runs: Dict[str, Run] = {}

    def __getitem__(self, name: str) -> Run:
        if name not in self._names:
            raise usage(f"it has no plate '{name}'", self._study.path, "no-such-plate")
        if name not in self._runs:
            study = self._study
            index = self._names.index(name)
            self._runs[name] = Run(study._source, study._reader.plate(name), (index, name))
            self._runs[name]._is_open = study._is_open
        return self._runs[name]

    def __iter__(self) -> Iterator[str]:
        return iter(dict.fromkeys(self._names))

    def __len__(self) -> int:
        return len(set(self._names))

    def __repr__(self) -> str:
        return f"<vex2.Plates {', '.join(self)}>"


def open(document: Union[str, os.PathLike[str], bytes, bytearray, memoryview, BinaryIO]) -> Run:
    """Opens a plate document: a path, a file opened with "rb", or the bytes of a document.

    Reads all but the frames, so that it costs the same however long the run was. A damaged document
    is read as far as possible: ask `Run.is_whole`.

    Raises:
        MissingFileError: there is no such file.
        DocumentError: the file is not a plate document.
        FileError: the file cannot be read, or another program holds it for more than two seconds.

    >>> with vex2.open("run.vex") as run:
    ...     run.readings.max() > 0
    True
    """
    return Run(source_of(document))


def read_frame(
    document: Union[str, os.PathLike[str], bytes, BinaryIO], index: int, block: str = RAW
) -> Frame:
    """Reads one frame, from 0, without the others; a negative index counts from the end.

    Raises:
        NotFoundError: there is no such frame (also an IndexError).

    >>> vex2.read_frame("run.vex", 3).cycle
    4
    """
    return open(document).block(block).frames[index]
