"""Recording runs."""

from __future__ import annotations

import os
import threading
from typing import TYPE_CHECKING, Any, Dict, Iterable, List, Mapping, Optional, Sequence, Tuple
from typing import Union

import numpy as np

from . import _vex2
from ._block import Frame
from ._edit import SettingValue, detectors_of, given_settings
from ._errors import Error, NotFoundError, UsageError, called, invalid, usage
from ._given import FrameShape, one_for_each, readings_in, words_in
from ._run import Run
from ._source import path_of
from ._values import Calibration, Detector, Plate
from ._wells import listed, names_in, well_name, well_number, wells_of, whole

if TYPE_CHECKING:
    import pandas as pd
    from numpy.typing import ArrayLike, NDArray

_SIZES = {96: (8, 12), 384: (16, 24)}
MELTING = ("melt", "melting")
_STAGES = ("amplification", *MELTING)
# The largest number that documents store in 16 bits.
_MOST_CYCLES = _MOST_WELLS = 65535


class Recorder:
    """A run that is being recorded to a document; see `record`."""

    def __init__(self, path: Any, plan: Dict[str, Any], resume: bool, replace: bool) -> None:
        self._path = os.fsdecode(path)
        self._lock = threading.Lock()
        self._is_measured = plan["scale"] is not None
        plate, wells, channels = plan["plate"], plan["wells"], plan["channels"]
        self._shape = FrameShape(plate.rows, plate.columns, tuple(wells), tuple(channels))
        ordered = {**plan, "wells": sorted(wells)}
        arguments = (path_of(path), ordered, resume, replace)
        self._recorder: Optional[Any] = called(_vex2.Recorder, *arguments, file=self._path)

    def _call(self, operation: str, *arguments: Any) -> Any:
        # Other threads can run while an operation writes, so a lock makes each operation exclusive.
        with self._lock:
            if self._recorder is None:
                raise usage("cannot be recorded: the recorder is closed", self._path)
            return called(getattr(self._recorder, operation), *arguments, file=self._path)

    @property
    def recorded_frames(self) -> int:
        """The number of frames that the document held when the run was resumed; 0 for a new
        document. Continue with the frame of this index.

        >>> with vex2.record("new.vex", 96, wells=["A1"]) as rec:
        ...     rec.recorded_frames
        0
        """
        return int(self._call("recorded_frames"))

    @property
    def frame_count(self) -> int:
        """The number of frames that are in the document now.

        >>> with vex2.record("new.vex", 96, wells=["A1"]) as rec:
        ...     rec.frame_count
        0
        """
        return int(self._call("frame_count"))

    @property
    def is_finished(self) -> bool:
        """Whether the run is complete.

        >>> vex2.record("new.vex", 96, wells=["A1"]).is_finished
        False
        """
        return bool(self._call("is_finished"))

    @property
    def wells(self) -> NDArray[np.uint16]:
        """The numbers of the wells that are read in each frame, in the order of the argument
        `wells`: uint16 array.

        >>> vex2.record("new.vex", 96, wells=["B1", "A1"]).wells.tolist()
        [13, 1]
        """
        return np.array(self._shape.wells, dtype=np.uint16)

    def append(
        self,
        frame: Union[Frame, ArrayLike],
        *,
        leading: Optional[ArrayLike] = None,
        stage: str = "amplification",
        cycle: Optional[int] = None,
        time_s: Optional[ArrayLike] = None,
        temperature_c: Optional[ArrayLike] = None,
    ) -> None:
        """Appends a frame; it is on the disk when this returns.

        Args:
            frame: for a recorder with a scale, the readings in real units, (wells,) or (wells,
                channels), NaN or masked for a missing reading; otherwise the stored readings,
                uint16 (wells, up to 32). The wells are in the order of `wells`. A Series or
                DataFrame whose index names the wells, or a `Frame` of another run, can be in any
                order.
            leading: without a scale, the values that are stored before the readings: uint16 (wells,
                8). The first value must not be 0, which marks an empty record. Without this
                argument, the first value of each record is 1.
            stage: with a scale, "amplification" or "melt".
            cycle: with a scale, the cycle within the stage, from 1; it must be above the recorded
                cycles.
            time_s: with a scale, seconds since the run began, one number or one for each well.
            temperature_c: with a scale, degrees Celsius, one number or one for each well.

        Raises:
            UsageError: the frame does not fit the plan, or the run is finished; the document is
                unchanged.
            FileError: a system call failed; the same frame can be appended again.

        >>> import numpy as np
        >>> with vex2.record("new.vex", 96, wells=["A1", "A2"], scale=1000) as rec:
        ...     rec.append([1.5, 1.25], cycle=1, time_s=30.0, temperature_c=60.0)
        """
        shape = self._shape
        given: Any = frame
        if isinstance(frame, Frame):
            places = shape.places([int(number) for number in frame.wells], "the frame")
            stage, cycle, time_s = frame.stage, frame.cycle, frame.time_s
            temperature_c, leading = frame.temperature_c, frame.leading[places]
            values: Any = frame.fluorescence if self._is_measured else frame.readings
            given = values[places]
        if not self._is_measured:
            words, front = words_in(given, leading, shape)
            self._call("append_raw", self.wells, front, words)
            return
        if stage not in _STAGES:
            raise usage(f"stage is {stage!r}, not 'amplification' or 'melt'", self._path)
        if cycle is None or time_s is None or temperature_c is None:
            raise usage("a frame in real units needs cycle, time_s and temperature_c", self._path)
        number = whole(cycle, "cycle")
        if not 1 <= number <= _MOST_CYCLES:
            raise usage(f"cycle is {number}, not a number from 1 to {_MOST_CYCLES}", self._path)
        times = one_for_each(time_s, shape, "time_s")
        temperatures = one_for_each(temperature_c, shape, "temperature_c")
        where = (stage in MELTING, number, times, temperatures)
        self._call("append_measured", self.wells, *where, readings_in(given, shape))

    def finish(self) -> None:
        """Ends the run: writes the end time and the status "DONE". Does nothing if the run is
        finished.

        Raises:
            UsageError: the planned number of frames is not reached.
            FileError: a system call failed; `finish` can be called again.

        >>> rec = vex2.record("new.vex", 96, wells=["A1"])
        >>> rec.finish()
        >>> rec.is_finished
        True
        """
        self._call("finish")

    def close(self) -> None:
        """Releases the document. A run that is not finished can be resumed.

        >>> vex2.record("new.vex", 96, wells=["A1"]).close()
        """
        with self._lock:
            self._recorder = None

    def __enter__(self) -> Recorder:
        return self

    def __exit__(self, kind: Optional[type], *failure: object) -> None:
        try:
            if kind is None and self._recorder is not None:
                self.finish()
        finally:
            self.close()

    def __repr__(self) -> str:
        if self._recorder is None:
            return f"<vex2.Recorder {self._path} (closed)>"
        return f"<vex2.Recorder {self._path}: {self.frame_count} frames>"


