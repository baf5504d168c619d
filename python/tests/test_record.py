"""Recording: frames are on the disk, runs resume, and tables become documents."""

import os
import pathlib
import signal
import subprocess
import sys
import threading

import numpy
import pandas
import pytest

import vex2
from conftest import sample_plate

RECORD = """
import os, signal, sys, vex2
with vex2.record("run2.vex", 96, wells=["A1", "A2"], scale=1000, frame_count=20) as rec:
    for cycle in range(rec.frame_count + 1, 21):
        rec.append([cycle, cycle / 2], cycle=cycle, time_s=cycle, temperature_c=60)
        print(cycle, flush=True)
        if len(sys.argv) > 1 and cycle == int(sys.argv[1]):
            os.kill(os.getpid(), signal.SIGKILL)
"""


def record(*arguments: str) -> subprocess.CompletedProcess:
    call = [sys.executable, "-c", RECORD, *arguments]
    return subprocess.run(call, capture_output=True, text=True)


@pytest.mark.parametrize("cycle", [1, 7, 19, 20])
def test_killed_recorder_keeps_frames_and_resumes(folder, cycle):
    killed = record(str(cycle))
    assert killed.returncode == -signal.SIGKILL
    assert len(vex2.open("run2.vex").frames) == cycle
    resumed = record()
    assert resumed.returncode == 0, resumed.stderr
    assert resumed.stdout.split() == [str(each) for each in range(cycle + 1, 21)]
    run = vex2.open("run2.vex")
    assert run.status == "DONE" and run.is_whole
    assert run.fluorescence[:, :, 0].tolist() == [[c, c / 2] for c in range(1, 21)]


def test_exception_leaves_run_to_be_resumed(folder):
    with pytest.raises(ZeroDivisionError):
        with vex2.record("new.vex", 96, wells=["A1"], scale=10) as rec:
            rec.append([1], cycle=1, time_s=1, temperature_c=60)
            raise ZeroDivisionError
    assert vex2.open("new.vex").status == "PROG"
    with vex2.record("new.vex", 96, wells=["A1"], scale=10) as rec:
        assert rec.recorded_frames == rec.frame_count == 1
    assert vex2.open("new.vex").status == "DONE"


def test_other_run_is_not_resumed(folder):
    before = pathlib.Path("run.vex").read_bytes()
    with pytest.raises(vex2.Error):
        vex2.record("run.vex", 96, scale=10)
    with pytest.raises(FileExistsError):
        vex2.record("run.vex", 96, resume=False)
    assert pathlib.Path("run.vex").read_bytes() == before
    with vex2.record("run.vex", 96, replace=True):
        pass
    assert len(vex2.open("run.vex").frames) == 0


def test_raw_frames_are_stored_as_they_are(folder):
    numbers = numpy.arange(96 * 40, dtype=numpy.uint16).reshape(96, 40) + 1
    with vex2.record("raw.vex", sample_plate()) as rec:
        rec.append(numbers[:, 8:], leading=numbers[:, :8])
        rec.append(vex2.open("run.vex").frames[2])
    run = vex2.open("raw.vex")
    assert numpy.array_equal(run.frames[0].leading, numbers[:, :8])
    assert numpy.array_equal(run.readings[0], numbers[:, 8:])
    assert numpy.array_equal(run.readings[1], vex2.open("run.vex").readings[2])


@pytest.mark.parametrize(
    "frame, options, what",
    [
        ([1, 2, 3], {}, "the shape"),
        ([1, 2], {"cycle": None}, "needs cycle"),
        ([1, 2], {"stage": "cooling"}, "not 'amplification' or 'melt'"),
        ([1, 99], {}, "does not fit in 16 bits"),
        ([1, 2], {"temperature_c": 700}, "temperature"),
        ([1, 2], {"time_s": [1, 2, 3]}, "one for each of 2 wells"),
    ],
)
def test_frame_that_does_not_fit_changes_nothing(folder, frame, options, what):
    with pytest.raises(vex2.UsageError, match=what):
        with vex2.record("new.vex", 96, wells=["A1", "A2"], scale=1000) as rec:
            place = {"cycle": 1, "time_s": 1, "temperature_c": 60, **options}
            rec.append(frame, **place)
    assert len(vex2.open("new.vex").frames) == 0


def test_raw_numbers_are_not_cut_off(folder):
    with pytest.raises(vex2.UsageError, match="whole numbers"):
        with vex2.record("new.vex", 96, wells=["A1"]) as rec:
            rec.append([[70000]])


def test_threads_append_one_after_the_other(folder):
    with vex2.record("new.vex", 96, wells=["A1"]) as rec:
        threads = [
            threading.Thread(target=lambda: [rec.append([[7]]) for _ in range(5)]) for _ in range(4)
        ]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert vex2.open("new.vex").readings.shape == (20, 1, 32)


def test_closed_recorder_says_so(folder):
    rec = vex2.record("new.vex", 96, wells=["A1"])
    rec.close()
    with pytest.raises(vex2.UsageError, match="the recorder is closed"):
        rec.append([[1]])


def test_recorder_holds_its_document(folder):
    with vex2.record("new.vex", 96, wells=["A1"]) as rec:
        with pytest.raises(vex2.FileError) as caught:
            vex2.record("new.vex", 96, wells=["A1"])
        assert caught.value.code == "in-use"
        assert rec.frame_count == 0


def same(one: pandas.DataFrame, other: pandas.DataFrame) -> None:
    pandas.testing.assert_frame_equal(one, other, check_dtype=False)


def test_tidy_table_becomes_the_same_run(folder):
    run = vex2.open("run.vex")
    again = vex2.from_frame(run.tidy(), "again.vex")
    assert numpy.array_equal(again.readings, run.readings)
    same(again.tidy(), run.tidy())
    assert os.path.exists("again.vex")


def test_from_frame_keeps_channels_and_missing_readings(folder):
    wells = ["A1", "B2"]
    rows = [
        (well, channel, "amplification", cycle, cycle * 2.0, 60.0, cycle * 1.5 + len(channel))
        for well in wells
        for cycle in (1, 2)
        for channel in ("FAM", "VIC")
    ]
    names = ["well", "channel", "stage", "cycle", "time_s", "temperature_c", "fluorescence"]
    table = pandas.DataFrame(rows, columns=names)
    table.loc[3, "fluorescence"] = numpy.nan
    run = vex2.from_frame(table)
    assert run.block("RAWa").channels == ("FAM", "VIC")
    same(run.tidy()[names], table)


@pytest.mark.parametrize(
    "change, what",
    [
        (lambda table: table.drop(columns="cycle"), "no column 'cycle'"),
        (lambda table: table.drop(index=7), "has no row for amplification cycle"),
        (lambda table: pandas.concat([table, table[:1]]), "several readings"),
        (lambda table: table.replace({"well": "A1"}, "Z99"), "no plate of 384 wells has"),
    ],
)
def test_table_that_is_no_run_is_refused(folder, change, what):
    table = change(vex2.open("run.vex").tidy())
    with pytest.raises(vex2.UsageError, match=what):
        vex2.from_frame(table)
