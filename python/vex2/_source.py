"""The source of a document: a path, an open file, or bytes."""

from __future__ import annotations

import os
import stat
from typing import Any, Callable, Optional, Tuple

from ._errors import Error, called, system_errors, usage


class Source:
    """A document to be read. If it has no path, it is read through a file descriptor, which stays
    open as long as this object exists."""

    def __init__(self, name: str, path: bytes, descriptor: Optional[int] = None) -> None:
        self.name = name
        self.path = path
        self._descriptor = descriptor

    @property
    def has_path(self) -> bool:
        return self._descriptor is None

    def content(self) -> bytes:
        """All bytes of the document."""
        with system_errors(self.name), open(self.path, "rb") as file:
            return file.read()

    def named(self, error: Error) -> Error:
        """Returns the error with the name that the caller gave."""
        return error if self.has_path else error.of_file(os.fsdecode(self.path), self.name)

    def call(self, work: Callable[..., Any], *arguments: Any) -> Any:
        """Returns the result of `work`. Its errors name this source."""
        try:
            return called(work, *arguments, file=self.name)
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


def path_of(path: Any) -> bytes:
    """The path in the encoding of the system."""
    given = os.fsencode(path)
    if b"\0" in given:
        raise usage(f"a path cannot hold a zero byte, as {path!r} does")
    return given


def _of_bytes(name: str, content: Any) -> Source:
    if not isinstance(content, (bytes, bytearray, memoryview)):
        raise usage(f"reading gives {type(content).__name__}, not bytes", name)
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
    with system_errors(name):
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
    """The source for the argument of `vex2.open`."""
    if isinstance(given, Source):
        return given
    if isinstance(given, (bytes, bytearray, memoryview)):
        return _of_bytes("<bytes>", given)
    if hasattr(given, "read"):
        return _of_file(given)
    path = os.fspath(given)
    return Source(os.fsdecode(path), path_of(path))
