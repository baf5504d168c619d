"""Compares every value of every sample document with the JSON file of the sample."""

import json
import pathlib
import struct

import numpy
import pytest

import vex2
from conftest import GOLDEN

NAMES = sorted(path.stem for path in GOLDEN.glob("*.json"))
BLOCKS = ("RAWa", "REPr", "REPn", "REPd", "REPt")


def load(name: str):
    return vex2.open(GOLDEN / f"{name}.vex"), json.loads((GOLDEN / f"{name}.json").read_text())


def test_sample_documents_are_there(golden):
    assert len(NAMES) == 14


HEADER = {
    "magic": "magic",
    "formatA": "format_a",
    "formatB": "format_b",
    "assayCode": "assay_code",
    "runCode": "run_code",
    "plateTypeCode": "plate_type_code",
    "rows": "rows",
    "columns": "columns",
    "thermocycleOffset": "thermocycle_offset",
    "flagG": "flag_g",
    "text": "text",
    "kindMarker": "kind_marker",
    "acquisitionStatus": "acquisition_status",
    "acquisitionDataOffset": "acquisition_data_offset",
}


def check_header(header: vex2.Header, expected) -> None:
    assert {key: getattr(header, name) for key, name in HEADER.items()} == {
        key: expected[key] for key in HEADER
    }
    assert list(header.usage) == expected["usage"]
    assert set(expected) == set(HEADER) | {"usage"}


def check_value(record: vex2.Record, expected, body: bytes) -> None:
    """`body` is the body of the record in the file; the values are those of the component in
    memory."""
    kind = expected["kind"]
    if expected["declared"] == 0:
        assert record.value is None and record.children == ()
    elif kind in ("byte", "short", "long", "block"):
        assert record.value == expected["value"]
    elif kind == "float":
        assert struct.pack("<f", record.value).hex() == expected["bytes"] or (
            expected["value"] is None and record.value is None
        )
    elif kind in ("program", "opaque"):
        assert bytes(record.value).hex() == expected["value"]
    elif kind == "colour":
        assert list(record.value) == expected["value"]
    elif kind in ("pureDye", "background"):
        assert record.value == body
    elif kind == "cell":
        for field in ("coord1", "coord2", "flag"):
            assert record.fields[field] == expected[field]
    elif kind == "data":
        assert record.fields["version"] == expected["version"]
        assert list(record.fields["wells"]) == expected["wellNumbers"]
        if expected["version"] == 2:
            assert list(record.fields["start"]) == expected["startTime"]
            assert list(record.fields["end"]) == expected["endTime"]
    else:
        assert kind in ("container", "cells", "plates", "plate", "unknown"), kind


def check_record(record: vex2.Record, expected, content: bytes) -> int:
    assert (record.tag, record.offset) == (expected["tag"], expected["offset"])
    assert record.length == expected["declared"]
    body = content[record.offset + 8 :][: record.length]
    check_value(record, expected, body)
    count = 1
    children = list(record.children)
    if expected["kind"] == "plate":
        children = [child for child in children if child.tag not in ("EOPl",)]
    known = [child for child in children if child.known]
    inner = expected.get("children", [])
    if len(children) == len(inner):
        known = children
    assert len(known) == len(inner), (record.tag, record.offset)
    for child, each in zip(known, inner):
        count += check_record(child, each, content)
    return count


@pytest.mark.parametrize("name", NAMES)
def test_records_and_header_match_json(name):
    run, expected = load(name)
    content = run.to_bytes()
    assert len(content) == expected["size"]
    check_header(run.header, expected["header"])
    dropped = [(item["tag"], item["offset"]) for item in expected.get("dropped", [])]
    records = [record for record in run.records() if (record.tag, record.offset) not in dropped]
    assert len(run.records()) - len(records) == len(dropped)
    assert len(records) == len(expected["components"])
    checked = sum(check_record(*pair, content) for pair in zip(records, expected["components"]))
    assert checked >= len(expected["components"])


def of_kind(components, kind):
    """The components of this kind, including components in lists, but not those of plates."""
    for component in components:
        if component["kind"] == kind:
            yield component
        if component["kind"] != "plate":
            yield from of_kind(component.get("children", []), kind)


def check_block(block: vex2.Block, expected) -> int:
    wells = expected["wellNumbers"]
    assert block.wells.tolist() == wells
    count = len(expected["frames"])
    frames = numpy.array(expected["frames"], dtype=numpy.uint16).reshape(count, len(wells), 40)
    assert len(block) == len(frames)
    assert numpy.array_equal(block.readings, frames[:, :, 8:])
    for index, frame in enumerate(block.frames):
        assert numpy.array_equal(frame.leading, frames[index, :, :8])
        assert numpy.array_equal(frame.readings, frames[index, :, 8:])
    return frames.size


def check_plate(run: vex2.Run, components) -> int:
    count = 0
    for tag in BLOCKS:
        found = [each for each in of_kind(components, "data") if each["tag"] == tag]
        infos = [block for block in run.blocks if block.tag == tag]
        assert len(infos) == len(found)
        if found:
            count += check_block(run.block(tag), found[0])
    return count


@pytest.mark.parametrize("name", NAMES)
def test_readings_match_json(name):
    run, expected = load(name)
    values = check_plate(run, expected["components"])
    plates = list(of_kind(expected["components"], "plate"))
    assert list(run.plates) == [plate["name"] for plate in plates]
    for plate in plates:
        check_header(run.plates[plate["name"]].header, plate["header"])
        values += check_plate(run.plates[plate["name"]], plate["children"])
    assert (values > 0) == any(block.frame_count for block in all_blocks(run))


def all_blocks(run: vex2.Run):
    yield from run.blocks
    for plate in run.plates.values():
        yield from plate.blocks


def check_part(part: vex2.CalibrationPart, expected) -> None:
    assert part.code.hex() == expected["code"]
    assert (part.setting, part.option, part.value) == (
        expected["setting"],
        expected["option"],
        expected["value"],
    )
    assert (part.extra1.hex(), part.extra2.hex()) == (expected["extra1"], expected["extra2"])
    assert len(part.spectra) == len(expected["entries"])
    for spectrum, entry in zip(part.spectra, expected["entries"]):
        assert spectrum.name == entry["name"]
        assert (spectrum.key1, spectrum.key2) == (entry["key1"], entry["key2"])
        assert spectrum.dye_index == entry["dyeIndex"]
        assert spectrum.values.tobytes().hex() == entry["valueBytes"]
        if expected["kind"] == "pureDye":
            assert list(spectrum.bytes) == [entry["byte1"], entry["byte2"]]
            assert list(spectrum.params) == entry["params"]
        else:
            assert spectrum.limit == entry["limit"]


@pytest.mark.parametrize("name", NAMES)
def test_calibration_matches_json(name):
    run, expected = load(name)
    calibrations = [each for each in expected["components"] if each["tag"] == "CALI"]
    parts = {child["kind"]: child for each in calibrations[:1] for child in each["children"]}
    for kind, part in (("pureDye", "pure_dyes"), ("background", "background")):
        found = getattr(run.calibration, part)
        assert (found is not None) == (kind in parts)
        if found is not None:
            check_part(found, parts[kind])


@pytest.mark.parametrize("name", NAMES)
def test_unknown_meaning_stays_unknown(name):
    run, _ = load(name)
    assert run.fluorescence.shape[2] == 0
    assert set(run.axis.stage) <= {""}
    assert numpy.isnan(run.axis.time_s).all()
    assert pathlib.Path(run.path).name == f"{name}.vex"
