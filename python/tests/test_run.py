"""Tests reading runs: sources, reading on demand, objects, threads and processes."""

import asyncio
import copy
import io
import multiprocessing
import os
import pathlib
import pickle
import subprocess
import sys
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor

import numpy
import pytest

import vex2
from conftest import curve, record_sample


@pytest.fixture
def run(folder):
    return vex2.open("run.vex")


def sources(path: str):
    content = pathlib.Path(path).read_bytes()
    yield path
    yield pathlib.Path(path)
    yield content
    yield bytearray(content)
    yield memoryview(content)
    yield io.BytesIO(content)
    yield open(path, "rb")


def test_open_takes_every_kind_of_source(run):
    for source in sources("run.vex"):
        opened = vex2.open(source)
        if hasattr(source, "close"):
            source.close()
        assert numpy.array_equal(opened.readings, run.readings)
        assert opened.plate == run.plate
        assert opened.frames[44] == run.frames[44]
        assert [record.tag for record in opened.records()][:2] == ["CELS", "DETL"]
        assert vex2.check(opened.to_bytes()).errors == 0


def test_open_reads_pipe(run):
    code = "import sys, vex2; print(vex2.open(sys.stdin.buffer).readings.sum())"
    with open("run.vex", "rb") as file:
        content = file.read()
    done = subprocess.run([sys.executable, "-c", code], input=content, capture_output=True)
    assert int(done.stdout) == run.readings.sum()


def test_open_refuses_file_opened_as_text(run):
    with open("run.vex", encoding="latin-1") as file:
        with pytest.raises(vex2.UsageError, match="'rb'"):
            vex2.open(file)


def test_paths_need_not_be_utf8(run):
    name = os.fsdecode(b"gr\xfcn.vex")
    pathlib.Path(name).write_bytes(run.to_bytes())
    assert vex2.open(name).path == name
    with pytest.raises(vex2.MissingFileError) as caught:
        vex2.open(os.fsdecode(b"r\xf6t.vex"))
    assert caught.value.file == os.fsdecode(b"r\xf6t.vex")


def test_readings_are_the_memory_that_was_read(run):
    readings = run.readings
    assert run.readings is readings
    assert readings.base is not None and not readings.flags.owndata
    assert not readings.flags.writeable
    with pytest.raises(ValueError):
        readings[0, 0, 0] = 1


def test_readings_outlive_their_run(folder):
    readings = vex2.open("run.vex").readings
    assert readings[3, 5, 0] == round(curve(5, 4) * 1000)


def test_frames_match_readings(run):
    for index, frame in enumerate(run.frames):
        assert frame.index == index
        assert numpy.array_equal(frame.readings, run.readings[index])
        assert numpy.array_equal(frame.fluorescence, run.fluorescence[index])
    assert run.frames[-1] == run.frames[44]
    assert run.frames[40:] == [run.frames[index] for index in range(40, 45)]
    assert vex2.read_frame("run.vex", -1) == run.frames[-1]


def test_read_frame_reads_only_its_frame(run):
    # Damage after the frame is not noticed.
    content = bytearray(run.to_bytes())
    path = pathlib.Path("cut.vex")
    path.write_bytes(content)
    before = vex2.open(path)
    os.truncate(path, len(content) - 96 * 80)
    assert before.frames[3] == run.frames[3]
    with pytest.raises(vex2.DocumentError):
        before.frames[44]


def test_tidy_matches_curves(run):
    table = run.tidy()
    b3 = table[(table["well"] == "B3") & (table["stage"] == "amplification")]
    assert b3["cycle"].tolist() == list(range(1, 41))
    assert b3["fluorescence"].tolist() == run.amplification.well("B3").tolist()
    assert b3["time_s"].tolist() == [30.0 * cycle for cycle in range(1, 41)]
    assert set(b3["sample"]) == {"standard"} and set(b3["target"]) == {"GENE"}


def test_closed_run_says_so(run):
    wells = len(run.wells)
    readings = run.readings
    with run:
        pass
    assert run.closed and len(run.wells) == wells and readings.sum() > 0
    for ask in (
        lambda: run.readings,
        lambda: run.frames[0],
        lambda: run.tidy(),
        lambda: run.records(),
        lambda: run.to_bytes(),
        lambda: run.header,
        lambda: run.amplification,
    ):
        with pytest.raises(vex2.UsageError, match="run.vex: .*the run is closed; open it again"):
            ask()
    assert "closed" in repr(run)


def test_replaced_document_refuses_frames(folder):
    run = vex2.open("run.vex")
    os.replace("plate1.vex", "run.vex")
    with pytest.raises(vex2.DocumentError, match="changed it since"):
        run.readings


def test_run_pickles_by_path_and_copies_share(run):
    readings = run.readings
    again = pickle.loads(pickle.dumps(run))
    assert numpy.array_equal(again.readings, readings)
    assert len(pickle.dumps(run)) < 1000
    assert copy.copy(run).plate == copy.deepcopy(run).plate == run.plate


def test_run_of_bytes_pickles_with_bytes(run):
    of_bytes = vex2.open(run.to_bytes())
    again = pickle.loads(pickle.dumps(of_bytes))
    assert numpy.array_equal(again.readings, run.readings)


def test_values_pickle_copy_and_compare(run):
    for value in (run.plate, run.frames[2], run.header, run.records(), run.blocks, run.detectors):
        assert pickle.loads(pickle.dumps(value)) == value == copy.deepcopy(value)
    spectrum = vex2.Spectrum("FAM", values=numpy.array([1, numpy.nan], "float32"))
    assert pickle.loads(pickle.dumps(spectrum)) == spectrum
    assert spectrum != spectrum._replace(values=numpy.zeros(2, "float32"))


