"""Tests the raw interface: every operation has its C++ name and returns the same status."""

import copy
import gc
import os
import pathlib
import re
import weakref

import numpy
import pytest

import vex2
from vex2 import raw
from vex2.raw import DataRAWa, DataREPr, Vex2FileManager

HEADER = pathlib.Path(__file__).resolve().parents[2] / "vex2" / "manager" / "Vex2FileManager.h"
TIME = bytes([26, 11, 22, 8, 0, 0])


def public_operations():
    """The names of the public operations of the class."""
    text = re.sub(r"//.*", "", HEADER.read_text())
    body = text[text.index("class VEX2_API Vex2FileManager") :]
    public = "".join(re.findall(r" public:(.*?)(?= protected:| private:)", body, re.S))
    names = set(re.findall(r"\b(\w+)\((?!\))[^;{]*\)|\b(\w+)\(\)", public))
    return {name for pair in names for name in pair if name} - {"Vex2FileManager"}


def test_every_operation_has_its_cpp_name():
    operations = public_operations()
    assert len(operations) > 150 and "SetAcqDataWellRecord" in operations
    assert {name for name in operations if not hasattr(Vex2FileManager, name)} == set()


@pytest.fixture
def manager(folder):
    found = Vex2FileManager()
    assert found.ReadFromFile("run.vex") == 0
    return found


def frame(value: int, wells: int = 2):
    numbers = numpy.full((wells, 44), value, dtype=numpy.uint16)
    numbers[:, 40:] = 0
    return numbers


def committed(path: str, frames: int) -> Vex2FileManager:
    """A document whose frames were committed one by one, as a host does."""
    manager = Vex2FileManager()
    assert manager.SaveToFile(path) == 0
    for index in range(frames):
        assert manager.AppendAcquisitionDataFrame(path, frame(index + 1), DataRAWa) == 0
    return manager


def test_frames_are_committed_and_read(folder):
    manager = committed("host.vex", 3)
    assert manager.GetDataFrameCount("host.vex", DataRAWa) == (0, 3)
    assert manager.GetDataFrameCount(DataRAWa) == 3 and manager.GetWellCount(DataRAWa) == 2
    status, found = manager.ReadDataFrame("host.vex", 1, DataRAWa)
    assert status == 0 and numpy.array_equal(found, frame(2))
    status, found = manager.ReadDataFrame(2, DataRAWa)
    assert status == 0 and numpy.array_equal(found, frame(3))
    assert manager.ReadDataFrame(3, DataRAWa)[0] == -260
    assert manager.ReadDataFrame(0, DataREPr)[0] == -300
    assert numpy.array_equal(vex2.open("host.vex").readings, [frame(i)[:, 8:40] for i in (1, 2, 3)])


def test_records_are_set_and_committed(folder):
    manager = Vex2FileManager()
    manager.InitAcqDataWellNumberArray([5, 9], DataRAWa)
    assert manager.SaveToFile("host.vex") == 0
    # After a save of the whole document, the header's offset is past the block, so hosts save
    # before they make the block.
    manager = Vex2FileManager()
    assert manager.SaveToFile("host.vex") == 0
    manager.InitAcqDataWellNumberArray([5, 9], DataRAWa)
    assert manager.SetAcqDataWellRecord([7] * 40, 0, 5, DataRAWa)
    assert manager.SetAcqDataWellRecord([8] * 40, 0, 9, DataRAWa)
    assert not manager.SetAcqDataWellRecord([8] * 40, 0, 6, DataRAWa)
    assert not manager.SetAcqDataWellRecord(None, 0, 5, DataRAWa)
    assert manager.SetAcqDataStartTime(TIME, DataRAWa) and manager.SetAcqDataEndTime(TIME, DataRAWa)
    assert manager.GetAcqDataStartTime(DataRAWa) == (True, TIME)
    assert manager.GetAcqDataEndTime(DataREPr)[0] is False
    assert manager.CommitAcqDataFrame("host.vex", 0, DataRAWa) == 0
    assert manager.CommitAcqDataFrame("host.vex", 1, DataRAWa) == -260
    done, record = manager.GetAcqDataWellRecord(0, 9, DataRAWa)
    assert done and record.tolist() == [8] * 40 + [0] * 4
    assert manager.GetAcqDataWellRecordForWellIndex(0, 0, DataRAWa)[1][0] == 7
    assert manager.GetDataCntInWell(5, DataRAWa) == 1
    assert vex2.open("host.vex").block("RAWa").wells.tolist() == [5, 9]


