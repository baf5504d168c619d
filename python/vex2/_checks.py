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
    """Looks for everything that can be wrong with a document, without changing it. It takes
    what `open` takes. For a file that is not a document it returns a finding and does not raise.

    Raises:
        FileError: the file cannot be read.

    >>> vex2.check("run.vex").errors
    0
    """
    source = source_of(document)
    findings: Findings = source.call(_vex2.check, source.path)
    return findings


def repair(path: Path, *, dry_run: bool = False) -> RepairReport:
    """Repairs a document in place, after a copy was put beside it: "PATH.backup".

    Args:
        path: the document.
        dry_run: only say what would be repaired.

    Raises:
        DocumentError: the file is no document, or another program changed it meanwhile.
        FileError: it is being recorded or changed, or the system refuses. The document is then as
            it was.

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
    """Puts together at `out` what is whole in a damaged document, which is never written to.

    Args:
        path: the damaged document.
        out: the new document.
        replace: overwrite a document at `out`.
        progress: called often with the bytes that are done, and all of them; False ends the work.

    Raises:
        DocumentError: nothing of a document was found.
        FileThereError: there is a file at `out`.
        CancelledError: `progress` ended the work; nothing was saved.
        FileError: the system refuses.

    >>> vex2.recover("run.vex", "whole.vex").frames
    45
    """
    files = (path_of(path), path_of(out))
    report: RecoverReport = called(_vex2.recover, *files, replace, progress)
    return report


def set_run_status(path: Path, code: str) -> None:
    """Writes how far the run has come into a document, and nothing else: the way to end a run whose
    recorder is gone for good, which `edit` refuses to touch.

    Args:
        path: the document.
        code: "DONE" to end the run; also "ZERO", "PROG" or any other four plain characters.

    Raises:
        UsageError: the code is none.
        DocumentError: the file is no document.
        FileError: it is being recorded or changed, or the system refuses.

    >>> vex2.set_run_status("run.vex", "DONE")
    """
    called(_vex2.set_run_status, path_of(path), code)
