"""Tests random documents: saved values are read back, and damaged documents raise exceptions and
never crash."""

import os
import pathlib
import struct
import tempfile
import time

import numpy
import pytest

pytest.importorskip("hypothesis")
from hypothesis import HealthCheck, given, settings  # noqa: E402
from hypothesis import strategies as some  # noqa: E402

import vex2  # noqa: E402
from conftest import GOLDEN, sample_plate  # noqa: E402

# Each run uses the same examples. With VEX2_RANDOM_EXAMPLES=2000 it uses 2000 other ones.
RANDOM = int(os.environ.get("VEX2_RANDOM_EXAMPLES", "0"))
SLOW = settings(
    max_examples=RANDOM or 40,
    derandomize=not RANDOM,
    database=None,
    deadline=None,
    print_blob=True,
    suppress_health_check=[HealthCheck.too_slow, HealthCheck.function_scoped_fixture],
)

# Characters that documents store; a zero byte ends a text.
LETTERS = some.characters(min_codepoint=33, max_codepoint=255, blacklist_categories=("Cc", "Cs"))
TEXTS = some.text(LETTERS, max_size=12)
NAMES = some.text(LETTERS, min_size=1, max_size=12)
FLOATS = some.floats(0, 1e6, width=32)
SHORTS = some.integers(0, 65535)


@some.composite
def plates(draw):
    names = draw(some.lists(NAMES, min_size=1, max_size=4, unique=True))
    reporters = {name: draw(some.sampled_from(["FAM", "VIC", "ROX"])) for name in names}
    wells = []
    for number in sorted(draw(some.sets(some.integers(1, 96), min_size=1, max_size=12))):
        chosen = draw(some.lists(some.sampled_from(names), max_size=2, unique=True))
        targets = tuple(
            vex2.Target(
                name,
                draw(some.sampled_from(["UNKN", "STND", "NTC"])),
                draw(some.none() | FLOATS),
                reporters[name],
            )
            for name in chosen
        )
        wells.append(vex2.Well(number, "", draw(TEXTS), targets))
    return vex2.Plate(wells=tuple(wells))


def meant(plate: vex2.Plate):
    """The contents of the wells, without well names and without empty wells."""
    return {
        well.number: (well.sample, well.targets)
        for well in plate.wells
        if well.sample or well.targets
    }


@SLOW
@given(plates(), some.integers(0, 4), some.randoms(use_true_random=False), TEXTS)
def test_recorded_run_reads_back_equal(plate, frames, random, comment):
    rng = numpy.random.default_rng(random.getrandbits(32))
    wells = len(plate.wells)
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "random.vex")
        written = rng.integers(0, 65536, (frames, wells, 40), dtype=numpy.uint16)
        written[:, :, 0] |= 1
        with vex2.record(path, plate, comment=comment) as rec:
            for frame in written:
                rec.append(frame[:, 8:], leading=frame[:, :8])
        run = vex2.open(path)
        assert run.is_whole and meant(run.plate) == meant(plate)
        assert run.settings.get("comment", "") == comment
        assert numpy.array_equal(run.readings, written[:, :, 8:])
        assert all(numpy.array_equal(f.leading, w[:, :8]) for f, w in zip(run.frames, written))


@SLOW
@given(plates(), plates(), some.dictionaries(some.sampled_from(["comment"]), TEXTS))
def test_random_edits_are_saved(before, after, changes):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "random.vex")
        with vex2.record(path, before) as rec:
            rec.append(numpy.ones((len(before.wells), 32)))
        readings = vex2.open(path).readings
        with vex2.edit(path) as doc:
            doc.wells = after
            doc.settings = changes
        run = vex2.open(path)
        assert meant(run.plate) == meant(after)
        assert all(run.settings.get(name, "") == text for name, text in changes.items())
        assert numpy.array_equal(run.readings, readings)


def look_at(content: bytes) -> None:
    """Calls every property of a document. Errors must be `vex2.Error`s."""
    try:
        run = vex2.open(content)
        for one in (run, *run.plates.values()):
            for ask in (
                lambda: one.header,
                lambda: one.records(),
                lambda: one.plate.to_frame(),
                lambda: [one.block(block.tag).readings for block in one.blocks],
                lambda: list(one.frames[:3]),
                lambda: one.tidy() if len(one.frames) < 10 else None,
                lambda: (one.settings, one.detectors, one.calibration, one.program),
                lambda: (one.cq(), one.standard_curves(), one.melting_peaks()),
                lambda: (repr(one.amplification), one.melting.to_frame()),
                lambda: (repr(one), one._repr_html_(), one.melting._repr_html_()),
            ):
                try:
                    ask()
                except vex2.Error:
                    pass
    except vex2.Error:
        pass
    vex2.check(content)


SAMPLES = sorted(GOLDEN.glob("*[a-z0-9].vex"))


def with_plate_of(rows: int, columns: int) -> bytes:
    """The sample run with a header that declares a plate of unknown type and of this size."""
    content = pathlib.Path("run.vex").read_bytes()
    size = struct.pack(">4sHH", b"p9C ", 8, 12)
    assert content.count(size) == 1
    return content.replace(size, struct.pack(">4sHH", b"big ", rows, columns))


def test_picture_of_a_plate_does_not_grow_with_its_header(folder):
    run = vex2.open(with_plate_of(65535, 65535))
    assert (run.plate.rows, run.plate.columns) == (65535, 65535)
    assert "a plate of 65535 x 65535 wells, 0 in its setup" in run._repr_html_()
    assert len(run.plate._repr_html_()) < 1000


def test_header_of_many_rows_is_read_in_one_pass(folder):
    run = vex2.open(with_plate_of(65535, 12))
    before = time.process_time()
    assert len(run.header.usage) == 65535
    assert time.process_time() - before < 1


@pytest.mark.skipif(not SAMPLES, reason="the sample documents are missing")
@settings(SLOW, max_examples=RANDOM or 60, deadline=20_000)
@given(some.data())
def test_damaged_documents_raise_and_never_crash(data):
    content = bytearray(data.draw(some.sampled_from(SAMPLES)).read_bytes()[:20000])
    for _ in range(data.draw(some.integers(1, 6))):
        at = data.draw(some.integers(0, len(content) - 1))
        content[at : at + 4] = data.draw(some.binary(min_size=0, max_size=4))
    look_at(bytes(content))


@SLOW
@given(some.binary(max_size=200))
def test_bytes_that_are_no_document_raise(content):
    look_at(content)
    look_at(b"Vex2" + content)


@SLOW
@given(some.lists(some.integers(0, 65535), min_size=2, max_size=2), some.integers(0, 3))
def test_table_round_trip_keeps_readings(values, decimals):
    readings = [value / 10**decimals for value in values]
    rows = {
        "well": ["A1", "H12"],
        "stage": "amplification",
        "cycle": 1,
        "time_s": [1.0, 2.5],
        "temperature_c": 60.25,
        "fluorescence": readings,
        "sample": "s",
        "target": "GENE",
    }
    import pandas

    table = vex2.from_frame(pandas.DataFrame(rows)).tidy()
    assert table["fluorescence"].tolist() == pytest.approx(readings, rel=1e-4, abs=1e-3)
    assert table["time_s"].tolist() == [1.0, 2.5] and set(table["target"]) == {"GENE"}


def test_look_at_sees_a_whole_document(folder):
    look_at(pathlib.Path("run.vex").read_bytes())
    assert sample_plate().wells
