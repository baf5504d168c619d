"""Reading a plate document."""

from __future__ import annotations

import os
from collections.abc import Mapping
from typing import TYPE_CHECKING, Any, BinaryIO, Callable, Dict, Iterator, Optional, Tuple, Union

from ._block import Axis, Block, Curves, Frame, Frames
from ._document import Document
from ._errors import usage
from ._source import Source, source_of
from ._values import BlockInfo

if TYPE_CHECKING:
    import numpy as np
    import pandas as pd
    from numpy.typing import NDArray

RAW = "RAWa"


class Run(Document):
    """The content of a plate document, and its readings on demand; see `open`.

    Opening reads everything except the frames. Each later access to frames opens the file, reads it
    and closes it, so a recorder can continue. A new `Run` sees the frames that were committed in
    the meantime. If the document was replaced, frames cannot be read any more. Runs can be used
    from several threads, copied, used after a fork, and pickled (by path, or with their bytes if
    they have no path).

    >>> run = vex2.open("run.vex")
    >>> run
    <vex2.Run run.vex: DONE, 96 wells, 45 frames>
    """

    def _let_go(self) -> None:
        for block in self._kept.get("blocks", {}).values():
            block._content = None

    # --- Readings ---

    def block(self, tag: str) -> Block:
        """The first data block with this tag: "RAWa", "REPr", "REPn", "REPd" or "REPt".

        A run without raw readings has an empty block "RAWa".

        Raises:
            NotFoundError: the block does not exist.

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

        The array is the memory into which the file was read; nothing is copied. It is kept until
        the run is closed.

        Raises:
            UsageError: the run is closed.
            DocumentError: the file was replaced, or the readings are cut off.
            FileError: the file cannot be read.

        >>> readings = vex2.open("run.vex").readings
        >>> readings.shape, str(readings.dtype)
        ((45, 96, 32), 'uint16')
        """
        return self.block(RAW).readings

    @property
    def fluorescence(self) -> NDArray[np.float64]:
        """The raw readings in real units: float64 array (frames, wells, channels).

        A missing reading is NaN. If another program recorded the readings, their meaning is not
        known, and the array has no channels.

        >>> vex2.open("run.vex").fluorescence.shape
        (45, 96, 1)
        """
        return self.block(RAW).fluorescence

    @property
    def axis(self) -> Axis:
        """Stage, cycle, time and temperature of each frame.

        >>> vex2.open("run.vex").axis.temperature_c[:2].tolist()
        [60.0, 60.0]
        """
        return self.block(RAW).axis

    @property
    def frames(self) -> Frames:
        """The frames of the raw readings. Each frame is read from the file when it is accessed.

        >>> len(vex2.open("run.vex").frames)
        45
        """
        return self.block(RAW).frames

    @property
    def amplification(self) -> Curves:
        """The amplification curves, by cycle.

        >>> vex2.open("run.vex").amplification
        <vex2.Curves amplification: 40 frames, 96 wells, 1 channels>
        """
        return Curves("amplification", self.block(RAW))

    @property
    def melting(self) -> Curves:
        """The melting curves, by temperature.

        >>> vex2.open("run.vex").melting.temperature_c.tolist()
        [60.0, 65.0, 70.0, 75.0, 80.0]
        """
        return Curves("melt", self.block(RAW))

    def tidy(self) -> pd.DataFrame:
        """The readings as a long table: a row for each well, frame and channel, wells outermost.

        The columns are well, stage ("amplification" or "melt"), cycle, time_s, temperature_c,
        fluorescence, sample and target. If the meaning of the readings is not known, because
        another program recorded them, frame (from 0) follows well. If the channels have names,
        channel follows. For a study, plate is the first column.

        >>> table = vex2.open("run.vex").tidy()
        >>> table.columns.tolist()
        ['well', 'stage', 'cycle', 'time_s', 'temperature_c', 'fluorescence', 'sample', 'target']
        >>> len(table)
        4320
        """
        from ._tidy import tidy_of

        return tidy_of(self)

    def cq(
        self,
        *,
        method: str = "threshold",
        threshold: Optional[float] = None,
        baseline: Optional[Tuple[float, float]] = None,
        detector: Optional[str] = None,
    ) -> pd.DataFrame:
        """The quantification cycle of each well and target, as `vex cq` finds it.

        The columns are well, number, sample, target, task, quantity, cq (NaN where there is none),
        reason (why there is none), note, threshold, baseline_start, baseline_end, amplitude, noise,
        and the quantity from the standard curve: estimate, estimate_low and estimate_high, the ends
        of the 95 % confidence interval. For a study, plate is the first column.

        Args:
            method: "threshold", or "sdm" for the maximum of the second derivative.
            threshold: for all targets, in the unit of the readings; without it, the threshold of
                each target.
            baseline: (first, last) cycle, for all wells; without it, the baseline in the document
                or one that is fitted to the curve.
            detector: analyse only this detector.

        Raises:
            DocumentError: the document has no amplification readings whose meaning is known.
            UsageError: the detector or method does not exist, or a number is not valid.

        >>> table = vex2.open("run.vex").cq()
        >>> table.loc[0, "well"], table.loc[0, "target"], round(float(table.loc[0, "cq"]), 1)
        ('A1', 'GENE', 19.7)
        """
        from ._analysis import CqOptions, cq_of

        return cq_of(self, CqOptions(method, threshold, baseline, detector))

    def standard_curves(
        self,
        *,
        method: str = "threshold",
        threshold: Optional[float] = None,
        baseline: Optional[Tuple[float, float]] = None,
        detector: Optional[str] = None,
    ) -> pd.DataFrame:
        """The standard curves, one row for each target that has enough standards.

        The columns are target, wells (the number of wells in the line), slope (change in cycles
        when the quantity is ten times larger), intercept, efficiency (1 if each cycle doubles the
        quantity), efficiency_low, efficiency_high, r_squared, r_squared_of_means,
        residual_deviation and limit_of_detection. The arguments and errors are those of `cq`.

        >>> vex2.open("run.vex").standard_curves()["wells"].tolist()
        [24]
        """
        from ._analysis import CqOptions, standard_curves_of

        return standard_curves_of(self, CqOptions(method, threshold, baseline, detector))

    def melting_peaks(self, *, detector: Optional[str] = None) -> pd.DataFrame:
        """The melting peaks as `vex melt` finds them, one row for each peak of a well and target.

        The columns are well, number, sample, target, task, quantity, temperature_c, height (the
        fluorescence lost per degree), width (degrees) and prominence.

        Raises:
            DocumentError: the document has no melting of at least five temperatures.
            UsageError: the detector does not exist.

        >>> vex2.open("run.vex").melting_peaks().columns.tolist()[-4:]
        ['temperature_c', 'height', 'width', 'prominence']
        """
        from ._analysis import melting_peaks_of

        return melting_peaks_of(self, detector)

    # --- Studies ---

    @property
    def is_study(self) -> bool:
        """Whether the document is a study, which holds several plates.

        >>> vex2.open("run.vex").is_study
        False
        """
        study: bool = self._reader.is_study()
        return study

    @property
    def plates(self) -> Plates:
        """The plates of a study, by name; empty for other documents.

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
    """The plates of a study by name, in the order of the study.

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

    Reads everything except the frames, so the time does not depend on the length of the run. A
    damaged document is read as far as possible: see `Run.is_whole`.

    Raises:
        MissingFileError: there is no such file.
        DocumentError: the file is not a plate document.
        FileError: the file cannot be read, or another program locks it for more than two seconds.

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
        NotFoundError: the frame does not exist (also an IndexError).

    >>> vex2.read_frame("run.vex", 3).cycle
    4
    """
    return open(document).block(block).frames[index]
