"""Sample documents for the tests, and for the examples in the docstrings."""

import os
import pathlib
import resource
import shutil

import numpy
import pytest

import vex2

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SHARED = pathlib.Path(os.environ.get("VEX2_SHARED_DATA", SOURCE.parent / "shared" / "data"))
GOLDEN = SHARED / "golden"
# Limit the memory, so that a result that is too large fails the test instead of the machine. The
# address sanitizer reserves more than this limit and has its own.
LARGEST_MEMORY = 6 << 30
if "asan" not in os.environ.get("LD_PRELOAD", ""):
    _, most = resource.getrlimit(resource.RLIMIT_AS)
    if most == resource.RLIM_INFINITY or most > LARGEST_MEMORY:
        resource.setrlimit(resource.RLIMIT_AS, (LARGEST_MEMORY, most))

COMMAND = os.environ.get("VEX2_COMMAND", "")
STANDARDS = (1000.0, 100.0, 10.0)


def sample_plate() -> vex2.Plate:
    """A plate with a control, a sample and standards in turn, all with one detector."""
    wells = []
    for number in range(1, 97):
        kind = (number - 1) % 4
        quantity = STANDARDS[(number // 4) % 3] if kind == 2 else None
        sample = ("control", "unknown", "standard", "water")[kind]
        task = ("UNKN", "UNKN", "STND", "NTC")[kind]
        wells.append(vex2.Well(number, "", sample, (vex2.Target("GENE", task, quantity, "FAM"),)))
    return vex2.Plate(wells=tuple(wells))


def curve(well: int, cycle: int) -> float:
    return round(1 + 20 / (1 + numpy.exp(-(cycle - 22 - well % 7) / 1.6)), 3)


def record_sample(path: pathlib.Path, frames: int = 45) -> None:
    """Records 40 amplification cycles and 5 melting steps, or only the first frames of them."""
    with vex2.record(path, sample_plate(), scale=1000, comment="a sample run") as rec:
        for index in range(frames):
            is_melting = index >= 40
            cycle = index - 39 if is_melting else index + 1
            rec.append(
                [curve(well, index + 1) for well in range(96)],
                stage="melt" if is_melting else "amplification",
                cycle=cycle,
                time_s=30.0 * (index + 1),
                temperature_c=60.0 + 5 * (cycle - 1) if is_melting else 60.0,
            )


def make_study(folder: pathlib.Path, names: list) -> None:
    """Makes a study of new plates with one frame each."""
    study = vex2.raw.Vex2FileManager()
    study.SetHeaderData(vex2.raw.Vex2HeaderData(assayCode="RQSt"))
    assert study.InitMultiplate()
    for name in names:
        path = folder / f"{name}.vex"
        with vex2.record(path, sample_plate(), scale=1000, assay="RelQ") as rec:
            rec.append([1.5] * 96, cycle=1, time_s=1, temperature_c=60)
        plate = vex2.raw.Vex2FileManager()
        assert plate.ReadFromFile(path) == 0
        assert study.AddRQPlate(plate, "Mar 05, 2003 02:07 PM")
    assert study.SaveToFile(folder / "study.vex") == 0


@pytest.fixture(scope="session")
def samples(tmp_path_factory):
    """A folder with run.vex, and with study.vex, which has two plates."""
    folder = tmp_path_factory.mktemp("samples")
    record_sample(folder / "run.vex")
    make_study(folder, ["plate1", "plate2"])
    return folder


@pytest.fixture
def folder(samples, tmp_path, monkeypatch):
    """The current folder, with copies of the samples."""
    for sample in samples.glob("*.vex"):
        shutil.copy(sample, tmp_path)
    monkeypatch.chdir(tmp_path)
    return tmp_path


@pytest.fixture
def golden():
    if not GOLDEN.is_dir():
        pytest.skip(f"the sample documents are missing: {GOLDEN}")
    return GOLDEN


@pytest.fixture
def command():
    if not COMMAND:
        pytest.skip("VEX2_COMMAND does not name the vex command")
    return COMMAND