def plate_of(plate: Any, size: Optional[int] = None) -> Plate:
    """The plate for `record`, with the number of wells that the caller gives, if any."""
    if isinstance(plate, Run):
        plate = plate.plate
    if isinstance(plate, Plate):
        if size is not None and plate.rows * plate.columns != size:
            wells = plate.rows * plate.columns
            raise invalid(f"plate_size is {size}, but the plate has {wells} wells")
        if not 0 < plate.rows * plate.columns <= _MOST_WELLS:
            given = f"{plate.rows} x {plate.columns} wells"
            raise invalid(f"a plate of {given} cannot be recorded")
        return plate._replace(wells=wells_of(plate, plate.rows, plate.columns))
    if hasattr(plate, "__index__"):
        rows, columns = _shape_of(plate, "plate")
        if size not in (None, plate):
            raise invalid(f"plate_size is {size}, but the plate has {plate} wells")
        return Plate(rows, columns)
    if size is not None:
        shape = _shape_of(size, "plate_size")
        return Plate(*shape, wells_of(plate, *shape))
    failure: Optional[Error] = None
    for shape in _SIZES.values():
        try:
            return Plate(*shape, wells_of(plate, *shape))
        except NotFoundError:
            why = "the table names wells that no plate of 384 wells has"
            failure = usage(why, code="no-such-well")
        except UsageError as error:
            failure = error
    assert failure is not None
    raise failure


def _shape_of(size: int, what: str) -> Tuple[int, int]:
    if size not in _SIZES:
        raise invalid(f"{what} is {size}; a plate has 96 or 384 wells")
    return _SIZES[size]


def _wells_to_read(wells: Any, plate: Plate) -> List[int]:
    """The numbers of the wells that are read, in the given order."""
    numbers = [well_number(well, plate.rows, plate.columns) for well in listed(wells, "wells")]
    for index, number in enumerate(numbers):
        if number in numbers[:index]:
            raise invalid(f"well {well_name(number, plate.columns)} is given twice in wells")
    every = range(1, plate.rows * plate.columns + 1)
    return numbers or [well.number for well in plate.wells] or list(every)