def test_statuses_are_those_of_the_class(folder):
    manager = Vex2FileManager()
    assert manager.ReadFromFile("missing.vex") == -100
    assert manager.GetLastFileError().systemError == 2
    assert manager.GetLastFileError().reason == raw.FileErrorReason.kSystem
    assert manager.ReadFromFile(None) == -50
    assert manager.GetCalibrator() == (-300, "")
    assert manager.GetMaxDyesPerWell() == (-300, 4)
    assert manager.SetAcquisitionStatus("DON") == -261
    assert manager.SetAcquisitionStatus("run.vex", "DON") == -200
    assert manager.SaveToFile("no/such/folder.vex") == -200
    assert manager.RQSOpenFile() == (False, "", "")
    with pytest.raises(vex2.Error) as caught:
        raw.require(manager, manager.ReadFromFile("missing.vex"))
    assert (caught.value.status, caught.value.file) == (-100, "missing.vex")
    raw.require(manager, 0)


def test_header_is_a_copy_that_is_set(manager):
    header = manager.GetHeaderData()
    header.text = "kept as it is"
    assert manager.GetHeaderData().text != header.text
    manager.SetHeaderData(header)
    assert manager.GetHeaderData().text == "kept as it is".ljust(31)
    assert manager.SaveHeader("head.vex", header) == 0
    assert os.path.getsize("head.vex") == manager.GetHeaderBytes() == 1024
    assert manager.SafeOpen("run.vex", 0, 0) == 1 and manager.IsVex2Format()
    assert manager.ReadHeaderDataInto()[1].rows == 8
    manager.Close()
    assert (manager.GetHeaderRows(), manager.GetHeaderCols()) == (8, 12)
    assert manager.IsAQ() and not manager.IsRQS() and manager.IsAssayType(1000)
    with pytest.raises(ValueError):
        manager.SetHeaderData(raw.Vex2HeaderData(magic="too long"))


def test_usage_holds_a_value_for_each_well(manager):
    usage = [index % 3 == 0 for index in range(96)]
    assert manager.SetUsageArray(usage, 8, 12) and manager.GetUsageArray() == (True, usage)
    with pytest.raises(ValueError, match="a value for each well: 96"):
        manager.SetUsageArray(usage[:95], 8, 12)
    done, header = Vex2FileManager.SetUsageArrayIn([True] * 24, 2, 12, raw.Vex2HeaderData())
    assert done and header.rows == 2 and header.usage == [4095, 4095]


def test_settings_setup_program_and_dyes_come_back(folder):
    manager = Vex2FileManager()
    info = raw.Vex2GlobalComplex(comment=b"a \xe4", sampleVolume=25, log=b"x\0y")
    assert manager.ReplaceGlobalComplexComp(info) == 0
    well = raw.Vex2WellSetup(1, 2, True, "näme", "", [raw.Vex2WellDetector("GENE", "STND", 2.5)])
    assert manager.ReplacePlateSetup([well, raw.Vex2WellSetup()]) == 0
    assert manager.ReplaceThermocycleProgram(b"program\0") == 0
    assert manager.UpdateRequiredDyeList(["FAM", "VIC"]) == 0
    assert manager.AppendRequiredDyenfo("ROX") and not manager.AppendRequiredDyenfo("ROX")
    detector = raw.Vex2Detector("GENE", "FAM", color=b"\1\2\3", autoBaseline=1)
    assert manager.UpdateDetectorList([detector]) == 0
    assert manager.SetCalibrator("liver") == 0 and manager.UpdateConfidencePercent(95.5) == 0
    assert manager.SaveToFile("new.vex") == 0
    again = Vex2FileManager()
    assert again.ReadFromFile("new.vex") == 0 and again.IsWhole()
    assert again.GetReadFault().reason == ""
    assert again.GetGlobalComplexInfo() == (0, info)
    assert again.GetPlateSetupInfo()[1][0] == well
    assert again.GetThermocycleProgramInfo() == (0, b"program\0")
    assert again.GetThermocycleProgComp().tag == "TPro"
    assert again.GetRequiredDyeListInfo() == (0, ["FAM", "VIC", "ROX"])
    (found,) = again.GetDetectorListInfo()[1]
    assert found == raw.Vex2Detector(**{**vars(detector), "threshold": found.threshold})
    assert (again.GetCalibrator(), again.GetConfidencePercent()) == ((0, "liver"), (0, 95.5))
    assert again.GetComponentTagList()[1] == [
        again.GetComponent(index).tag for index in range(again.GetAllComponentCount())
    ]
    assert again.GetComponent(99) is None


