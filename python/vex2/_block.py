"""Data blocks: readings, frames, and the curves of a run."""

from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING, Any, Callable, Iterator, List, NamedTuple, Optional, Tuple, Union
from typing import overload

import numpy as np

from ._errors import usage
from ._values import BlockInfo
from ._wells import well_name, well_number

if TYPE_CHECKING:
    import pandas as pd
    from numpy.typing import NDArray

STAGES = ("", "amplification", "melt")


class Axis(NamedTuple):
    """Stage, cycle, time and temperature of the frames, each an array with one entry for each
    frame.

    `stage` holds "amplification", "melt", or "" if the stage is not known. `cycle` counts from 1
    within its stage and is 0 if it is not known. Unknown times and temperatures are NaN.

    >>> axis = vex2.open("run.vex").axis
    >>> axis.stage[0], axis.cycle[0], axis.time_s[0]
    ('amplification', 1, 30.0)
    """

    stage: NDArray[np.object_]
    cycle: NDArray[np.uint16]
    time_s: NDArray[np.float64]
    temperature_c: NDArray[np.float64]


def stage_names(codes: NDArray[np.uint8]) -> NDArray[np.object_]:
    return np.array(STAGES, dtype=object)[codes]


def axis_of(parts: Tuple[Any, Any, Any, Any]) -> Axis:
    stages, cycles, times, temperatures = parts
    return Axis(stage_names(stages), cycles, times, temperatures)


class Frame:
    """One reading of all wells.

    >>> frame = vex2.open("run.vex").frames[3]
    >>> frame.index, frame.stage, frame.cycle, frame.readings.shape
    (3, 'amplification', 4, (96, 32))

    Attributes:
        index: the index of the frame in its block, from 0.
        stage: "amplification", "melt", or "" if it is not known.
        cycle: the cycle within the stage, from 1; None if it is not known.
        time_s: seconds since the run began, for the first well; None if not known.
        temperature_c: degrees Celsius, for the first well; None if not known.
        wells: uint16 array (wells,): the well numbers, from 1.
        leading: uint16 array (wells, 8): the values that are stored before the readings.
        readings: uint16 array (wells, 32): the readings as stored.
        fluorescence: float64 array (wells, channels), NaN for a missing reading; without channels
            if the meaning of the readings is not known.
    """

    __slots__ = (
        "index",
        "stage",
        "cycle",
        "time_s",
        "temperature_c",
        "wells",
        "leading",
        "readings",
        "fluorescence",
    )

    def __init__(
        self,
        index: int,
        position: Tuple[int, Optional[int], Optional[float], Optional[float]],
        wells: NDArray[np.uint16],
        leading: NDArray[np.uint16],
        readings: NDArray[np.uint16],
        fluorescence: NDArray[np.float64],
    ) -> None:
        stage, self.cycle, self.time_s, self.temperature_c = position
        self.index = index
        self.stage = STAGES[stage]
        self.wells = wells
        self.leading = leading
        self.readings = readings
        self.fluorescence = fluorescence

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Frame):
            return NotImplemented
        mine, theirs = self.fluorescence, other.fluorescence
        return np.array_equal(mine, theirs, equal_nan=True) and all(
            np.array_equal(getattr(self, name), getattr(other, name))
            for name in self.__slots__[:-1]
        )

    __hash__ = None  # type: ignore[assignment]

    def __reduce__(self) -> Tuple[Callable[..., Frame], Tuple[Any, ...]]:
        stage = STAGES.index(self.stage)
        position = (stage, self.cycle, self.time_s, self.temperature_c)
        arrays = (self.wells, self.leading, self.readings, self.fluorescence)
        return Frame, (self.index, position, *arrays)

    def __repr__(self) -> str:
        where = f" {self.stage} cycle {self.cycle}" if self.stage else ""
        return f"<vex2.Frame {self.index}:{where} {len(self.wells)} wells>"