def test_threads_share_a_run(run):
    def total(index):
        return int(run.frames[index % 45].readings.sum()) + int(run.readings[index % 45].sum())

    with ThreadPoolExecutor(8) as workers:
        totals = list(workers.map(total, range(900)))
    assert totals == [2 * int(run.readings[index % 45].sum()) for index in range(900)]


def readings_of(run):
    return int(run.readings.sum())


def test_run_works_after_fork_and_spawn(run):
    expected = int(run.readings.sum())
    for of in (run, vex2.open(run.to_bytes())):
        for method in ("fork", "spawn"):
            context = multiprocessing.get_context(method)
            with ProcessPoolExecutor(2, mp_context=context) as workers:
                assert list(workers.map(readings_of, [of, of])) == [expected, expected]


def test_study_returns_results_by_plate(folder):
    study = vex2.open("study.vex")
    assert study.is_study and list(study.plates) == ["plate1", "plate2"]
    assert study.plates["plate1"].readings.shape == (1, 96, 32)
    assert study.plates.get("none") is None and "none" not in study.plates
    with pytest.raises(vex2.NotFoundError, match="study.vex: it has no plate 'none'"):
        study.plates["none"]
    plate = pickle.loads(pickle.dumps(study.plates["plate2"]))
    assert "[plate2]" in repr(plate) and plate.plate == study.plates["plate2"].plate
    assert set(study.tidy()["plate"]) == {"plate1", "plate2"}


def test_html_shows_plate_and_curves(run):
    html = run._repr_html_()
    assert html.count("<td") >= 96 and "<svg" in html and html.count("<polyline") == 96
    assert "control" in html and "temperature in" in run.melting._repr_html_()


def test_html_escapes_what_a_document_says(folder):
    plate = vex2.Plate(wells=(vex2.Well(1, sample="<script>alert(1)</script>"),))
    with vex2.record("hostile.vex", plate) as rec:
        rec.append(numpy.ones((1, 32)))
    html = vex2.open("hostile.vex")._repr_html_()
    assert "<script>" not in html and "&lt;script&gt;" in html


def test_follow_ends_with_finished_run(run):
    frames = list(vex2.follow("run.vex"))
    assert frames == list(run.frames)


def test_follow_sees_each_frame_as_it_comes(folder):
    code = (
        "import sys, time, vex2\n"
        "with vex2.record('live.vex', 96, wells=['A1'], scale=1000) as rec:\n"
        "    for cycle in range(1, 6):\n"
        "        rec.append([cycle], cycle=cycle, time_s=cycle, temperature_c=60)\n"
        "        time.sleep(0.1)\n"
    )
    with subprocess.Popen([sys.executable, "-c", code]) as recorder:
        cycles = [f.cycle for f in vex2.follow("live.vex", timeout=20, wait=True)]
    assert recorder.returncode == 0 and cycles == [1, 2, 3, 4, 5]


def test_follow_gives_up_after_timeout(folder):
    record_sample(pathlib.Path("cut.vex"), 3)
    with vex2.edit("cut.vex") as doc:
        doc.status = "PROG"
    assert len(list(vex2.follow("cut.vex", timeout=0.05))) == 3


def test_follow_is_an_async_iterator(run):
    async def count():
        return [frame.index async for frame in vex2.follow("run.vex")]

    assert asyncio.run(count()) == list(range(45))


def test_follow_of_no_file_raises(folder):
    with pytest.raises(FileNotFoundError):
        next(vex2.follow("missing.vex"))


def test_follow_continues_after_a_save(folder):
    record_sample(pathlib.Path("live.vex"), 3)
    vex2.set_run_status("live.vex", "PROG")
    frames = vex2.follow("live.vex", timeout=0)
    assert [frame.cycle for frame in frames] == [1, 2, 3] and frames.run.status == "PROG"
    vex2.set_run_status("live.vex", "DONE")
    with vex2.edit("live.vex") as doc:
        doc.settings["comment"] = "saved anew"
    assert list(frames) == [] and frames.run.settings["comment"] == "saved anew"
    assert "frame 3 next" in repr(frames)


def test_follow_does_not_mix_two_runs(folder):
    record_sample(pathlib.Path("live.vex"), 3)
    vex2.set_run_status("live.vex", "PROG")
    frames = vex2.follow("live.vex", timeout=1)
    assert [next(frames).cycle for _ in range(3)] == [1, 2, 3]
    with vex2.record("other.vex", 96, scale=10) as rec:
        for cycle in range(1, 6):
            rec.append([cycle] * 96, cycle=cycle, time_s=cycle, temperature_c=60)
    os.replace("other.vex", "live.vex")
    with pytest.raises(vex2.DocumentError, match="another run has taken the place"):
        next(frames)


def test_follow_loses_no_frame_when_its_task_is_cancelled(run):
    async def collect():
        found, frames = [], vex2.follow("run.vex")
        while len(found) < 45:
            task = asyncio.ensure_future(frames.__anext__())
            await asyncio.sleep(0)
            await asyncio.sleep(0)
            task.cancel()
            try:
                found.append((await task).index)
            except asyncio.CancelledError:
                found.append((await frames.__anext__()).index)
        return found

    assert asyncio.run(collect()) == list(range(45))


def test_path_with_a_zero_byte_is_refused(run):
    for ask in (vex2.open, vex2.check, vex2.repair, vex2.edit, vex2.record, vex2.follow):
        with pytest.raises(vex2.UsageError, match="a zero byte"):
            ask("run.vex\0more")
