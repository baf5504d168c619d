"""Editing: as a whole or not at all."""

import pathlib

import pytest

import vex2


def content() -> bytes:
    return pathlib.Path("run.vex").read_bytes()


def test_unchanged_document_keeps_its_meaning(folder):
    before = vex2.open("run.vex")
    values = (before.plate, before.detectors, before.settings, before.readings.tobytes())
    with vex2.edit("run.vex") as doc:
        doc.wells = doc.wells
        doc.detectors = doc.detectors
    after = vex2.open("run.vex")
    assert (after.plate, after.detectors, after.settings, after.readings.tobytes()) == values


def test_wells_change_by_table_in_place_or_assigned(folder):
    with vex2.edit("run.vex") as doc:
        doc.wells.loc[doc.wells["well"] == "A1", "sample"] = "patient 8"
    assert vex2.open("run.vex").plate["A1"].sample == "patient 8"
    with vex2.edit("run.vex") as doc:
        table = doc.wells
        table.loc[table["well"] == "A2", ["task", "quantity"]] = ["STND", 5.5]
        doc.wells = table
    assert vex2.open("run.vex").plate["A2"].targets[0][:3] == ("GENE", "STND", 5.5)


def test_wells_change_by_values_without_pandas(folder):
    with vex2.edit("run.vex") as doc:
        doc.wells = [vex2.Well(1, "", "alone", (vex2.Target("GENE"),))]
    wells = {well.number: well for well in vex2.open("run.vex").plate.wells}
    assert wells[1].sample == "alone" and not any(w.targets for n, w in wells.items() if n > 1)


def test_detectors_change_by_table(folder):
    pandas = pytest.importorskip("pandas")
    with vex2.edit("run.vex") as doc:
        doc.detectors = pandas.DataFrame(doc.detectors).assign(threshold=0.75, comment="mine")
    (detector,) = vex2.open("run.vex").detectors
    assert (detector.threshold, detector.comment) == (0.75, "mine")


def test_settings_are_a_mapping(folder):
    with vex2.edit("run.vex") as doc:
        assert "comment" in doc.settings and "nothing" not in list(doc.settings)
        doc.settings["comment"] = "äöü"
        doc.settings = {"sample-volume": 25}
        with pytest.raises(vex2.UsageError):
            doc.settings["none"] = 1
        with pytest.raises(vex2.UsageError):
            doc.settings["comment"] = "\N{SNOWMAN}"
    settings = vex2.open("run.vex").settings
    assert (settings["comment"], settings["sample-volume"]) == ("äöü", 25)


def test_exception_changes_nothing(folder):
    before = content()
    with pytest.raises(ZeroDivisionError):
        with vex2.edit("run.vex") as doc:
            doc.settings["comment"] = "lost"
            raise ZeroDivisionError
    assert content() == before


def test_value_that_cannot_be_stored_changes_nothing(folder):
    before = content()
    with pytest.raises(vex2.UsageError):
        with vex2.edit("run.vex") as doc:
            doc.settings["comment"] = "half"
            doc.wells = [vex2.Well(1, "", "\N{SNOWMAN}")]
    assert content() == before
    with pytest.raises(vex2.UsageError, match="the plate has no well"):
        with vex2.edit("run.vex") as doc:
            doc.wells = [vex2.Well(97)]
    assert content() == before


def test_open_editor_keeps_others_out(folder):
    with vex2.edit("run.vex"):
        with pytest.raises(vex2.FileError):
            vex2.record("run.vex", 96)
    vex2.edit("run.vex").close()


def test_change_by_another_program_is_not_lost(folder):
    doc = vex2.edit("run.vex")
    doc.settings["comment"] = "mine"
    changed = content().replace(b"a sample run", b"b sample run")
    pathlib.Path("run.vex").write_bytes(changed)
    with pytest.raises(vex2.DocumentError, match="another program has changed it"):
        doc.save()
    doc.close()
    assert content() == changed


def test_closed_editor_says_so(folder):
    doc = vex2.edit("run.vex")
    doc.close()
    for ask in (lambda: doc.wells, lambda: doc.save(), lambda: doc.plates, lambda: doc.status):
        with pytest.raises(vex2.UsageError, match="the editor is closed"):
            ask()


def test_plates_of_a_study_are_edited(folder):
    with vex2.edit("study.vex") as study:
        study.plates["plate2"].wells.loc[0, "sample"] = "changed"
    plates = vex2.open("study.vex").plates
    assert plates["plate2"].plate["A1"].sample == "changed"
    assert plates["plate1"].plate["A1"].sample == "control"