class Frames(Sequence[Frame]):
    """The frames of a block. Each frame is read from the file when it is accessed.

    >>> frames = vex2.open("run.vex").frames
    >>> len(frames), frames[-1].stage, [frame.cycle for frame in frames[:3]]
    (45, 'melt', [1, 2, 3])
    """

    def __init__(self, block: Block) -> None:
        self._block = block

    def __len__(self) -> int:
        return self._block.info.frame_count

    @overload
    def __getitem__(self, index: int) -> Frame: ...

    @overload
    def __getitem__(self, index: slice) -> List[Frame]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Frame, List[Frame]]:
        if isinstance(index, slice):
            return [self._block._frame(each) for each in range(*index.indices(len(self)))]
        at = index + len(self) if index < 0 else index
        if at < 0:
            count = f"the block {self._block.info.tag} has {len(self)} frames"
            raise usage(f"it has no frame {index}; {count}", code="no-such-frame")
        return self._block._frame(at)

    def __iter__(self) -> Iterator[Frame]:
        return (self._block._frame(index) for index in range(len(self)))

    def __repr__(self) -> str:
        return f"<vex2.Frames of {self._block.info.tag}: {len(self)}>"


class Curves:
    """The readings of one stage, with their axes.

    >>> curves = vex2.open("run.vex").amplification
    >>> curves.fluorescence.shape, curves.cycle[:3].tolist()
    ((40, 96, 1), [1, 2, 3])

    Attributes:
        stage: "amplification" or "melt".
        wells: the names of the wells, in the order of the second axis.
        channels: the names of the channels, in the order of the third axis; a single channel can
            have the name "".
        cycle: uint16 array (frames,), from 1 within the stage.
        time_s: float64 array (frames,), seconds since the run began.
        temperature_c: float64 array (frames,), degrees Celsius.
        fluorescence: float64 array (frames, wells, channels); NaN for a missing reading.
    """

    def __init__(self, stage: str, block: Block) -> None:
        axis = block.axis
        chosen = axis.stage == stage
        self.stage = stage
        self.wells = block.well_names
        self.channels = block.channels
        self.cycle: NDArray[np.uint16] = axis.cycle[chosen]
        self.time_s: NDArray[np.float64] = axis.time_s[chosen]
        self.temperature_c: NDArray[np.float64] = axis.temperature_c[chosen]
        self.fluorescence: NDArray[np.float64] = block.fluorescence[chosen]

    def well(self, name: str, channel: int = 0) -> NDArray[np.float64]:
        """The curve of one well: float64 array (frames,).

        Raises:
            NotFoundError: the block has no such well or channel.

        >>> vex2.open("run.vex").amplification.well("A1").shape
        (40,)
        """
        if name not in self.wells:
            raise usage(f"well {name!r} has no readings", code="no-such-well")
        return self._of_channel(channel)[:, self.wells.index(name)]

    def _of_channel(self, channel: int) -> NDArray[np.float64]:
        count = self.fluorescence.shape[2]
        if not -count <= channel < count:
            why = f"there are {count}" if count else "the meaning of the readings is not known"
            raise usage(f"there is no channel {channel}: {why}", code="no-such-value")
        curves: NDArray[np.float64] = self.fluorescence[:, :, channel]
        return curves

    def to_frame(self, channel: int = 0) -> pd.DataFrame:
        """Returns a DataFrame with a column for each well. The index is the cycle for an
        amplification and the temperature for a melting.

        Raises:
            NotFoundError: the channel does not exist.

        >>> vex2.open("run.vex").melting.to_frame().index.name
        'temperature_c'
        """
        import pandas

        is_melting = self.stage == STAGES[2]
        index = pandas.Index(
            self.temperature_c if is_melting else self.cycle,
            name="temperature_c" if is_melting else "cycle",
        )
        return pandas.DataFrame(self._of_channel(channel), index, list(self.wells))

    def __repr__(self) -> str:
        frames, wells, channels = self.fluorescence.shape
        return f"<vex2.Curves {self.stage}: {frames} frames, {wells} wells, {channels} channels>"

    def _repr_html_(self) -> str:
        from ._html import curves_html

        return curves_html(self)


