"""Runs the examples and checks what they draw."""

import importlib.util
import os
import pathlib
import shutil
import subprocess
import sys

import numpy
import pandas
import pytest

import vex2
from vex2 import raw

EXAMPLES = pathlib.Path(__file__).resolve().parents[1] / "examples"
FOLDER_SIZE = 500


def run(name: str, *arguments: object) -> str:
    call = [sys.executable, EXAMPLES / name, *map(str, arguments)]
    environment = {**os.environ, "MPLBACKEND": "Agg"}
    done = subprocess.run(call, capture_output=True, text=True, env=environment)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(scope="module")
def plates(tmp_path_factory):
    """A folder with two simulated runs, and a study of both."""
    folder = tmp_path_factory.mktemp("plates")
    study = raw.Vex2FileManager()
    study.SetHeaderData(raw.Vex2HeaderData(assayCode="RQSt"))
    assert study.InitMultiplate()
    for seed in (1, 2):
        path = folder / f"plate{seed}.vex"
        run("simulate.py", path, seed)
        plate = raw.Vex2FileManager()
        assert plate.ReadFromFile(path) == 0
        plate.ConvertAQ2RQ()
        assert study.AddRQPlate(plate, "")
    assert study.SaveToFile(folder / "study.vex") == 0
    return folder


def needs(*modules: str) -> None:
    for module in modules:
        if importlib.util.find_spec(module) is None:
            pytest.skip(f"{module} is missing")


PICTURES = {
    "amplification_plot.py": "plate1.vex",
    "plate_heat_map.py": "plate1.vex",
    "melting_curves.py": "plate1.vex",
    "standard_curve.py": "plate1.vex",
    "study_comparison.py": "study.vex",
}


@pytest.mark.parametrize("example", PICTURES)
def test_example_draws_a_picture(example, plates, tmp_path):
    needs("matplotlib")
    import matplotlib.image

    # If VEX2_PICTURES names a folder, the pictures are kept there.
    folder = pathlib.Path(os.environ.get("VEX2_PICTURES", tmp_path))
    picture = folder / example.replace(".py", ".png")
    run(example, plates / PICTURES[example], picture)
    pixels = matplotlib.image.imread(picture)
    ink = (pixels[:, :, :3].min(axis=2) < 0.95).mean()
    assert pixels.shape[0] >= 500 and 0.01 < ink < 0.9


def test_simulated_run_is_quantified(plates):
    run = vex2.open(plates / "plate1.vex")
    (curve,) = run.standard_curves().itertuples()
    assert curve.wells == 24 and 0.9 < curve.efficiency < 1.0 and curve.r_squared > 0.99
    found = run.cq().groupby("sample")["estimate"].mean()
    assert found["kidney"] == pytest.approx(2.5e4, rel=0.15)
    assert numpy.isnan(run.cq().groupby("sample")["cq"].mean()["water"])
    assert run.melting_peaks()["temperature_c"].median() == pytest.approx(82, abs=0.5)


@pytest.fixture(scope="module")
def many(tmp_path_factory):
    folder = tmp_path_factory.mktemp("many")
    with vex2.record(folder / "0000.vex", 96, scale=1000) as rec:
        for cycle in range(1, 4):
            rec.append([cycle / 2] * 96, cycle=cycle, time_s=cycle, temperature_c=60)
    for index in range(1, FOLDER_SIZE):
        shutil.copy(folder / "0000.vex", folder / f"{index:04}.vex")
    return folder


@pytest.mark.parametrize("example", ["folder_to_table.py", "folder_with_dask.py"])
def test_folder_becomes_one_table(example, many, tmp_path):
    if "dask" in example:
        needs("dask")
    assert run(example, many, tmp_path / "table.csv") == "500 plates, 48000 wells\n"
    table = pandas.read_csv(tmp_path / "table.csv", dtype={"plate": str})
    assert table["plate"].nunique() == FOLDER_SIZE and set(table["fluorescence"]) == {1.5}
