"""Tests recording: frames are on the disk, runs can be resumed, and tables become documents."""

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


def resume(first: int, last: int, stage: str = "amplification") -> None:
    with vex2.record("again.vex", 96, wells=["A1"], scale=10, frame_count=9) as rec:
        for cycle in range(first, last + 1):
            rec.append([cycle], stage=stage, cycle=cycle, time_s=cycle, temperature_c=60)
        raise InterruptedError


def test_cycle_that_is_recorded_is_refused(folder):
    with pytest.raises(InterruptedError):
        resume(1, 3)
    what = "again.vex: cannot append frame 3 as amplification cycle 1: cycle 3 of that stage is"
    with pytest.raises(vex2.UsageError, match=f"{what} recorded already; continue with cycle 4"):
        resume(1, 3)
    for stage, first, last in (("melt", 1, 2), ("amplification", 4, 4)):
        with pytest.raises(InterruptedError):
            resume(first, last, stage)
    with pytest.raises(vex2.UsageError, match="as melt cycle 2"):
        resume(2, 2, "melt")
    assert vex2.open("again.vex").axis.cycle.tolist() == [1, 2, 3, 1, 2, 4]


@pytest.mark.parametrize("cycle", [0, -1, 1.5, 65536, "1", True, [1]])
def test_cycle_that_is_none_is_refused(folder, cycle):
    with pytest.raises(vex2.UsageError, match="cycle is"):
        with vex2.record("new.vex", 96, wells=["A1"], scale=10) as rec:
            rec.append([1], cycle=cycle, time_s=1, temperature_c=60)
    assert len(vex2.open("new.vex").frames) == 0


def at(cycle: int = 1) -> dict:
    return {"cycle": cycle, "time_s": 1, "temperature_c": 60}


def test_frames_are_in_the_order_of_the_wells_given(folder):
    with vex2.record("new.vex", 96, wells=["B1", "A1"], scale=10) as rec:
        assert rec.wells.tolist() == [13, 1]
        rec.append([130, 10], **{**at(), "temperature_c": [61, 60], "time_s": [2, 1]})
    run = vex2.open("new.vex")
    assert run.block("RAWa").well_names == ("A1", "B1")
    assert run.fluorescence[0, :, 0].tolist() == [10, 130]
    assert run.tidy()["temperature_c"].tolist() == [60, 61]
    with vex2.record("raw.vex", 96, wells=["B1", "A1"]) as rec:
        rec.append([[13], [1]], leading=[[13] * 8, [1] * 8])
    frame = vex2.open("raw.vex").frames[0]
    assert frame.readings[:, 0].tolist() == frame.leading[:, 0].tolist() == [1, 13]


def test_labelled_frame_is_matched_by_its_wells(folder):
    with vex2.record("new.vex", 96, wells=["A1", "B1"], scale=10, channels=["FAM", "VIC"]) as rec:
        table = pandas.DataFrame({"VIC": [2, 4], "FAM": [1, 3]}, index=["B1", "A1"])
        rec.append(table, **at())
        rec.append(table.to_numpy(), **at(2))
        for index in (["A1", "C1"], ["A1", "A1"], ["A1", "Z99"]):
            with pytest.raises(vex2.UsageError):
                rec.append(table.set_axis(index), **at(3))
        with pytest.raises(vex2.UsageError, match="the channels VIC, ROX, not FAM, VIC"):
            rec.append(table.rename(columns={"FAM": "ROX"}), **at(3))
    found = vex2.open("new.vex").fluorescence
    assert found.tolist() == [[[3, 4], [1, 2]], [[2, 1], [4, 3]]]


def test_frame_of_another_run_is_matched_by_its_wells(folder):
    frame = vex2.open("run.vex").frames[0]
    with vex2.record("new.vex", 96, wells=["B1", "A1"], scale=1000) as rec:
        with pytest.raises(vex2.UsageError, match="has well A2, which is not recorded"):
            rec.append(frame)
    numbers = list(range(96, 0, -1))
    with vex2.record("all.vex", 96, wells=numbers, scale=1000) as rec:
        rec.append(frame)
    assert numpy.array_equal(vex2.open("all.vex").readings[0], frame.readings)


def test_masked_reading_is_missing(folder):
    frame = numpy.ma.array([1.5, 2.5], mask=[False, True])
    with vex2.record("new.vex", 96, wells=["A1", "A2"], scale=10) as rec:
        rec.append(frame, **at())
        with pytest.raises(vex2.UsageError, match="time_s is missing for a well"):
            rec.append([1, 2], **{**at(2), "time_s": frame})
    found = vex2.open("new.vex").fluorescence[0, :, 0]
    assert found[0] == 1.5 and numpy.isnan(found[1])
    with vex2.record("raw.vex", 96, wells=["A1", "A2"]) as rec:
        with pytest.raises(vex2.UsageError, match="whole numbers"):
            rec.append(numpy.ma.array([[1], [2]], mask=[[False], [True]]))


