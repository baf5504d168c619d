"""Where a document is read from: a path, an open file, or bytes."""

from __future__ import annotations

import os
import stat
from typing import Any, Callable, Optional, Tuple

from ._errors import Error, usage


class Source:
    """A document to be read. One that has no path of its own is reached through its descriptor,
    which lives as long as this object."""

    def __init__(self, name: str, path: bytes, descriptor: Optional[int] = None) -> None:
        self.name = name
        self.path = path
        self._descriptor = descriptor

    @property
    def has_path(self) -> bool:
        return self._descriptor is None

    def content(self) -> bytes:
        """All bytes of the document."""
        with open(self.path, "rb") as file:
            return file.read()

    def named(self, error: Error) -> Error:
        """The error under the name that the caller knows."""
        path = os.fsdecode(self.path)
        if self.has_path or error.file != path:
            return error
        return type(error)(
            error.message,
            code=error.code,
            status=error.status,
            file=self.name,
            offset=error.offset,
            errno=error.errno,
            text=str(error).replace(path, self.name, 1),
        )

    def call(self, work: Callable[..., Any], *arguments: Any) -> Any:
        """What `work` returns; its errors name this source."""
        try:
            return work(*arguments)
        except Error as error:
            named = self.named(error)
            if named is error:
                raise
            raise named from None

    def __reduce__(self) -> Tuple[Callable[..., Source], Tuple[Any, ...]]:
        if self.has_path:
            return Source, (self.name, self.path)
        return _of_bytes, (self.name, self.content())

    def __del__(self) -> None:
        descriptor = getattr(self, "_descriptor", None)
        if descriptor is not None:
            os.close(descriptor)


def _of_descriptor(name: str, descriptor: int) -> Source:
    return Source(name, b"/proc/self/fd/%d" % descriptor, descriptor)


def _of_bytes(name: str, content: Any) -> Source:
    descriptor = os.memfd_create("vex2", os.MFD_CLOEXEC)
    try:
        with open(descriptor, "wb", closefd=False) as file:
            file.write(content)
    except BaseException:
        os.close(descriptor)
        raise
    return _of_descriptor(name, descriptor)


def _of_file(file: Any) -> Source:
    name = getattr(file, "name", None)
    name = os.fsdecode(name) if isinstance(name, (str, bytes)) else "<file>"
    if hasattr(file, "encoding"):
        raise usage("the file was opened as text; open it with mode 'rb'", name)
    try:
        descriptor = file.fileno()
    except (AttributeError, OSError):
        return _of_bytes(name, file.read())
    if not stat.S_ISREG(os.fstat(descriptor).st_mode):
        return _of_bytes(name, file.read())
    if getattr(file, "writable", bool)():
        file.flush()
    return _of_descriptor(name, os.dup(descriptor))


def source_of(given: Any) -> Source:
    """The source for what `vex2.open` takes."""
    if isinstance(given, Source):
        return given
    if isinstance(given, (bytes, bytearray, memoryview)):
        return _of_bytes("<bytes>", given)
    if hasattr(given, "read"):
        return _of_file(given)
    path = os.fspath(given)
    return Source(os.fsdecode(path), os.fsencode(path))
