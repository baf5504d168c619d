"""Recording runs."""

from __future__ import annotations

import os
import threading
from typing import TYPE_CHECKING, Any, Dict, Iterable, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from . import _vex2
from ._block import Frame
from ._edit import SettingValue, detectors_of
from ._errors import usage
from ._run import Run
from ._values import Calibration, Detector, Plate
from ._wells import well_number, wells_of

if TYPE_CHECKING:
    import pandas as pd
    from numpy.typing import ArrayLike, NDArray

_SIZES = {96: (8, 12), 384: (16, 24)}
MELTING = ("melt", "melting")
_STAGES = ("amplification", *MELTING)


class Recorder:
    """A run that is recorded to a document: see `record`."""

    def __init__(self, path: Any, plan: Dict[str, Any], resume: bool, replace: bool) -> None:
        self._path = os.fsdecode(path)
        self._lock = threading.Lock()
        self._is_measured = plan["scale"] is not None
        self._channels = max(len(plan["channels"]), 1)
        self._recorder: Optional[Any] = _vex2.Recorder(os.fsencode(path), plan, resume, replace)

    def _call(self, operation: str, *arguments: Any) -> Any:
        # Operations let other threads run while they write, so each has the recorder to itself.
        with self._lock:
            if self._recorder is None:
                raise usage("cannot be recorded: the recorder is closed", self._path)
            return getattr(self._recorder, operation)(*arguments)

    @property
    def recorded_frames(self) -> int:
        """The frames that the document held when it was resumed; go on with the frame of this
        index. 0 for a new document.

        >>> with vex2.record("new.vex", 96, wells=["A1"]) as rec:
        ...     rec.recorded_frames
        0
        """
        return int(self._call("recorded_frames"))

    @property
    def frame_count(self) -> int:
        """The frames that are in the document now.

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
        """The numbers of the wells that each frame has readings of, ascending: uint16 array.

        >>> vex2.record("new.vex", 96, wells=["A1", "B1"]).wells.tolist()
        [1, 13]
        """
        wells: NDArray[np.uint16] = self._call("wells")
        return wells

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
            frame: for a recorder with a scale the readings in real units, (wells,) or (wells,
                channels), NaN where one is missing; else the stored readings, uint16 (wells, up to
                32), or a `Frame` as another run has it. Wells are in the order of `wells`.
            leading: without a scale, the values stored in front of the readings: uint16 (wells, 8).
                The first must not be 0, which marks an empty record. Without this, each record
                has 1 there.
            stage: with a scale, "amplification" or "melt".
            cycle: with a scale, the cycle within the stage, from 1.
            time_s: with a scale, seconds since the run began, one number or one for each well.
            temperature_c: with a scale, degrees Celsius, one number or one for each well.

        Raises:
            UsageError: the frame does not fit the plan, or the run is finished; the document is
                unchanged.
            FileError: the system refuses; the same frame can be appended again.

        >>> import numpy as np
        >>> with vex2.record("new.vex", 96, wells=["A1", "A2"], scale=1000) as rec:
        ...     rec.append([1.5, 1.25], cycle=1, time_s=30.0, temperature_c=60.0)
        """
        wells = len(self.wells)
        if not self._is_measured:
            if isinstance(frame, Frame):
                leading = frame.leading
            readings = frame.readings if isinstance(frame, Frame) else frame
            self._call("append_raw", _leading(leading, wells), _stored(readings, wells))
            return
        if isinstance(frame, Frame):
            stage, cycle, time_s = frame.stage, frame.cycle, frame.time_s
            temperature_c, frame = frame.temperature_c, frame.fluorescence
        if stage not in _STAGES:
            raise usage(f"stage is {stage!r}, not 'amplification' or 'melt'", self._path)
        if cycle is None or time_s is None or temperature_c is None:
            raise usage("a frame in real units needs cycle, time_s and temperature_c", self._path)
        values = _measured(frame, wells, self._channels)
        times, temperatures = _each(time_s, wells), _each(temperature_c, wells)
        where = (stage in MELTING, cycle, times, temperatures)
        self._call("append_measured", *where, values)

    def finish(self) -> None:
        """Ends the run: writes the end time and the status "DONE". Nothing for a finished run.

        Raises:
            UsageError: the number of frames that was planned is not reached.
            FileError: the system refuses; this can be tried again.

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


def _words(array: ArrayLike, what: str) -> NDArray[np.uint16]:
    given = np.asarray(array)
    words = given.astype(np.uint16)
    if not np.array_equal(words, given):
        raise usage(f"{what} must be whole numbers from 0 to 65535", code="invalid-value")
    return np.ascontiguousarray(words)


def _leading(leading: Optional[ArrayLike], wells: int) -> NDArray[np.uint16]:
    words = _words(np.ones((wells, 8)) if leading is None else leading, "leading values")
    if words.shape != (wells, 8):
        raise usage(f"leading has the shape {words.shape}, not ({wells}, 8)", code="invalid-value")
    return words


def _stored(readings: ArrayLike, wells: int) -> NDArray[np.uint16]:
    words = _words(readings, "readings")
    if words.ndim != 2 or words.shape[0] != wells or words.shape[1] > 32:
        shape = f"({wells}, up to 32)"
        raise usage(f"the frame has the shape {words.shape}, not {shape}", code="invalid-value")
    full = np.zeros((wells, 32), dtype=np.uint16)
    full[:, : words.shape[1]] = words
    return full


def _measured(values: ArrayLike, wells: int, channels: int) -> NDArray[np.float64]:
    numbers = np.asarray(values, dtype=np.float64)
    if numbers.ndim == 1 and channels == 1:
        numbers = numbers.reshape(-1, 1)
    if numbers.shape != (wells, channels):
        shape = f"({wells}, {channels})"
        raise usage(f"the frame has the shape {numbers.shape}, not {shape}", code="invalid-value")
    return numbers


def _each(value: ArrayLike, wells: int) -> NDArray[np.float64]:
    numbers = np.asarray(value, dtype=np.float64)
    if numbers.shape not in ((), (wells,)):
        raise usage(f"one number, or one for each of {wells} wells, is needed, not {numbers.shape}")
    return np.ascontiguousarray(np.broadcast_to(numbers, (wells,)))


def plate_of(plate: Any) -> Plate:
    if isinstance(plate, Plate):
        return plate
    if isinstance(plate, Run):
        return plate.plate
    if isinstance(plate, int):
        if plate not in _SIZES:
            raise usage(f"a plate has 96 or 384 wells, not {plate}", code="invalid-value")
        return Plate(*_SIZES[plate])
    names = [str(name) for name in plate["well"]] if hasattr(plate, "keys") else []
    for rows, columns in _SIZES.values():
        try:
            for name in names:
                well_number(name, rows, columns)
        except LookupError:
            continue
        return Plate(rows, columns, wells_of(plate, rows, columns))
    raise usage("the table names wells that no plate of 384 wells has", code="no-such-well")


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
    resume: bool = True,
    replace: bool = False,
) -> Recorder:
    """Records a run to a document. A frame is on the disk when `Recorder.append` returns, whatever
    happens to the program, the system or the power afterwards.

    At the end of the `with` block the run is finished; after an exception it is not, and the same
    call resumes it: go on with the frame of the index `Recorder.recorded_frames`.

    Args:
        path: the document.
        plate: the plate and its wells: a `Plate`, a table with the columns of `Run.wells`, another
            run, or 96 or 384 for an empty plate.
        wells: the wells that each frame has readings of, by name or number; without them the wells
            of the plate, or all.
        detectors: details of detectors; those that wells name are in the document in any case.
        required_dyes: besides the reporters of the wells' targets.
        settings: by the names of `vex set --help`.
        program: the thermal cycling program; without it the document describes the frames.
        comment: of the run.
        calibration: of the instrument.
        assay: a code of four characters; "AbsQ" without it.
        started: when the run began, as "2026-11-22T08:00:00Z".
        scale: for frames in real units: a reading less the offset, times the scale, is stored as a
            whole number from 0 to 65535; 1000, "0.5" or "1000/3". Without it frames are stored
            readings.
        offset: see `scale`.
        channels: names; without them a well has one reading in a frame.
        frame_count: how many frames the run will have; without it `Recorder.finish` tells.
        resume: continue a document that holds the beginning of this run; one that holds something
            else is refused.
        replace: overwrite a document that exists, instead.

    Raises:
        UsageError: the plan cannot be stored.
        DocumentError: the document that exists is of another run.
        FileThereError: it exists and is neither to be resumed nor replaced.
        FileError: it is being recorded or changed, or the system refuses.

    >>> import numpy as np
    >>> plate = vex2.Plate(wells=(vex2.Well(1, sample="water"),))
    >>> with vex2.record("water.vex", plate, scale=1000) as rec:
    ...     for cycle in range(1, 4):
    ...         rec.append([0.5], cycle=cycle, time_s=60 * cycle, temperature_c=60)
    >>> vex2.open("water.vex").fluorescence[:, 0, 0].tolist()
    [0.5, 0.5, 0.5]
    """
    setup = plate_of(plate)
    size = setup.rows * setup.columns
    numbers = sorted(well_number(well, setup.rows, setup.columns) for well in wells)
    plan = {
        "plate": setup,
        "wells": numbers or [well.number for well in setup.wells] or list(range(1, size + 1)),
        "detectors": detectors_of(detectors),
        "required_dyes": list(required_dyes),
        "settings": dict(settings or {}),
        "program": program,
        "comment": comment,
        "calibration": calibration,
        "assay": assay,
        "started": started,
        "scale": _scale_of(scale, offset),
        "channels": list(channels),
        "frame_count": frame_count,
    }
    return Recorder(path, plan, resume and not replace, replace)
