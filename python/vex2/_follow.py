"""Following a run while it is recorded."""

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

# Signals such as Ctrl-C are seen between two waits.
_WAIT = 0.1


class Follow(Iterator[Frame], AsyncIterator[Frame]):
    """The frames of a run, the recorded ones first and each new one once it is committed: see
    `follow`."""

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
        """What else the document says, as it was when it was met; None before, and a new run once
        the document was saved anew.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.run.status
        (0, 'DONE')
        """
        with self._lock:
            reader = self._follower.run()
        return None if reader is None else Run(self._source, reader)

    @property
    def frame_count(self) -> int:
        """The frames that were committed when the document was last looked at.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.frame_count
        (0, 45)
        """
        with self._lock:
            return int(self._follower.frame_count())

    @property
    def planned_frames(self) -> Optional[int]:
        """The frames that the whole run has, where the document says so.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.planned_frames
        (0, 45)
        """
        with self._lock:
            planned: Optional[int] = self._follower.planned_frames()
        return planned

    def _step(self, wait: float) -> Optional[Frame]:
        """The next frame; None without one in that time. `EOFError` at the end."""
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
            # A frame that comes after the task was cancelled waits for the next call.
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
    """Follows a run while it is recorded: yields the frames that are there, then each new one once
    it is committed, and ends with the run. Use it with `for` or with `async for`.

    It looks at the file ten times a second, without a lock, so the recorder never waits. It goes on
    when the recorder stops and resumes, and when a save replaces the document.

    Args:
        path: the document.
        timeout: end after so many seconds without a new frame; without it, wait for the run's end.
        wait: wait for a document that does not exist yet.

    Raises:
        MissingFileError: there is no document, and `wait` is not set.
        DocumentError: the file is no document, or another run has taken the place of this one.

    >>> sum(1 for frame in vex2.follow("run.vex"))
    45
    """
    if timeout is not None and not timeout >= 0:
        raise invalid(f"timeout is {timeout!r}, not a number of seconds")
    return Follow(os.fsdecode(path), timeout, wait)