@pytest.mark.parametrize(
    "plan, what",
    [
        ({"wells": [1.7]}, "a well number is 1.7"),
        ({"wells": "A1"}, "wells is 'A1', not a list"),
        ({"wells": ["A1", 1]}, "well A1 is given twice"),
        ({"channels": "FAM"}, r"channels is 'FAM', not a list; use \['FAM'\]"),
        ({"required_dyes": "FAM"}, "required_dyes is 'FAM', not a list"),
        ({"required_dyes": [1]}, "required_dyes has 1"),
        ({"detectors": ["FAM"]}, "not as vex2.Detector"),
        ({"settings": ["comment"]}, "not as a mapping"),
        ({"settings": {"comment": [1]}}, "which it cannot be"),
        ({"program": "text"}, "str, not bytes"),
        ({"comment": 5}, "comment is 5"),
        ({"frame_count": -1}, "frame_count is -1"),
        ({"plate": vex2.Plate(wells=(vex2.Well(13, "A13"),))}, "no well 'A13'"),
        ({"plate": vex2.Plate(wells=(vex2.Well(13, "A2"),))}, "well 13 is B1 on this plate"),
        ({"plate": vex2.Plate(65535, 65535)}, "65535 x 65535 wells cannot be recorded"),
        ({"plate": 95}, "95; a plate has 96 or 384"),
        ({"plate": 96, "plate_size": 384}, "plate_size is 384, but"),
        ({"plate": vex2.Plate(wells=(vex2.Well(1, "", "", (vex2.Target("F", quantity="x"),)),))},
         "quantity is 'x'"),
    ],
)
def test_plan_that_is_none_is_refused(folder, plan, what):
    with pytest.raises(vex2.UsageError, match=what):
        vex2.record("new.vex", **plan)
    assert not os.path.exists("new.vex")


def test_table_determines_the_size_of_its_plate(folder):
    def size(table, **options):
        with vex2.record("new.vex", table, replace=True, **options) as rec:
            rec.close()
        plate = vex2.open("new.vex").plate
        return plate.rows * plate.columns

    assert size({"well": ["A1", "B1"]}) == 96
    assert size({"well": ["A1", "B1"], "number": [1, 13]}) == 96
    assert size({"well": ["A1", "B1"], "number": [1, 25]}) == 384
    assert size({"well": ["A1", "P24"]}) == size({"well": ["A1"]}, plate_size=384) == 384
    assert size([vex2.Well(25, "B1")]) == 384
    with pytest.raises(vex2.UsageError, match="well B1 has the number 14"):
        size({"well": ["A1", "B1"], "number": [1, 14]})


def test_failed_from_frame_leaves_the_document_that_is_there(folder):
    before = pathlib.Path("run.vex").read_bytes()
    table = vex2.open("run.vex").tidy()
    table.loc[len(table) - 1, "fluorescence"] = 1e9
    with pytest.raises(vex2.UsageError, match="frame 44, well H12: the reading .* does not fit"):
        vex2.from_frame(table, "run.vex", replace=True, scale=1000)
    with pytest.raises(FileExistsError, match="use replace=True"):
        vex2.from_frame(vex2.open("run.vex").tidy(), "run.vex")
    assert pathlib.Path("run.vex").read_bytes() == before
    small = table[(table["cycle"] == 1) & (table["stage"] == "melt")]
    again = vex2.from_frame(small, "run.vex", replace=True)
    assert len(again.frames) == 1
    assert sorted(os.listdir()) == ["plate1.vex", "plate2.vex", "run.vex", "study.vex"]


def test_from_frame_leaves_a_run_that_is_recorded(folder):
    table = vex2.open("run.vex").tidy()
    with vex2.record("new.vex", 96, wells=["A1"], scale=10) as rec:
        with pytest.raises(vex2.FileError, match="new.vex"):
            vex2.from_frame(table, "new.vex", replace=True)
        rec.append([1], **at())
    assert len(vex2.open("new.vex").frames) == 1


@pytest.mark.parametrize("column", ["fluorescence", "time_s"])
def test_table_with_texts_for_numbers_is_refused(folder, column):
    table = vex2.open("run.vex").tidy().astype({column: object})
    table.loc[3, column] = "n/a"
    with pytest.raises(vex2.UsageError, match=f"'{column}' must have numbers"):
        vex2.from_frame(table)