def test_calibration_is_read_back_and_replaced(folder):
    dye = raw.Vex2PureDye(entries=[raw.Vex2DyeSpectrum(1, 2, 3, "FAM", [1, 2, 2**32 - 1], 4, 5)])
    background = raw.Vex2BGC(entries=[raw.Vex2BackgroundSpectrum(name="", values=[9] * 12)])
    manager = Vex2FileManager()
    assert manager.ReplaceCalibComponent(dye, None) == 0
    assert manager.ReplaceBackground(background) == 0
    assert manager.GetCalibrationInfo() == (0, dye, background)
    assert manager.GetPureDyeCount() == 1
    done, (info,) = manager.LoadDyeList()
    assert done and (info.name, info.values[:3], info.index) == ("FAM", [1, 2, 2**32 - 1], 3)
    assert manager.SaveCalibrationInfo("calibration.vex") == 0
    assert manager.RemoveCalibComponents(True, True) == 0
    assert manager.GetCalibrationInfo() == (-300, None, None)


def test_study_holds_plates(manager):
    study = Vex2FileManager()
    study.SetHeaderData(raw.Vex2HeaderData(assayCode="RQSt"))
    assert study.IsRQS() and study.InitMultiplate()
    for name in ("liver", "kidney"):
        manager.SetFilePath(os.path.abspath(f"{name}.vex"))
        assert study.AddRQPlate(manager, "Mar 05, 2003 02:07 PM")
    assert not study.AddRQPlate(manager, "") and study.GetRQPlateCount() == 2
    assert study.GetMultiPlateList()[1] == ["liver", "kidney"]
    assert study.SaveToFile("my study.vex") == 0
    plate = study.GetSinglePlatePtrByName("kidney")
    assert study.RemoveRQPlate("kidney") and plate.GetDataFrameCount(DataRAWa) == 45
    assert study.GetSinglePlatePtrByName("kidney") is None
    assert list(vex2.open("my study.vex").plates) == ["liver", "kidney"]
    status, modified = Vex2FileManager().ReadRQPFromFile(None, "run.vex", False)
    assert status == 0 and re.match(r"\w{3} \d\d, \d{4} \d\d:\d\d [AP]M", modified)


class Result:
    """A result that an analysis stores in a document."""


def test_results_are_kept_and_given_back(manager):
    assert manager.CreateAnalysisStorage(1) == 96
    results = [Result(), Result(), Result()]
    alive = [weakref.ref(result) for result in results]
    assert manager.SetMCDataAt(results[0], 1) and manager.GetMCDataAt(1) == (True, results[0])
    assert manager.SetMCDataAt(results[1], 1) and not manager.SetMCDataAt(Result(), 97)
    assert manager.SetReporterAt(results[2], 2, True)
    assert manager.GetReporterAt(2, True) == (True, results[2])
    assert manager.GetReporterAt(2, False) == (False, None)
    # Sic: the overload for a pointer to a name always returns false, but stores the result.
    assert manager.SetMeltingDataAt(results[2], 3) and manager.RemoveMeltingDataAt(3)
    assert manager.SetMCDataAt(None, results[2], 4) is False
    assert manager.GetMCDataAt(None, 4) == (False, results[2])
    del results
    gc.collect()
    assert [ref() is None for ref in alive] == [True, False, False]
    manager.CreateAnalysisStorage(0)
    gc.collect()
    assert [ref() is None for ref in alive] == [True, True, True]


