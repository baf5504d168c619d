"""Tests editing: a document is saved as a whole or not at all."""

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


def odd_wells(path: str) -> tuple:
    """Makes wells that a table cannot distinguish from others: one without a task, and one with a
    target without a name."""
    manager = vex2.raw.Vex2FileManager()
    assert manager.ReadFromFile(path) == 0
    setup = [vex2.raw.Vex2WellSetup(i // 12, i % 12, True, "sample") for i in range(96)]
    setup[0].detectors = [vex2.raw.Vex2WellDetector("GENE", ""), vex2.raw.Vex2WellDetector("", "")]
    setup[1].detectors = [vex2.raw.Vex2WellDetector("GENE", "")]
    assert manager.ReplacePlateSetup(setup) == 0 and manager.SaveToFile(path) == 0
    return vex2.open(path).plate.wells


def test_wells_that_are_looked_at_stay_as_they_are(folder):
    before = odd_wells("run.vex")
    assert before[1].targets[0].task == "" and len(before[0].targets) == 2
    with vex2.edit("run.vex") as doc:
        assert len(doc.wells) == 97
    assert vex2.open("run.vex").plate.wells == before
    with vex2.edit("run.vex") as doc:
        doc.wells.loc[doc.wells["well"] == "A2", "sample"] = "changed"
        doc.wells = doc.wells
    after = vex2.open("run.vex").plate.wells
    assert after[1] == before[1]._replace(sample="changed")
    assert after[:1] + after[2:] == before[:1] + before[2:]


def test_plate_of_another_size_is_refused(folder):
    before = content()
    with pytest.raises(vex2.UsageError, match="8 x 12 wells, but one of 16 x 24 wells was given"):
        with vex2.edit("run.vex") as doc:
            doc.wells = vex2.Plate(16, 24, (vex2.Well(1),))
    with pytest.raises(vex2.UsageError, match="'A13'"):
        with vex2.edit("run.vex") as doc:
            doc.wells = [vex2.Well(13, "A13")]
    assert content() == before


@pytest.mark.parametrize(
    "change, what",
    [
        (lambda doc: setattr(doc, "required_dyes", "FAM"), r"use \['FAM'\]"),
        (lambda doc: setattr(doc, "wells", "A1"), "not a list"),
        (lambda doc: setattr(doc, "wells", {"well": ["A1"], "sample": []}), "differ in length"),
        (lambda doc: setattr(doc, "wells", {"well": ["A1"], "target": ["G"], "quantity": ["x"]}),
         "the quantity of G is 'x'"),
        (lambda doc: setattr(doc, "wells", {"number": [1.5]}), "a well number is 1.5"),
        (lambda doc: setattr(doc, "detectors", [1]), "not as vex2.Detector"),
        (lambda doc: setattr(doc, "detectors", [vex2.Detector("G", threshold="x")]),
         "threshold is 'x'"),
        (lambda doc: setattr(doc, "settings", 5), "not as a mapping"),
        (lambda doc: doc.settings.update({"sample-volume": [1]}), "which it cannot be"),
        (lambda doc: setattr(doc, "status", 5), "another type"),
        (lambda doc: setattr(doc, "status", "FINISHED"), "four"),
        (lambda doc: setattr(doc, "settings", {"comment": "\ud800"}), "which it cannot be"),
    ],
)
def test_value_of_a_wrong_kind_is_a_usage_error(folder, change, what):
    before = content()
    with pytest.raises(vex2.UsageError, match=what):
        with vex2.edit("run.vex") as doc:
            change(doc)
    assert content() == before


def test_table_of_detectors_with_other_columns_is_refused(folder):
    pandas = pytest.importorskip("pandas")
    with pytest.raises(vex2.UsageError, match="the column 'colour'"):
        with vex2.edit("run.vex") as doc:
            doc.detectors = pandas.DataFrame(doc.detectors).assign(colour=1)


def test_run_that_was_given_up_is_ended(folder):
    rec = vex2.record("open.vex", 96, wells=["A1"], scale=10)
    rec.append([1], cycle=1, time_s=1, temperature_c=60)
    with pytest.raises(vex2.FileError):
        vex2.set_run_status("open.vex", "DONE")
    rec.close()
    with pytest.raises(vex2.Error, match="or call vex2.set_run_status if it never will"):
        vex2.edit("open.vex")
    vex2.set_run_status("open.vex", "DONE")
    with vex2.edit("open.vex") as doc:
        assert doc.status == "DONE"
    with pytest.raises(vex2.UsageError):
        vex2.set_run_status("open.vex", "FINISHED")
    assert len(vex2.open("open.vex").frames) == 1
