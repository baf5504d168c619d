"""Checking, repairing and recovering documents."""

from __future__ import annotations

import os
from typing import Any, Callable, Optional, Union

from . import _vex2
from ._errors import called
from ._source import path_of, source_of
from ._values import Findings, RecoverReport, RepairReport

Path = Union[str, "os.PathLike[str]"]


def check(document: Any) -> Findings:
    """Checks a document and returns everything that is wrong with it. The document is not changed.
    The argument is the same as for `open`. A file that is not a document gives a finding, not an
    exception.

    Raises:
        FileError: the file cannot be read.

    >>> vex2.check("run.vex").errors
    0
    """
    source = source_of(document)
    findings: Findings = source.call(_vex2.check, source.path)
    return findings


def repair(path: Path, *, dry_run: bool = False) -> RepairReport:
    """Repairs a document in place, after making a backup in the same folder: "PATH.backup".

    Args:
        path: the document.
        dry_run: return what would be repaired, and change nothing.

    Raises:
        DocumentError: the file is not a document, or another program changed it during the repair.
        FileError: the document is being recorded or changed, or a system call failed. The document
            is then unchanged.

    >>> vex2.repair("run.vex", dry_run=True).patches
    ()
    """
    report: RepairReport = called(_vex2.repair, path_of(path), dry_run)
    return report


def recover(
    path: Path,
    out: Path,
    *,
    replace: bool = False,
    progress: Optional[Callable[[int, int], Optional[bool]]] = None,
) -> RecoverReport:
    """Writes the undamaged content of a damaged document to a new document at `out`. The damaged
    document is never changed.

    Args:
        path: the damaged document.
        out: the new document.
        replace: overwrite an existing document at `out`.
        progress: called often with the number of bytes that are done and the number of all bytes;
            if it returns False, the recovery is cancelled.

    Raises:
        DocumentError: no part of a document was found.
        FileThereError: `out` exists already.
        CancelledError: `progress` cancelled the recovery; nothing was saved.
        FileError: the system refuses.

    >>> vex2.recover("run.vex", "whole.vex").frames
    45
    """
    files = (path_of(path), path_of(out))
    report: RecoverReport = called(_vex2.recover, *files, replace, progress)
    return report


def set_run_status(path: Path, code: str) -> None:
    """Sets the acquisition status of a document and changes nothing else. Use it to end a run whose
    recorder will not continue it: `edit` refuses such a run.

    Args:
        path: the document.
        code: "DONE" to end the run; also "ZERO", "PROG" or any other four ASCII characters.

    Raises:
        UsageError: the code is not valid.
        DocumentError: the file is no document.
        FileError: it is being recorded or changed, or the system refuses.

    >>> vex2.set_run_status("run.vex", "DONE")
    """
    called(_vex2.set_run_status, path_of(path), code)
