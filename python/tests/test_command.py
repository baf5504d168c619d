"""Compares what the module and the command return for the same document."""

import csv
import io
import json
import pathlib
import subprocess

import numpy
import pytest

import vex2
from conftest import GOLDEN

NAMES = sorted(path.stem for path in GOLDEN.glob("*.json"))


@pytest.fixture
def vex(command):
    def call(*arguments: object, statuses=(0, 1)) -> str:
        done = subprocess.run([command, *map(str, arguments)], capture_output=True, text=True)
        assert done.returncode in statuses, done.stderr
        return done.stdout

    return call


def tree_of(records):
    for record in records:
        value = record.value.hex() if isinstance(record.value, bytes) else record.value
        if isinstance(value, tuple):
            value = list(value)
        yield {
            "tag": record.tag,
            "offset": record.offset,
            "length": record.length,
            "known": record.known,
            "value": value,
            "children": list(tree_of(record.children)),
        }


def plain(records):
    for record in records:
        found = {key: record.get(key) for key in ("tag", "offset", "length", "value")}
        found["known"] = record.get("known", True)
        yield {**found, "children": list(plain(record.get("children", [])))}


def close(one, other) -> bool:
    """Whether two values are equal, except for the rounding of 32-bit numbers in JSON."""
    if isinstance(one, float) and isinstance(other, float):
        return numpy.float32(one) == numpy.float32(other)
    if isinstance(one, dict):
        return one.keys() == other.keys() and all(close(one[key], other[key]) for key in one)
    if isinstance(one, list):
        return len(one) == len(other) and all(map(close, one, other))
    return one == other


@pytest.mark.parametrize("name", NAMES)
def test_tree_is_that_of_the_command(name, vex):
    path = GOLDEN / f"{name}.vex"
    expected = list(plain(json.loads(vex("tree", path, "--json"))["records"]))
    assert close(list(tree_of(vex2.open(path).records())), expected)


@pytest.mark.parametrize("name", NAMES)
def test_info_is_that_of_the_command(name, vex):
    path = GOLDEN / f"{name}.vex"
    info = json.loads(vex("info", path, "--json"))
    run = vex2.open(path)
    # An unknown record was left out, which does not make the document damaged.
    assert run.is_whole <= info["whole"] and run.status == info["status"]
    assert (run.kind, run.assay) == (info["kind"], info["assay"])
    assert [(b.tag, b.frame_count, len(b.wells)) for b in run.blocks] == [
        (block["tag"], block["frames"], block["wells"]) for block in info["blocks"]
    ]
    settings = {name: value for name, value in info["settings"].items() if value is not None}
    assert close({**settings, **run.settings}, settings)
    assert {fault.offset for fault in run.faults} <= {each["offset"] for each in info["faults"]}


def wells_of(plate: vex2.Plate):
    return [
        {
            "well": well.name,
            "sample": well.sample,
            "detectors": [
                {
                    "name": target.detector,
                    "task": target.task,
                    "quantity": target.quantity,
                    "reporter": target.reporter,
                }
                for target in well.targets
            ],
        }
        for well in plate.wells
        if well.sample or well.targets
    ]


@pytest.mark.parametrize("name", NAMES)
def test_wells_are_those_of_the_command(name, vex):
    path = GOLDEN / f"{name}.vex"
    run = vex2.open(path)
    if not any(one.plate.wells for one in (run, *run.plates.values())):
        pytest.skip("the document has no plate setup")
    said = json.loads(vex("wells", path, "--json"))
    shown = said["plates"] if run.is_study and "plates" in said else [said]
    runs = list(run.plates.values()) if run.is_study and "plates" in said else [run]
    for one, expected in zip(runs, shown):
        filled = [each for each in expected["wells"] if each["sample"] or each["detectors"]]
        assert close(wells_of(one.plate), filled)


def test_tidy_is_the_table_of_the_command(folder, vex):
    rows = list(csv.DictReader(io.StringIO(vex("export", "run.vex", "--format", "csv"))))
    table = vex2.open("run.vex").tidy()
    assert len(rows) == len(table)
    for name in ("well", "stage"):
        assert [row[name] for row in rows] == table[name].tolist()
    for name in ("cycle", "time_s", "temperature_c", "fluorescence"):
        assert [float(row[name]) for row in rows] == table[name].tolist()