class Block:
    """A data block of a document. Frames and readings are read from the file when they are
    accessed; the readings are then kept in memory.

    >>> block = vex2.open("run.vex").block("RAWa")
    >>> block.readings.dtype, block.readings.shape
    (dtype('uint16'), (45, 96, 32))
    """

    def __init__(
        self, info: BlockInfo, read: Callable[..., Any], rows: int, columns: int
    ) -> None:
        self.info = info
        self._read = read
        self._rows, self._columns = rows, columns
        self._content: Optional[Tuple[Any, Any]] = None

    def _frame(self, index: int) -> Frame:
        return Frame(*self._read("frame", "a frame", index, self.info.tag))

    def _all(self) -> Tuple[Any, Any]:
        # Another thread may close the run at the same time.
        content = self._content
        if content is None:
            readings = self._read("readings", "the readings", self.info.tag)
            content = self._content = (readings, readings.values())
        return content

    @property
    def readings(self) -> NDArray[np.uint16]:
        """The readings as stored: uint16 array (frames, wells, 32), read-only.

        The array is the memory into which the file was read; nothing is copied.

        >>> vex2.open("run.vex").block("RAWa").readings.flags.writeable
        False
        """
        values: NDArray[np.uint16] = self._all()[1]
        return values

    @property
    def wells(self) -> NDArray[np.uint16]:
        """The well numbers, from 1, in the order of each frame: uint16 array (wells,).

        >>> vex2.open("run.vex").block("RAWa").wells[:3].tolist()
        [1, 2, 3]
        """
        return np.array(self.info.wells, dtype=np.uint16)

    @property
    def well_names(self) -> Tuple[str, ...]:
        """The names of the wells, in the order of each frame.

        >>> vex2.open("run.vex").block("RAWa").well_names[:3]
        ('A1', 'A2', 'A3')
        """
        return tuple(well_name(number, self._columns) for number in self.info.wells)

    @property
    def axis(self) -> Axis:
        """Stage, cycle, time and temperature of each frame. Reads only one well record of each
        frame.

        >>> vex2.open("run.vex").block("RAWa").axis.cycle.shape
        (45,)
        """
        content = self._content
        if content is not None:
            return axis_of(content[0].axis())
        return axis_of(self._read("axis", "the axis", self.info.tag))

    @property
    def channels(self) -> Tuple[str, ...]:
        """The names of the channels. A single channel can have the name "". Without channels if the
        meaning of the readings is not known.

        >>> vex2.open("run.vex").block("RAWa").channels
        ('',)
        """
        meaning = self._all()[0].meaning()
        return () if meaning is None else meaning[2] or ("",)

    @property
    def scale(self) -> Optional[Tuple[str, str]]:
        """How readings became stored numbers: (scale, offset) as texts. A stored number is (reading
        - offset) * scale, rounded. None if this is not known.

        >>> vex2.open("run.vex").block("RAWa").scale
        ('1000', '0')
        """
        meaning = self._all()[0].meaning()
        return None if meaning is None else meaning[:2]

    @property
    def fluorescence(self) -> NDArray[np.float64]:
        """The readings in real units: float64 array (frames, wells, channels), NaN for a missing
        reading. Without channels if the meaning of the readings is not known.

        >>> vex2.open("run.vex").block("RAWa").fluorescence.shape
        (45, 96, 1)
        """
        values: NDArray[np.float64] = self._all()[0].fluorescence()
        return values

    @property
    def frames(self) -> Frames:
        """The frames, counted from 0. Each frame is read when it is accessed.

        >>> vex2.open("run.vex").block("RAWa").frames[44].index
        44
        """
        return Frames(self)

    def find(self, well: Union[str, int]) -> int:
        """The index of the well with this name or number; it is the same in each frame.

        Raises:
            NotFoundError: the block has no readings of the well.

        >>> vex2.open("run.vex").block("RAWa").find("B1")
        12
        """
        number = well_number(well, self._rows, self._columns)
        if number not in self.info.wells:
            raise usage(f"well {well!r} has no readings", code="no-such-well")
        return self.info.wells.index(number)

    def __len__(self) -> int:
        return self.info.frame_count

    def __repr__(self) -> str:
        info = self.info
        return f"<vex2.Block {info.tag}: {info.frame_count} frames, {len(info.wells)} wells>"
