"""Following a run while it is recorded."""

from __future__ import annotations

import os
import time
from typing import AsyncIterator, Iterator, Optional, Tuple, Union

from ._block import Frame
from ._errors import MissingFileError
from ._run import RAW, Run, open as open_run

_Stamp = Tuple[int, int, int, int]


class Follow(Iterator[Frame], AsyncIterator[Frame]):
    """The frames of a run, the recorded ones first and each new one once it is committed: see
    `follow`."""

    def __init__(self, path: str, interval: float, timeout: Optional[float], wait: bool) -> None:
        self._path = path
        self._interval = interval
        self._timeout = timeout
        self._wait = wait
        self._stamp: Optional[_Stamp] = None
        self._run: Optional[Run] = None
        self._index = 0
        self._last = time.monotonic()

    @property
    def run(self) -> Optional[Run]:
        """The document as it was last read; None before.

        >>> frames = vex2.follow("run.vex")
        >>> next(frames).index, frames.run.status
        (0, 'DONE')
        """
        return self._run

    def _look(self) -> None:
        try:
            found = os.stat(self._path)
            stamp = (found.st_dev, found.st_ino, found.st_size, found.st_mtime_ns)
            if stamp != self._stamp:
                self._run = open_run(self._path)
                self._stamp = stamp
        except (FileNotFoundError, MissingFileError):
            if not self._wait:
                raise

    def _step(self) -> Optional[Frame]:
        """The next frame; None without one yet. `StopIteration` at the end."""
        if self._run is None or self._index >= len(self._run.frames):
            self._look()
        run = self._run
        if run is not None and self._index < len(run.frames):
            frame = run.frames[self._index]
            self._index += 1
            self._last = time.monotonic()
            return frame
        if run is not None and run.status == "DONE":
            raise StopIteration
        if self._timeout is not None and time.monotonic() - self._last >= self._timeout:
            raise StopIteration
        return None

    def __iter__(self) -> Follow:
        return self

    def __next__(self) -> Frame:
        frame = self._step()
        while frame is None:
            time.sleep(self._interval)
            frame = self._step()
        return frame

    def __aiter__(self) -> Follow:
        return self

    async def __anext__(self) -> Frame:
        import asyncio

        while True:
            try:
                frame = await asyncio.to_thread(self._step_or_end)
            except EOFError:
                raise StopAsyncIteration from None
            if frame is not None:
                return frame
            await asyncio.sleep(self._interval)

    def _step_or_end(self) -> Optional[Frame]:
        # A StopIteration cannot pass through a future.
        try:
            return self._step()
        except StopIteration:
            raise EOFError from None

    def __repr__(self) -> str:
        return f"<vex2.Follow {self._path}: frame {self._index} next>"


def follow(
    path: Union[str, os.PathLike[str]],
    *,
    interval: float = 0.2,
    timeout: Optional[float] = None,
    wait: bool = False,
) -> Follow:
    """Follows a run while it is recorded: yields the frames that are there, then each new one once
    it is committed, and ends with the run. Use it with `for` or with `async for`.

    Args:
        path: the document.
        interval: seconds between looks at the file.
        timeout: end after so many seconds without a new frame; without it, wait for the run's end.
        wait: wait for a document that does not exist yet.

    Raises:
        MissingFileError: there is no document, and `wait` is not set.
        DocumentError: the file is no document, or was replaced by another run.

    >>> sum(1 for frame in vex2.follow("run.vex"))
    45
    """
    return Follow(os.fsdecode(path), interval, timeout, wait)