def test_analysis_settings_belong_to_document_and_plates(manager):
    settings = raw.CAnalysisSettings(5, raw.CAnalysisParameters(1, 2, 0.5), [(1, 20.5)])
    for _ in range(3):
        manager.AddAnalysisSettingsMap(None, {"GENE": settings})
        manager.AddAnalysisSettingsMap("plate", {"GENE": settings, "OTHER": settings})
    assert manager.GetAnalysisSettingsMap(None) == {"GENE": settings, "OTHER": settings}
    assert manager.GetAnalysisSettingsDetectorMap("plate").ownsMap is False
    assert manager.GetAnalysisSettingsDetectorMap("none") is None
    manager.SetCtAt("plate", "GENE", 25.5, 7)
    assert manager.GetCtAt("plate", "GENE", 7) == 25.5
    assert manager.GetCtAt("plate", "GENE", 8) == pytest.approx(raw.NO_CT)
    assert manager.AddDetectorToAnalysisSettingsMap(raw.TAGPROBE("NEW"), "plate")
    assert manager.RemoveDetectorFromAnalysisSettingsMap("NEW", "plate")
    assert manager.IsAnalysisAvailableFor("plate", "OTHER") and manager.PrepareQueryList(["GENE"])
    chosen = manager.GetAnalysisSettingsByDetector(manager.GetAnalysisSettingsMap(None), "GENE")
    assert chosen.queryFlag == 1
    manager.Reset()
    assert manager.GetAnalysisSettingsMap(None) == {}
    manager.AddAnalysisSettingsMap(None, None)


def test_copies_are_independent(manager):
    for again in (Vex2FileManager(manager), copy.copy(manager), copy.deepcopy(manager)):
        again.SetSampleVolume(77)
        assert again.GetSampleVolume() == 77 != manager.GetSampleVolume()
        assert again.GetDataFrameCount(DataRAWa) == 45
    other = Vex2FileManager()
    other.Assign(manager)
    assert other.GetDataFrameCount(DataRAWa) == 45
    manager.Assign(manager)
    assert manager.GetAllComponentCount() == 0


def test_queries_and_spectra_answer(manager):
    assert manager.GetPlateInfo() == (45, 96)
    assert manager.GetPlateDataInfo()[0] == 96
    assert manager.FindPCRMeltingParams(None) == (40, 40)
    spectrum = raw.KestorSpectrum(frameIndex=3, well=2)
    assert manager.LoadSpectrum(spectrum)
    assert spectrum.values == vex2.open("run.vex").readings[3, 1].tolist()
    assert not manager.LoadSpectrum(raw.KestorSpectrum(frameIndex=99, well=2), None)
    assert not manager.LoadSpectrum(None, None)


def test_open_file_is_read_and_closed(manager):
    assert manager.SafeOpen("run.vex", 0, 0) == 1 and manager.IsOpen()
    assert manager.Read(4) == b"Vex2" and manager.GetPosition() == 4
    assert manager.Seek(8) == 8 and manager.GetLength() == os.path.getsize("run.vex")
    with pytest.raises(OSError):
        manager.Seek(-1)
    manager.Close()
    assert not manager.IsOpen() and manager.WriteComponentFile() == -200


def test_arguments_of_wrong_kind_raise(manager):
    for call in (
        lambda: manager.SaveToFile(5),
        lambda: manager.SetCalibrator(None),
        lambda: manager.SetAcqDataStartTime(b"12345", DataRAWa),
        lambda: manager.AppendAcquisitionDataFrame("x.vex", [1, 2], DataRAWa),
        lambda: manager.AppendAcquisitionDataFrame("x.vex", [[70000]], DataRAWa),
        lambda: manager.ReplaceThermocycleProgram("text \N{SNOWMAN}"),
        lambda: manager.SetEndoControl("\N{SNOWMAN}"),
        lambda: manager.ReplaceAcquisitionDataBlock("x.vex", [frame(1), frame(1, 3)], DataRAWa),
    ):
        with pytest.raises((TypeError, ValueError)):
            call()


def enumerators(header: str, name: str) -> list:
    """The names of an enumeration, in the order of their numbers."""
    text = re.sub(r"//.*", "", (HEADER.parents[1] / header).read_text())
    body = re.search(rf"enum (?:class )?{name}\b[^{{]*{{([^}}]*)}}", text).group(1)
    return re.findall(r"\b([A-Za-z]\w*)\b(?: = \d+)?\s*,", body)


@pytest.mark.parametrize(
    "header, kind",
    [
        ("framework/FileError.h", raw.FileOperation),
        ("framework/FileError.h", raw.FileErrorReason),
        ("run/Vex2DataType.h", raw.Vex2DataType),
    ],
)
def test_enumerations_are_those_of_cpp(header, kind):
    names = enumerators(header, kind.__name__)
    assert names == [each.name for each in sorted(kind)] and len(names) >= 5
