"""Tests that all errors are `vex2.Error`s with everything that a program needs, and that nothing is
printed."""

import copy
import errno
import os
import pathlib
import pickle

import pytest

import vex2
from vex2 import _vex2


def raised(work) -> vex2.Error:
    with pytest.raises(vex2.Error) as caught:
        work()
    return caught.value


def test_missing_file_has_code_file_and_errno(folder):
    error = raised(lambda: vex2.open("missing.vex"))
    assert isinstance(error, FileNotFoundError) and isinstance(error, vex2.FileError)
    assert (error.code, error.status, error.file) == ("no-such-file", 2, "missing.vex")
    assert (error.errno, error.offset) == (errno.ENOENT, None)
    assert str(error) == "missing.vex: No such file or directory"


def test_no_document_has_code_and_status(folder):
    pathlib.Path("text.vex").write_text("no document")
    error = raised(lambda: vex2.open("text.vex"))
    assert type(error) is vex2.DocumentError
    assert (error.code, error.status, error.file) == ("no-document", 1, "text.vex")


def test_folder_is_no_document(folder):
    os.mkdir("folder.vex")
    assert raised(lambda: vex2.open("folder.vex")).file == "folder.vex"


def test_no_permission_is_a_permission_error(folder):
    if os.geteuid() == 0:
        pytest.skip("root may read everything")
    os.chmod("run.vex", 0)
    assert isinstance(raised(lambda: vex2.open("run.vex")), PermissionError)


def test_errors_of_bytes_name_no_path_of_the_system(folder):
    pathlib.Path("text.vex").write_text("no document")
    with open("text.vex", "rb") as file:
        for source, name in ((b"no document", "<bytes>"), (file, "text.vex")):
            error = raised(lambda: vex2.open(source))
            assert "/proc" not in str(error) and error.file == name


def test_index_errors_are_of_the_family(folder):
    run = vex2.open("run.vex")
    for ask in (
        lambda: run.frames[45],
        lambda: run.frames[-46],
        lambda: run.plate["Z1"],
        lambda: run.block("NONE"),
        lambda: run.block("REPr"),
        lambda: run.amplification.well("H13"),
        lambda: run.block("RAWa").find(97),
    ):
        error = raised(ask)
        assert isinstance(error, vex2.NotFoundError)
        assert isinstance(error, LookupError) and isinstance(error, ValueError)


def test_recover_raises_what_progress_raises(folder):
    def progress(done, size):
        raise ZeroDivisionError

    with pytest.raises(ZeroDivisionError):
        vex2.recover("run.vex", "out.vex", progress=progress)
    assert not os.path.exists("out.vex")
    seen = []
    vex2.recover("run.vex", "out.vex", progress=lambda done, size: seen.append((done, size)))
    assert seen and all(done <= size for done, size in seen)


def test_recover_and_repair_put_a_damaged_document_right(folder):
    whole = pathlib.Path("run.vex").read_bytes()
    pathlib.Path("cut.vex").write_bytes(whole[: len(whole) - 5000])
    assert vex2.check("cut.vex").errors > 0 and not vex2.open("cut.vex").is_whole
    report = vex2.recover("cut.vex", "out.vex")
    assert report.frames == 44 and not report.is_whole and report.lost
    assert vex2.check("out.vex").errors == 0
    repaired = vex2.repair("cut.vex")
    assert repaired.is_repaired and os.path.exists(repaired.backup)
    assert len(vex2.open("cut.vex").frames) == 44


def test_errors_pickle_and_copy(folder):
    errors = [
        raised(lambda: vex2.open("missing.vex")),
        raised(lambda: vex2.open(b"none")),
        raised(lambda: vex2.read_frame("run.vex", 99)),
    ]
    for error in errors:
        for again in (pickle.loads(pickle.dumps(error)), copy.copy(error)):
            assert type(again) is type(error) and str(again) == str(error)
            assert vars(again) == vars(error) and again.errno == error.errno


def test_every_kind_of_error_has_a_class():
    from vex2 import _errors

    for name, _, meaning in _vex2.error_kinds():
        error = _errors._make(name, "run.vex", "it failed", "run.vex: it failed", None, 0)
        assert isinstance(error, vex2.Error) and str(error) == "run.vex: it failed", meaning
        assert error.status in (1, 2, 3, 130)


def test_nothing_is_printed(folder, capfd):
    raised(lambda: vex2.open("missing.vex"))
    raised(lambda: vex2.open(b"none"))
    manager = vex2.raw.Vex2FileManager()
    assert manager.SetAcquisitionStatus("no status") == -261
    assert not manager.SetAcqDataWellRecord([1] * 40, 0, 1, vex2.raw.DataRAWa)
    vex2.check(b"none")
    assert capfd.readouterr() == ("", "")


def test_missing_file_is_a_vex2_error(folder):
    run = vex2.open("run.vex")
    os.remove("run.vex")
    for ask in (run.to_bytes, lambda: run.header, lambda: run.readings):
        error = raised(ask)
        assert isinstance(error, FileNotFoundError) and error.errno == errno.ENOENT
        assert str(error) == "run.vex: No such file or directory"


def test_advice_is_in_the_words_of_python(folder):
    pathlib.Path("cut.vex").write_bytes(pathlib.Path("run.vex").read_bytes()[:-5000])
    vex2.set_run_status("plate1.vex", "PROG")
    said = [
        str(raised(lambda: vex2.record("run.vex", 96, resume=False))),
        str(raised(lambda: vex2.recover("run.vex", "plate2.vex"))),
        str(raised(lambda: vex2.edit("plate1.vex"))),
        *(found.remedy for found in vex2.check("cut.vex").list),
        *(found.remedy for found in vex2.check("plate1.vex").list),
    ]
    text = "\n".join(said)
    assert "use resume=True to continue it or replace=True to overwrite it" in text
    assert "vex2.set_run_status" in text and "vex2.re" in text
    for other in ("RunRecorder", "RunReader", "DocumentEditor", "SetRunStatus", "'vex ", "--"):
        assert other not in text


def test_arguments_of_other_types_are_usage_errors(folder):
    run = vex2.open("run.vex")
    for ask in (
        lambda: run.cq(threshold="high"),
        lambda: run.cq(method="none"),
        lambda: run.cq(baseline=3),
        lambda: run.melting_peaks(detector=5),
        lambda: run.amplification.well("A1", 1),
        lambda: run.amplification.to_frame(7),
        lambda: run.block("RAWa").find(1.5),
        lambda: vex2.set_run_status("run.vex", 5),
        lambda: vex2.follow("run.vex", timeout=-1),
    ):
        assert isinstance(raised(ask), vex2.UsageError)
