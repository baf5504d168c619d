"""Following a run while it is being recorded."""

from __future__ import annotations

import os
import threading
import time
from typing import TYPE_CHECKING, AsyncIterator, Iterator, Optional, Union

from . import _vex2
from ._block import Frame
from ._errors import called, invalid
from ._run import Run
from ._source import Source, path_of

if TYPE_CHECKING:
    import asyncio

# Signals such as Ctrl-C are handled between two waits.
_WAIT = 0.1


class Follow(Iterator[Frame], AsyncIterator[Frame]):
    """The frames of a run: first the recorded frames, then each new frame as soon as it is
    committed. See `follow`."""

    def __init__(self, path: str, timeout: Optional[float], wait: bool) -> None:
        self._source = Source(path, path_of(path))
        self._follower = _vex2.Follower(self._source.path)
        self._timeout = timeout
        self._wait = wait
        self._last = time.monotonic()
        self._lock = threading.Lock()
        self._coming: Optional[asyncio.Future[Optional[Frame]]] = None

    @property
    def run(self) -> Optional[Run]:
        """The rest of the document, as it was when it was found; None before that. After a save has
        replaced the document, this is a new `Run`.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.run.status
        (0, 'DONE')
        """
        with self._lock:
            reader = self._follower.run()
        return None if reader is None else Run(self._source, reader)

    @property
    def frame_count(self) -> int:
        """The number of committed frames when the document was last examined.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.frame_count
        (0, 45)
        """
        with self._lock:
            return int(self._follower.frame_count())

    @property
    def planned_frames(self) -> Optional[int]:
        """The number of frames of the whole run; None if the document does not say it.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.planned_frames
        (0, 45)
        """
        with self._lock:
            planned: Optional[int] = self._follower.planned_frames()
        return planned

    def _step(self, wait: float) -> Optional[Frame]:
        """Returns the next frame, or None if there is none in this time. Raises `EOFError` at the
        end."""
        with self._lock:
            found = called(self._follower.next, wait, not self._wait, file=self._source.name)
            is_done = self._follower.is_done()
        if found is not None:
            self._last = time.monotonic()
            return Frame(*found)
        if is_done or (
            self._timeout is not None and time.monotonic() - self._last >= self._timeout
        ):
            raise EOFError
        return None

    def _pause(self) -> float:
        if self._timeout is None:
            return _WAIT
        left = self._timeout - (time.monotonic() - self._last)
        return min(max(left, 0.0), _WAIT)

    def __iter__(self) -> Follow:
        return self

    def __next__(self) -> Frame:
        try:
            while True:
                frame = self._step(self._pause())
                if frame is not None:
                    return frame
        except EOFError:
            raise StopIteration from None

    def __aiter__(self) -> Follow:
        return self

    async def __anext__(self) -> Frame:
        import asyncio

        while True:
            # A frame that arrives after the task was cancelled is kept for the next call.
            if self._coming is None:
                work = asyncio.to_thread(self._step, self._pause())
                self._coming = asyncio.ensure_future(work)
            try:
                frame = await asyncio.shield(self._coming)
            except asyncio.CancelledError:
                raise
            except EOFError:
                self._coming = None
                raise StopAsyncIteration from None
            except BaseException:
                self._coming = None
                raise
            self._coming = None
            if frame is not None:
                return frame

    def __repr__(self) -> str:
        with self._lock:
            return f"<vex2.Follow {self._source.name}: frame {self._follower.next_frame()} next>"


def follow(
    path: Union[str, os.PathLike[str]],
    *,
    timeout: Optional[float] = None,
    wait: bool = False,
) -> Follow:
    """Follows a run while it is being recorded. Yields the frames in the document, then each new
    frame as soon as it is committed, and ends with the run. Use it with `for` or `async for`.

    The file is examined ten times a second without a lock, so the recorder never waits. Following
    continues if the recorder stops and the run is resumed, or if a save replaces the document.

    Args:
        path: the document.
        timeout: end after this number of seconds without a new frame; without it, wait for the end
            of the run.
        wait: wait for a document that does not exist yet.

    Raises:
        MissingFileError: the document does not exist, and `wait` is not set.
        DocumentError: the file is not a document, or the document was replaced by another run.

    >>> sum(1 for frame in vex2.follow("run.vex"))
    45
    """
    if timeout is not None and not timeout >= 0:
        raise invalid(f"timeout is {timeout!r}, not a number of seconds")
    return Follow(os.fsdecode(path), timeout, wait)