def _count(frames: Any) -> int:
    count = whole(frames, "frame_count")
    if count < 0:
        raise invalid(f"frame_count is {count}, which is below 0")
    return count


def _scale_of(scale: Any, offset: Union[int, float, str]) -> Optional[Tuple[str, str]]:
    return None if scale is None else (str(scale), str(offset))


def record(
    path: Union[str, os.PathLike[str]],
    plate: Union[Plate, Run, int, pd.DataFrame] = 96,
    *,
    wells: Sequence[Union[str, int]] = (),
    detectors: Iterable[Detector] = (),
    required_dyes: Iterable[str] = (),
    settings: Optional[Mapping[str, SettingValue]] = None,
    program: bytes = b"",
    comment: str = "",
    calibration: Calibration = Calibration(),
    assay: str = "",
    started: Optional[str] = None,
    scale: Union[None, int, str] = None,
    offset: Union[int, float, str] = 0,
    channels: Sequence[str] = (),
    frame_count: Optional[int] = None,
    plate_size: Optional[int] = None,
    resume: bool = True,
    replace: bool = False,
) -> Recorder:
    """Records a run to a document. A frame is on the disk when `Recorder.append` returns. It stays
    there even if the program or the system crashes or the power fails.

    At the end of the `with` block the run is finished. After an exception it is not finished, and
    the same call resumes it: continue with the frame of the index `Recorder.recorded_frames`.

    Args:
        path: the document.
        plate: the plate and its wells: a `Plate`, a table with the columns of `Run.wells`, another
            run, or 96 or 384 for an empty plate.
        wells: the wells that are read in each frame, by name or number, in the order of the
            readings; without them, the wells of the plate setup, or all wells.
        detectors: details of detectors; the detectors in the wells are stored even without them.
        required_dyes: required dyes, in addition to the reporters of the targets.
        settings: run-wide settings, under the names that `vex set --help` lists.
        program: the thermal cycling program; without it, the program describes the frames.
        comment: the comment of the run.
        calibration: the calibration of the instrument.
        assay: the assay code of four characters; "AbsQ" by default.
        started: when the run began, such as "2026-11-22T08:00:00Z".
        scale: for frames in real units, such as 1000, "0.5" or "1000/3": (reading - offset) * scale
            is stored as a whole number from 0 to 65535. Without a scale, frames hold stored
            readings.
        offset: see `scale`.
        channels: the names of the channels; without them, a well has one reading in a frame.
        frame_count: the number of frames that the run will have; without it, the number is known
            when `Recorder.finish` is called.
        plate_size: 96 or 384, for a table; without it, the smaller plate that has all wells of the
            table with the same names and, if the table has numbers, the same numbers.
        resume: continue a document that holds the beginning of this run; a document that holds
            something else is refused.
        replace: overwrite an existing document instead of resuming it.

    Raises:
        UsageError: the plan cannot be stored.
        DocumentError: the existing document holds another run.
        FileThereError: the document exists, and neither `resume` nor `replace` is set.
        FileError: the document is being recorded or changed, or a system call failed.

    >>> import numpy as np
    >>> plate = vex2.Plate(wells=(vex2.Well(1, sample="water"),))
    >>> with vex2.record("water.vex", plate, scale=1000) as rec:
    ...     for cycle in range(1, 4):
    ...         rec.append([0.5], cycle=cycle, time_s=60 * cycle, temperature_c=60)
    >>> vex2.open("water.vex").fluorescence[:, 0, 0].tolist()
    [0.5, 0.5, 0.5]
    """
    if isinstance(program, str):
        raise invalid("the program is str, not bytes")
    setup = plate_of(plate, plate_size)
    plan = {
        "plate": setup,
        "wells": _wells_to_read(wells, setup),
        "detectors": detectors_of(detectors),
        "required_dyes": names_in(required_dyes, "required_dyes"),
        "settings": dict(given_settings(settings or {})),
        "program": bytes(program),
        "comment": comment,
        "calibration": calibration,
        "assay": assay,
        "started": started,
        "scale": _scale_of(scale, offset),
        "channels": names_in(channels, "channels"),
        "frame_count": None if frame_count is None else _count(frame_count),
    }
    return Recorder(path, plan, resume and not replace, replace)
