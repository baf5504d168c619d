"""The exceptions of vex2."""

from __future__ import annotations

import contextlib
import os
from typing import Any, Callable, Iterator, Optional, Tuple, Type

from . import _vex2

# The exit code of the command for each class of error: document, usage, system, interrupted.
_STATUSES = (1, 2, 3, 130)
_CLASSES = {name: _STATUSES[of] for name, of, _ in _vex2.error_kinds()}


class Error(Exception):
    """An operation failed; `str(error)` is one sentence that names the file.

    All exceptions that vex2 raises are of this class or derived from it.

    >>> try:
    ...     vex2.open("missing.vex")
    ... except vex2.Error as error:
    ...     print(error.code, error.status, error.file, error.offset)
    no-such-file 2 missing.vex None

    Attributes:
        code: the stable name of the error, as `vex --json` prints it.
        status: the exit code that the command would have: 1 problem in a document, 2 usage error, 3
            system error, 130 cancelled. For errors of the raw interface, the negative status.
        file: the file as it was given; None if the error concerns no file.
        offset: bytes from the start of the file; None if there is no offset.
        errno: the error number of the system; None if no system call failed.
        message: what is wrong, without the file.
    """

    code: str
    status: int
    file: Optional[str]
    offset: Optional[int]
    message: str
    errno: Any

    def __init__(
        self,
        message: str,
        *,
        code: str = "usage",
        status: Optional[int] = None,
        file: Optional[str] = None,
        offset: Optional[int] = None,
        errno: Optional[int] = None,
        text: Optional[str] = None,
    ) -> None:
        super().__init__(message)
        self.message = message
        self.code = code
        self.status = _CLASSES[code] if status is None else status
        self.file = file or None
        self.offset = offset
        self.errno = errno or None
        self._text = text or (f"{file}: {message}" if file else message)

    def __str__(self) -> str:
        return self._text

    def of_file(self, path: str, name: str) -> Error:
        """Returns the error with `name` instead of the path, if it concerns the file at this path.

        >>> try:
        ...     vex2.open("missing.vex")
        ... except vex2.Error as error:
        ...     print(error.of_file("missing.vex", "the run"))
        the run: No such file or directory
        """
        if self.file != path:
            return self
        return type(self)(
            self.message,
            code=self.code,
            status=self.status,
            file=name,
            offset=self.offset,
            errno=self.errno,
            text=str(self).replace(path, name, 1),
        )

    def __reduce__(self) -> Tuple[Callable[..., Error], Tuple[Any, ...]]:
        fields = (self.message, self.code, self.status, self.file, self.offset, self.errno)
        return _again, (type(self), *fields, self._text)


class DocumentError(Error):
    """A document is damaged, is not a document, or does not hold what was requested.

    >>> try:
    ...     vex2.open(b"no document")
    ... except vex2.DocumentError as error:
    ...     print(error.status)
    1
    """


class UsageError(Error, ValueError):
    """A usage error: an argument is wrong, or the object does not allow the call in its state.

    >>> run = vex2.open("run.vex")
    >>> run.close()
    >>> try:
    ...     run.readings
    ... except vex2.UsageError as error:
    ...     print(error)
    run.vex: cannot read the readings: the run is closed; open it again
    """


class NotFoundError(UsageError, KeyError, IndexError):
    """No plate, frame, well or value has this name or index.

    >>> try:
    ...     vex2.read_frame("run.vex", 99)
    ... except IndexError as error:
    ...     print(error.code)
    no-such-frame
    """


class FileError(Error, OSError):
    """A system error: disk, memory or a lock; or the path does not exist.

    >>> issubclass(vex2.MissingFileError, vex2.FileError)
    True
    """


class MissingFileError(FileError, FileNotFoundError):
    """The file does not exist.

    >>> try:
    ...     vex2.open("missing.vex")
    ... except FileNotFoundError as error:
    ...     print(error)
    missing.vex: No such file or directory
    """


class FileThereError(FileError, FileExistsError):
    """The file exists already, and the call did not allow it to be replaced.

    >>> try:
    ...     vex2.record("run.vex", 96, resume=False)
    ... except FileExistsError as error:
    ...     print(error.code)
    exists
    """


class AccessError(FileError, PermissionError):
    """The permission is missing.

    >>> issubclass(vex2.AccessError, PermissionError)
    True
    """


class CancelledError(Error):
    """The caller cancelled the operation; nothing was changed.

    >>> try:
    ...     vex2.recover("run.vex", "copy.vex", progress=lambda done, size: False)
    ... except vex2.CancelledError as error:
    ...     print(error.status)
    130
    """


_BY_CODE = {
    "no-such-file": MissingFileError,
    "exists": FileThereError,
    "no-permission": AccessError,
    "no-such-plate": NotFoundError,
    "no-such-frame": NotFoundError,
    "no-such-well": NotFoundError,
    "no-such-value": NotFoundError,
}
_BY_STATUS = dict(zip(_STATUSES, (DocumentError, UsageError, FileError, CancelledError)))


def _class_of(code: str) -> Type[Error]:
    return _BY_CODE.get(code) or _BY_STATUS[_CLASSES[code]]


def _make(
    code: str, file: str, message: str, text: str, offset: Optional[int], errno: int
) -> Error:
    """Makes the exception for an error of the compiled module, which calls this function."""
    return _class_of(code)(
        message, code=code, file=file, offset=offset, errno=errno, text=text
    )


def _again(
    kind: Type[Error],
    message: str,
    code: str,
    status: int,
    file: Optional[str],
    offset: Optional[int],
    errno: Optional[int],
    text: str,
) -> Error:
    return kind(
        message, code=code, status=status, file=file, offset=offset, errno=errno, text=text
    )


def usage(what: str, file: Optional[str] = None, code: str = "usage") -> Error:
    """Makes the error for a wrong call."""
    return _class_of(code)(what, code=code, file=file)


def invalid(what: str) -> Error:
    """Makes the error for a value that is not accepted."""
    return usage(what, code="invalid-value")


def called(work: Callable[..., Any], *arguments: Any, file: Optional[str] = None) -> Any:
    """Returns the result of `work`, an operation of the compiled module. If the types of the
    arguments are wrong, raises a `vex2.Error`."""
    try:
        return work(*arguments)
    except TypeError as error:
        if "incompatible" not in str(error):
            raise
        name = getattr(work, "__name__", "the operation").replace("_", " ")
        given = ", ".join(repr(each)[:60] for each in arguments)
        raise usage(f"{name}: a value of another type is needed than in ({given})", file) from None


@contextlib.contextmanager
def system_errors(file: str) -> Iterator[None]:
    """Converts system errors to `vex2.Error`s that name this file."""
    try:
        yield
    except Error:
        raise
    except OSError as error:
        number = error.errno or 0
    else:
        return
    _vex2.raise_system_error(os.fsencode(file), number)
