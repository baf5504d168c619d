"""Converts the frames of callers to arrays in the order of a recorder's wells."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, List, NamedTuple, Tuple

import numpy as np

from ._errors import invalid
from ._wells import well_name, well_number

if TYPE_CHECKING:
    from numpy.typing import ArrayLike, NDArray

_READINGS, _LEADING = 32, 8


class FrameShape(NamedTuple):
    """The shape of a recorder's frames: the well numbers in the caller's order, and the names of
    the channels."""

    rows: int
    columns: int
    wells: Tuple[int, ...]
    channels: Tuple[str, ...]

    def name_of(self, number: int) -> str:
        return well_name(number, self.columns)

    def places(self, numbers: List[int], what: str) -> List[int]:
        """The index of each well in `held`, which must hold the same wells."""
        place = {number: index for index, number in enumerate(numbers)}
        missing = [number for number in self.wells if number not in place]
        if missing:
            raise invalid(f"{what} lacks well {self.name_of(missing[0])}")
        other = [number for number in numbers if number not in self.wells]
        if other:
            raise invalid(f"{what} has well {self.name_of(other[0])}, which is not recorded")
        if len(place) < len(numbers):
            raise invalid(f"{what} has a well twice")
        return [place[number] for number in self.wells]


def _is_counted(labels: List[Any]) -> bool:
    """Whether the labels are only the default ones: 0, 1, 2 ..."""
    return labels == list(range(len(labels)))


def _by_well(given: Any, shape: FrameShape, what: str) -> Any:
    """Sorts a pandas object whose labels are wells in the order of the wells. Returns anything else
    unchanged."""
    if not hasattr(given, "iloc") or _is_counted(list(given.index)):
        return given
    numbers = [well_number(label, shape.rows, shape.columns) for label in given.index]
    return given.iloc[shape.places(numbers, what)]


def _by_channel(given: Any, shape: FrameShape) -> Any:
    """Sorts a table whose columns have the names of the channels in the order of the channels."""
    labels = list(getattr(given, "columns", ()))
    if not shape.channels or not labels or _is_counted(labels):
        return given
    if sorted(map(str, labels)) != sorted(shape.channels):
        has = ", ".join(map(str, labels))
        raise invalid(f"the frame has the channels {has}, not {', '.join(shape.channels)}")
    return given[list(shape.channels)]


def _numbers(given: Any, what: str) -> NDArray[np.float64]:
    """Numbers of any type as floats; NaN for a masked or missing number."""
    try:
        if hasattr(given, "iloc"):
            return np.asarray(given.to_numpy(dtype=np.float64, na_value=np.nan))
        if isinstance(given, np.ma.MaskedArray):
            masked: Any = given.astype(np.float64)
            return np.asarray(masked.filled(np.nan))
        if not np.iscomplexobj(given):
            return np.asarray(given, dtype=np.float64)
    except (TypeError, ValueError):
        pass
    raise invalid(f"{what} must be numbers")


def readings_in(given: ArrayLike, shape: FrameShape) -> NDArray[np.float64]:
    """Readings in real units: (wells, channels), NaN for a missing reading."""
    numbers = _numbers(_by_channel(_by_well(given, shape, "the frame"), shape), "readings")
    channels = max(len(shape.channels), 1)
    if numbers.ndim == 1 and channels == 1:
        numbers = numbers.reshape(-1, 1)
    if numbers.shape != (len(shape.wells), channels):
        expected = f"({len(shape.wells)}, {channels})"
        raise invalid(f"the frame has the shape {numbers.shape}, not {expected}")
    return numbers


def one_for_each(given: ArrayLike, shape: FrameShape, what: str) -> NDArray[np.float64]:
    """One number for all wells, or one for each."""
    numbers = _numbers(_by_well(given, shape, what), what)
    count = len(shape.wells)
    if numbers.shape not in ((), (count,)):
        raise invalid(f"{what} is one number, or one for each of {count} wells: {numbers.shape}")
    if np.isnan(numbers).any():
        raise invalid(f"{what} is missing for a well")
    return np.ascontiguousarray(np.broadcast_to(numbers, (count,)))


def _words(given: Any, what: str) -> NDArray[np.uint16]:
    numbers = _numbers(given, what)
    with np.errstate(invalid="ignore"):
        words = numbers.astype(np.uint16)
    if not np.array_equal(words, numbers):
        raise invalid(f"{what} must be whole numbers from 0 to 65535")
    return words


def words_in(
    readings: ArrayLike, leading: Any, shape: FrameShape
) -> Tuple[NDArray[np.uint16], NDArray[np.uint16]]:
    """Stored readings, (wells, 32), and the values that are stored before them, (wells, 8)."""
    count = len(shape.wells)
    words = _words(_by_well(readings, shape, "the frame"), "readings")
    if words.ndim != 2 or words.shape[0] != count or words.shape[1] > _READINGS:
        expected = f"({count}, up to {_READINGS})"
        raise invalid(f"the frame has the shape {words.shape}, not {expected}")
    full = np.zeros((count, _READINGS), dtype=np.uint16)
    full[:, : words.shape[1]] = words
    if leading is None:
        return full, np.ones((count, _LEADING), dtype=np.uint16)
    front = _words(_by_well(leading, shape, "leading"), "leading values")
    if front.shape != (count, _LEADING):
        raise invalid(f"leading has the shape {front.shape}, not ({count}, {_LEADING})")
    return full, np.ascontiguousarray(front)