def test_check_finds_what_the_command_finds(folder, vex):
    content = pathlib.Path("run.vex").read_bytes()
    pathlib.Path("cut.vex").write_bytes(content[:-1000])
    said = json.loads(vex("check", "cut.vex", "--json"))
    findings = vex2.check("cut.vex").list
    assert [found.problem for found in findings] == [
        each["problem"] for each in said["findings"]
    ]
    assert findings


@pytest.fixture
def analysed(folder, vex):
    """Documents with standards, samples and controls: a simulated one, one of this module, and a
    study."""
    vex("simulate", "one.vex", "--melt", 40)
    vex("simulate", "two.vex", "--seed", 2, "--melt", 30, "--wells", 384)
    return ["run.vex", "one.vex", "two.vex", "study.vex"]


CQ_KEYS = {"target": "detector", "baseline_start": "baselineStart", "baseline_end": "baselineEnd"}
CQ_OPTIONS = (
    {},
    {"method": "sdm"},
    {"threshold": 0.5},
    {"baseline": (3, 12)},
    {"detector": "target A"},
)


def same_number(found, said) -> bool:
    """Whether two numbers are equal to the six decimals that JSON has."""
    if said is None:
        return found is None or not numpy.isfinite(found)
    return abs(found - said) <= max(5.1e-7, 1e-12 * abs(said))


def same_row(row, said) -> bool:
    values = {name: said[CQ_KEYS.get(name, name)] for name in row.index if name != "number"}
    texts = {name for name in values if isinstance(row[name], str) or isinstance(values[name], str)}
    texts |= {"reason"} & values.keys()
    return all(
        row[name] == values[name] if name in texts else same_number(row[name], values[name])
        for name in values
    )


def flat(well: dict) -> dict:
    """Converts a well of the JSON to the columns of the table."""
    estimate = well.pop("estimate") or {"quantity": None, "low": None, "high": None}
    ends = {f"estimate_{end}": estimate[end] for end in ("low", "high")}
    return {**well, "estimate": estimate["quantity"], **ends}


@pytest.mark.parametrize("options", CQ_OPTIONS, ids=str)
def test_cq_is_that_of_the_command(analysed, vex, command, options):
    arguments = []
    for name, value in options.items():
        text = "-".join(map(str, value)) if isinstance(value, tuple) else value
        arguments += [f"--{name}", text]
    compared = 0
    for path in analysed:
        run = vex2.open(path)
        try:
            table = run.cq(**options)
        except vex2.Error as error:
            call = [command, "cq", path, "--format", "json", *map(str, arguments)]
            done = subprocess.run(call, capture_output=True, text=True)
            assert done.returncode == error.status, done.stderr
            assert json.loads(done.stderr)["error"]["code"] == error.code
            continue
        said = json.loads(vex("cq", path, "--format", "json", *arguments))
        assert len(table) == len(said["wells"]) > 0
        rows = zip((row for _, row in table.iterrows()), map(flat, said["wells"]))
        assert all(same_row(row, well) for row, well in rows)
        curves = run.standard_curves(**options)
        named = [each for each in said["detectors"] if each["standardCurve"]]
        assert curves["target"].tolist() == [each["name"] for each in named]
        for (_, curve), each in zip(curves.iterrows(), named):
            for name in curve.index[1:]:
                head, *rest = name.split("_")
                key = head + "".join(part.title() for part in rest)
                assert same_number(curve[name], each["standardCurve"][key]), name
        compared += len(table)
    assert compared > 30


def test_melting_peaks_are_those_of_the_command(analysed, vex):
    for path in ("one.vex", "two.vex"):
        said = json.loads(vex("melt", path, "--format", "json"))
        peaks = vex2.open(path).melting_peaks()
        expected = [(well, peak) for well in said["wells"] for peak in well["peaks"]]
        assert len(peaks) == len(expected) > 60
        for (_, row), (well, peak) in zip(peaks.iterrows(), expected):
            assert (row["well"], row["target"]) == (well["well"], well["detector"])
            assert all(same_number(row[name], value) for name, value in peak.items())
