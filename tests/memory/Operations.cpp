#include "tests/memory/Operations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace vex2::test {
namespace {

// Names that are too long for the internal buffer of a string, so that copies allocate memory.
const CString kPlate = "a plate with a name of some length";
const CString kDetector = "a detector with a name of some length";
const CString kText = "another text that is longer than most of them";

using M = OpenedManager;
using With = const Materials&;

void emptyList(CObList& list) {
  while (!list.IsEmpty()) delete list.RemoveHead();
}

}  // namespace

Materials::Materials(std::string theRun, std::string theTarget)
    : run(std::move(theRun)), target(std::move(theTarget)) {
  const auto numbers = WellNumbers(kWells);
  plate.InitAcqDataWellNumberArray(numbers.data(), kWells, DataRAWa);
  plate.InitAcqDataWellNumberArray(numbers.data(), kWells, DataREPr);
  for (std::uint16_t well = 1; well <= kWells; ++well) {
    const Vex2WellRecord reading = MakeRecord(0, well - 1);
    plate.SetAcqDataWellRecord(&reading, 0, well, DataRAWa);
    plate.SetAcqDataWellRecord(&reading, 0, well, DataREPr);
  }
  program.length = 4;
  program.Allocate();
  setup.Resize(2);
  setup.cells[0].SetName(kText, 20);
  detector.name = kDetector;
  detector.reporterDye = kText;
  dyes.SetEntryCount(1);
  dyes.entries[0].SetName(kText, 20);
  background.SetEntryCount(1);
  EXPECT_EQ(plate.ReplaceThermocycleProgram(&program), kSuccess);
  EXPECT_EQ(plate.ReplacePlateSetup(&setup), kSuccess);
  EXPECT_EQ(plate.AppendDetectorInfo(&detector), kSuccess);
  plate.AppendRequiredDyenfo(kText);
  EXPECT_EQ(plate.ReplaceCalibComponent(&dyes, &background), kSuccess);
  EXPECT_EQ(plate.SetCalibrator(kText), kSuccess);
  EXPECT_EQ(plate.SetEndoControl(kText), kSuccess);
  plate.SetPassiveReference(kText);
  EXPECT_EQ(plate.AppendPlateName(kPlate), kSuccess);
  EXPECT_EQ(plate.AppendLastModifiedDate(kText), kSuccess);
  plate.SetFilePath(("C:\\runs\\" + std::string(kPlate) + ".vex").c_str());
  EXPECT_EQ(plate.SaveToFile(run.c_str()), kSuccess);
  bytes = ReadBytes(run);
  SetLongAt(bytes, 68, std::string(bytes.begin(), bytes.end()).find("RAWa"));
  std::copy_n(kDetector.GetString(), kDetector.GetLength(), probe.name);
  named.name = kDetector;
  query.AddTail(&named);
  source = plate;
}

void Materials::Fill(Vex2FileManager& document) const {
  WriteBytes(run, bytes);
  document = plate;
  ASSERT_TRUE(document.AddRQPlate(&plate, kText));
  document.CreateAnalysisStorage(1);
  document.AddAnalysisSettingsMap(kPlate, new CAnalysisSettingsMap);
  document.AddDetectorToAnalysisSettingsMap(probe, kPlate);
  document.SetCtAt(kPlate, kDetector, 20.0F, 1);
  part = std::make_unique<Vex2FileManagerComponent>(plate);
  map.RemoveAll();
}

const std::vector<Operation>& ManagerOperations() {
  static const std::vector<Operation> operations = {
      {"operator=", [](Vex2FileManager& m, With w) { m = w.plate; }},
      {"GetRuntimeClass", [](M& m, With) { m.GetRuntimeClass(); }},
      {"ClassRecord", [](M& m, With) { m.ClassRecord(); }},
      {"GetFileName", [](M& m, With) { m.GetFileName(); }},
      {"GetFileTitle", [](M& m, With) { m.GetFileTitle(); }},
      {"GetFilePath", [](M& m, With) { m.GetFilePath(); }},
      {"WriteComponentFile", [](M& m, With w) { std::ignore = m.SafeOpen(w.target.c_str(), 1, 0); m.WriteComponentFile(nullptr); m.Abort(); }},
      {"ReadComponentFile", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 0, 0); m.ReadComponentFile(nullptr); m.Abort(); }},
      {"ReadHeaderData(CFile* file)", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 0, 0); m.ReadHeaderData(nullptr); m.Abort(); }},
      {"ReadHeaderData(Vex2HeaderData& header, CFile* file)", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 0, 0); m.ReadHeaderData(w.scratch, nullptr); m.Abort(); }},
      {"WriteHeaderData", [](M& m, With w) { std::ignore = m.SafeOpen(w.target.c_str(), 1, 0); m.WriteHeaderData(nullptr); m.Abort(); }},
      {"Reset", [](M& m, With) { m.Reset(); }},
      {"SafeOpen", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 1, 1); m.Abort(); }},
      {"ReadFromFile", [](M& m, With w) { std::ignore = m.ReadFromFile(w.run.c_str(), false); std::ignore = m.ReadFromFile(nullptr, true); }},
      {"SaveToFile", [](M& m, With w) { std::ignore = m.SaveToFile(w.target.c_str(), false); std::ignore = m.SaveToFile(nullptr, true); }},
      {"SaveHeader", [](M& m, With w) { std::ignore = m.SaveHeader(w.target.c_str(), w.header); }},
      {"IsWhole", [](M& m, With) { m.IsWhole(); }},
      {"GetReadFault", [](M& m, With) { m.GetReadFault(); }},
      {"GetLastFileError", [](M& m, With) { m.GetLastFileError(); }},
      {"GetAllComponentCount", [](M& m, With) { m.GetAllComponentCount(); }},
      {"GetComponentTagList", [](M& m, With) { CStringList tags; m.GetComponentTagList(tags); }},
      {"GetComponent", [](M& m, With) { m.GetComponent(0); }},
      {"initTestData", [](M& m, With) { m.initTestData(); }},
      {"IsAcquisitionDataAvailable", [](M& m, With) { m.IsAcquisitionDataAvailable(); }},
      {"GetHeaderData", [](M& m, With) { m.GetHeaderData(); }},
      {"SetHeaderData", [](M& m, With w) { m.SetHeaderData(w.header); }},
      {"GetHeaderRows", [](M& m, With) { m.GetHeaderRows(); }},
      {"GetHeaderCols", [](M& m, With) { m.GetHeaderCols(); }},
      {"GetHeaderBytes", [](M& m, With) { m.GetHeaderBytes(); }},
      {"SetFilePath", [](M& m, With w) { m.SetFilePath(w.target.c_str()); }},
      {"IsVex2Format", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 0, 0); m.IsVex2Format(); m.Abort(); }},
      {"IsBlueLightSpecialFile", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 0, 0); m.IsBlueLightSpecialFile(); m.Abort(); }},
      {"IsKestorFile", [](M& m, With w) { std::ignore = m.SafeOpen(w.run.c_str(), 0, 0); m.IsKestorFile(); m.Abort(); }},
      {"IsAssayType", [](M& m, With) { m.IsAssayType(1); }},
      {"IsBackground", [](M& m, With) { m.IsBackground(); }},
      {"IsPureSpectra", [](M& m, With) { m.IsPureSpectra(); }},
      {"IsAQ", [](M& m, With) { m.IsAQ(); }},
      {"IsRQP", [](M& m, With) { m.IsRQP(); }},
      {"IsRQS", [](M& m, With) { m.IsRQS(); }},
      {"IsAD", [](M& m, With) { m.IsAD(); }},
      {"IsPM", [](M& m, With) { m.IsPM(); }},
      {"IsRealTime", [](M& m, With) { m.IsRealTime(); }},
      {"IsPlateRead", [](M& m, With) { m.IsPlateRead(); }},
      {"LoadDyeList", [](M& m, With) { CObList list; m.LoadDyeList(&list); emptyList(list); }},
      {"LoadDyeListByName", [](M& m, With) { CObList list; m.LoadDyeListByName(&list, kPlate); emptyList(list); }},
      {"GetGlobalComplexInfo", [](M& m, With) { Vex2GlobalComplex info; std::ignore = m.GetGlobalComplexInfo(&info); }},
      {"ReplaceGlobalComplexComp", [](M& m, With w) { std::ignore = m.ReplaceGlobalComplexComp(&w.settings); }},
      {"AppendGlobalComplexComp", [](M& m, With w) { std::ignore = m.AppendGlobalComplexComp(w.target.c_str(), &w.settings); }},
      {"GetMaxDyesPerWell", [](M& m, With) { int count = 0; std::ignore = m.GetMaxDyesPerWell(count); }},
      {"GetConfidencePercent", [](M& m, With) { float percent = 0; std::ignore = m.GetConfidencePercent(percent); }},
      {"UpdateConfidencePercent", [](M& m, With) { std::ignore = m.UpdateConfidencePercent(5); }},
      {"GetCalibrator", [](M& m, With) { CString text; std::ignore = m.GetCalibrator(text); }},
      {"SetCalibrator", [](M& m, With) { std::ignore = m.SetCalibrator(kText); }},
      {"GetEndoControl", [](M& m, With) { CString text; std::ignore = m.GetEndoControl(text); }},
      {"SetEndoControl", [](M& m, With) { std::ignore = m.SetEndoControl(kText); }},
      {"GetRQAnalysisType", [](M& m, With) { unsigned short type = 0; std::ignore = m.GetRQAnalysisType(type); }},
      {"SetRQAnalysisType", [](M& m, With) { std::ignore = m.SetRQAnalysisType(1); }},
      {"GetPassiveReference", [](M& m, With) { CString text; m.GetPassiveReference(text); }},
      {"SetPassiveReference", [](M& m, With) { m.SetPassiveReference(kText); }},
      {"GetSampleVolume", [](M& m, With) { m.GetSampleVolume(); }},
      {"SetSampleVolume", [](M& m, With) { m.SetSampleVolume(20); }},
      {"GetPrePostFlags", [](M& m, With) { int pre = 0; int post = 0; m.GetPrePostFlags(pre, post); }},
      {"SetPrePostFlags", [](M& m, With) { m.SetPrePostFlags(1, 1); }},
      {"GetThermocycleProgramInfo", [](M& m, With) { ThermocycleProgram program; std::ignore = m.GetThermocycleProgramInfo(&program); }},
      {"ReplaceThermocycleProgram", [](M& m, With w) { std::ignore = m.ReplaceThermocycleProgram(&w.program); }},
      {"GetThermocycleProgComp", [](M& m, With) { m.GetThermocycleProgComp(); }},
      {"ReplacePlateSetup", [](M& m, With w) { std::ignore = m.ReplacePlateSetup(&w.setup); }},
      {"GetPlateSetupInfo", [](M& m, With) { Vex2PlateSetup setup; std::ignore = m.GetPlateSetupInfo(&setup); }},
      {"GetPlateSetupComp", [](M& m, With) { m.GetPlateSetupComp(); }},
      {"SaveSetupInfo", [](M& m, With w) { std::ignore = m.SaveSetupInfo(w.target.c_str()); }},
      {"GetPlateSize", [](M& m, With) { m.GetPlateSize(); }},
      {"SetUsageArray(const bool* usage, int rows, int columns)", [](M& m, With w) { m.SetUsageArray(w.usage, 2, 2); }},
      {"SetUsageArray(const bool* usage, int rows, int columns, Vex2HeaderData& header)", [](M&, With w) { M::SetUsageArray(w.usage, 2, 2, w.scratch); }},
      {"GetUsageArray", [](M& m, With) { bool* usage = nullptr; m.GetUsageArray(usage); delete[] usage; }},
      {"UpdateDetectorList", [](M& m, With w) { std::ignore = m.UpdateDetectorList(&w.detector, 1); }},
      {"AppendDetectorInfo", [](M& m, With w) { std::ignore = m.AppendDetectorInfo(&w.detector); }},
      {"RemoveDetectorInfo", [](M& m, With) { m.RemoveDetectorInfo(kDetector); }},
      {"AppendDetectorListToFile", [](M& m, With w) { std::ignore = m.AppendDetectorListToFile(w.target.c_str()); }},
      {"GetNumberOfDetectors", [](M& m, With) { int count = 0; std::ignore = m.GetNumberOfDetectors(count); }},
      {"GetDetectorListInfo", [](M& m, With) { Vex2Detector* list = nullptr; std::ignore = m.GetDetectorListInfo(list); delete[] list; }},
      {"ReplaceCalibComponent", [](M& m, With w) { std::ignore = m.ReplaceCalibComponent(&w.dyes, &w.background); }},
      {"ReplacePureDye", [](M& m, With w) { std::ignore = m.ReplacePureDye(&w.dyes); }},
      {"ReplaceBackground(const Vex2BGC* record)", [](M& m, With w) { std::ignore = m.ReplaceBackground(&w.background); }},
      {"ReplaceBackground(const char* path, const Vex2BGC* record)", [](M& m, With w) { std::ignore = m.ReplaceBackground(w.run.c_str(), &w.background); }},
      {"AppendPureDye", [](M& m, With w) { std::ignore = m.AppendPureDye(w.target.c_str(), &w.dyes); }},
      {"AppendBackground", [](M& m, With w) { std::ignore = m.AppendBackground(w.target.c_str(), &w.background); }},
      {"RemoveCalibComponents", [](M& m, With) { std::ignore = m.RemoveCalibComponents(true, false); }},
      {"GetCalibrationInfo", [](M& m, With) { Vex2PureDye* dyes = nullptr; Vex2BGC* background = nullptr; int has[2] = {}; std::ignore = m.GetCalibrationInfo(dyes, &has[0], background, &has[1]); delete dyes; delete background; }},
      {"GetPureDyeCount", [](M& m, With) { m.GetPureDyeCount(); }},
      {"SaveCalibrationInfo", [](M& m, With w) { std::ignore = m.SaveCalibrationInfo(w.target.c_str()); }},
      {"AppendRequiredDyenfo", [](M& m, With) { m.AppendRequiredDyenfo(kDetector); }},
      {"UpdateRequiredDyeList", [](M& m, With) { std::ignore = m.UpdateRequiredDyeList(&kText, 1); }},
      {"RemoveRequiredDyeInfo", [](M& m, With) { m.RemoveRequiredDyeInfo(kText); }},
      {"AppendRequiredDyeListToFile", [](M& m, With w) { std::ignore = m.AppendRequiredDyeListToFile(w.target.c_str()); }},
      {"GetNumberOfRequiredDyes", [](M& m, With) { int count = 0; std::ignore = m.GetNumberOfRequiredDyes(count); }},
      {"GetRequiredDyeListInfo", [](M& m, With) { CString* list = nullptr; std::ignore = m.GetRequiredDyeListInfo(list); delete[] list; }},
      {"RemoveAcquisitionDataBlock", [](M& m, With) { m.RemoveAcquisitionDataBlock(DataREPr); }},
      {"ReplaceAcquisitionDataBlock", [](M& m, With w) { std::ignore = m.ReplaceAcquisitionDataBlock(w.run.c_str(), &w.data, DataREPr); }},
      {"InitAcqDataWellNumberArray", [](M& m, With w) { m.InitAcqDataWellNumberArray(w.wells, 2, DataREPn); }},
      {"AppendAcquisitionDataFrame", [](M& m, With w) { std::ignore = m.AppendAcquisitionDataFrame(w.run.c_str(), &w.frame, DataRAWa); }},
      {"CommitAcqDataFrame", [](M& m, With w) { std::ignore = m.CommitAcqDataFrame(w.run.c_str(), 0, DataRAWa); }},
      {"SetAcqDataWellRecord", [](M& m, With w) { m.SetAcqDataWellRecord(&w.record, 1, 1, DataRAWa); }},
      {"SetAcqDataStartTime", [](M& m, With w) { m.SetAcqDataStartTime(w.time, DataRAWa); }},
      {"SetAcqDataEndTime", [](M& m, With w) { m.SetAcqDataEndTime(w.time, DataRAWa); }},
      {"GetAcqDataStartTime", [](M& m, With) { TimeStamp time{}; m.GetAcqDataStartTime(time, DataRAWa); }},
      {"GetAcqDataEndTime", [](M& m, With) { TimeStamp time{}; m.GetAcqDataEndTime(time, DataRAWa); }},
      {"ReadDataFrame(int frameIndex, Vex2FrameData* frame, Vex2DataType type)", [](M& m, With) { Vex2FrameData frame; std::ignore = m.ReadDataFrame(0, &frame, DataRAWa); }},
      {"GetAcqDataWellRecord", [](M& m, With) { Vex2WellRecord record; m.GetAcqDataWellRecord(&record, 0, 1, DataRAWa); }},
      {"GetAcqDataWellRecordForWellIndex", [](M& m, With) { Vex2WellRecord record; m.GetAcqDataWellRecordForWellIndex(&record, 0, 0, DataRAWa); }},
      {"GetDataCntInWell", [](M& m, With) { m.GetDataCntInWell(1, DataRAWa); }},
      {"GetDataFrameCount(Vex2DataType type)", [](M& m, With) { m.GetDataFrameCount(DataRAWa); }},
      {"GetDataFrameCountByName", [](M& m, With) { m.GetDataFrameCountByName(kPlate, DataRAWa); }},
      {"GetWellCount", [](M& m, With) { m.GetWellCount(DataRAWa); }},
      {"GetDataFrameCount(const char* path, int& count, Vex2DataType type)", [](M& m, With w) { int count = 0; std::ignore = m.GetDataFrameCount(w.run.c_str(), count, DataREPr); }},
      {"ReadDataFrame(const char* path, int frameIndex, Vex2FrameData* frame, Vex2DataType type)", [](M& m, With w) { Vex2FrameData frame; std::ignore = m.ReadDataFrame(w.run.c_str(), 0, &frame, DataRAWa); }},
      {"GetAcquisitionStatus", [](M& m, With) { m.GetAcquisitionStatus(); }},
      {"SetAcquisitionStatus(const char* status)", [](M& m, With) { std::ignore = m.SetAcquisitionStatus("four?"); std::ignore = m.SetAcquisitionStatus("DONE"); }},
      {"SetAcquisitionStatus(const char* path, const char* status)", [](M& m, With w) { std::ignore = m.SetAcquisitionStatus(w.run.c_str(), "DONE"); }},
      {"IsAcquisitionZero", [](M& m, With) { m.IsAcquisitionZero(); }},
      {"IsAcquisitionProg", [](M& m, With) { m.IsAcquisitionProg(); }},
      {"IsAcquisitionDone", [](M& m, With) { m.IsAcquisitionDone(); }},
      {"InitMultiplate", [](M& m, With) { m.InitMultiplate(); }},
      {"AddRQPlate", [](M& m, With w) { m.AddRQPlate(w.part.get(), kText); }},
      {"RemoveRQPlate", [](M& m, With) { m.RemoveRQPlate(kPlate); }},
      {"GetMultiPlateList", [](M& m, With) { CStringList names; CStringList dates; m.GetMultiPlateList(names, dates); }},
      {"GetRQPlateCount", [](M& m, With) { m.GetRQPlateCount(); }},
      {"GetNumPlates", [](M& m, With) { m.GetNumPlates(); }},
      {"GetSinglePlatePtrByName", [](M& m, With) { m.GetSinglePlatePtrByName(kPlate); }},
      {"AppendPlateName", [](M& m, With) { std::ignore = m.AppendPlateName(kText); }},
      {"GetPlateName", [](M& m, With) { CString text; std::ignore = m.GetPlateName(text); }},
      {"AppendLastModifiedDate", [](M& m, With) { std::ignore = m.AppendLastModifiedDate(kText); }},
      {"GetLastModifiedDate", [](M& m, With) { CString text; std::ignore = m.GetLastModifiedDate(text); }},
      {"ConvertAQ2RQ", [](M& m, With) { m.ConvertAQ2RQ(); }},
      {"CreateAnalysisStorage", [](M& m, With) { m.CreateAnalysisStorage(1); }},
      {"SyncPlatesWithAnalysisStorageMap", [](M& m, With) { m.SyncPlatesWithAnalysisStorageMap(); }},
      {"GetMCDataAt(IDAMCMatrix*& matrix, int well)", [](M& m, With) { IDAMCMatrix* found = nullptr; m.GetMCDataAt(found, 1); }},
      {"GetMCDataAt(const char* plateName, IDAMCMatrix*& matrix, int well)", [](M& m, With) { IDAMCMatrix* found = nullptr; m.GetMCDataAt(kPlate.GetString(), found, 1); }},
      {"GetMCDataAt(const CString& plateName, IDAMCMatrix*& matrix, int well)", [](M& m, With) { IDAMCMatrix* found = nullptr; m.GetMCDataAt(kPlate, found, 1); }},
      {"SetMCDataAt(IDAMCMatrix* matrix, int well)", [](M& m, With) { m.SetMCDataAt(static_cast<IDAMCMatrix*>(nullptr), 1); }},
      {"SetMCDataAt(const char* plateName, IDAMCMatrix* matrix, int well)", [](M& m, With) { m.SetMCDataAt(kPlate.GetString(), static_cast<IDAMCMatrix*>(nullptr), 1); }},
      {"SetMCDataAt(const CString& plateName, IDAMCMatrix* matrix, int well)", [](M& m, With) { m.SetMCDataAt(kPlate, static_cast<IDAMCMatrix*>(nullptr), 1); }},
      {"GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second)", [](M& m, With) { IDAClippedMatrix* found = nullptr; m.GetReporterAt(found, 1, true); }},
      {"GetReporterAt(const char* plateName, IDAClippedMatrix*& matrix, int well, bool second)", [](M& m, With) { IDAClippedMatrix* found = nullptr; m.GetReporterAt(kPlate.GetString(), found, 1, true); }},
      {"GetReporterAt(const CString& plateName, IDAClippedMatrix*& matrix, int well, bool second)", [](M& m, With) { IDAClippedMatrix* found = nullptr; m.GetReporterAt(kPlate, found, 1, true); }},
      {"SetReporterAt(IDAClippedMatrix* matrix, int well, bool second)", [](M& m, With) { m.SetReporterAt(static_cast<IDAClippedMatrix*>(nullptr), 1, true); }},
      {"SetReporterAt(const char* plateName, IDAClippedMatrix* matrix, int well, bool second)", [](M& m, With) { m.SetReporterAt(kPlate.GetString(), static_cast<IDAClippedMatrix*>(nullptr), 1, true); }},
      {"SetReporterAt(const CString& plateName, IDAClippedMatrix* matrix, int well, bool second)", [](M& m, With) { m.SetReporterAt(kPlate, static_cast<IDAClippedMatrix*>(nullptr), 1, true); }},
      {"RemoveReporterAt(int well, bool second)", [](M& m, With) { m.RemoveReporterAt(1, true); }},
      {"RemoveReporterAt(const char* plateName, int well, bool second)", [](M& m, With) { m.RemoveReporterAt(kPlate.GetString(), 1, true); }},
      {"RemoveReporterAt(const CString& plateName, int well, bool second)", [](M& m, With) { m.RemoveReporterAt(kPlate, 1, true); }},
      {"GetMeltingDataAt", [](M& m, With) { IDAMeltingPoints* found = nullptr; m.GetMeltingDataAt(found, 1); }},
      {"SetMeltingDataAt", [](M& m, With) { m.SetMeltingDataAt(nullptr, 1); }},
      {"RemoveMeltingDataAt", [](M& m, With) { m.RemoveMeltingDataAt(1); }},
      {"GetAnalysisSettingsDetectorMap", [](M& m, With) { m.GetAnalysisSettingsDetectorMap(kPlate); }},
      {"GetAnalysisSettingsMap", [](M& m, With) { m.GetAnalysisSettingsMap(kPlate); }},
      {"AddAnalysisSettingsMap", [](M& m, With w) { m.AddAnalysisSettingsMap(nullptr, &w.map); }},
      {"AddDetectorToAnalysisSettingsMap", [](M& m, With w) { m.AddDetectorToAnalysisSettingsMap(w.probe, nullptr); }},
      {"RemoveDetectorFromAnalysisSettingsMap", [](M& m, With) { m.RemoveDetectorFromAnalysisSettingsMap(kDetector, kPlate); }},
      {"GetAnalysisSettingsByDetector", [](M& m, With) { m.GetAnalysisSettingsByDetector(m.GetAnalysisSettingsMap(kPlate), kDetector); }},
      {"IsAnalysisAvailableFor", [](M& m, With) { m.IsAnalysisAvailableFor(kPlate, kDetector); }},
      {"SetCtAt", [](M& m, With) { m.SetCtAt(kPlate, kDetector, 21.0F, 2); }},
      {"GetCtAt", [](M& m, With) { m.GetCtAt(kPlate, kDetector, 1); }},
      {"ResetGlobalAnalysisSettingsMap", [](M& m, With) { m.ResetGlobalAnalysisSettingsMap(); }},
      {"ResetAnalysisSettingsPlateMap", [](M& m, With) { m.ResetAnalysisSettingsPlateMap(); }},
      {"PrepareQueryList", [](M& m, With w) { m.PrepareQueryList(w.query); }},
      {"ReadRQPFromFile", [](M& m, With w) { CString date; std::ignore = m.ReadRQPFromFile(nullptr, w.run.c_str(), false, date); }},
      {"RQSOpenFile", [](M&, With) { CString path; CString folder; M::RQSOpenFile(nullptr, path, folder, "", "", "", "", "", 1); }},
      {"GetPlateDataInfo", [](M& m, With) { int wells = 0; int largest = 0; m.GetPlateDataInfo(wells, largest); }},
      {"GetPlateInfo", [](M& m, With) { long size = 0; m.GetPlateInfo(size); }},
      {"FindPCRMeltingParams", [](M& m, With) { int frames = 0; int start = 0; m.FindPCRMeltingParams(kPlate, frames, start); }},
      {"LoadSpectrum", [](M& m, With) { KestorSpectrum spectrum; spectrum.well = 1; m.LoadSpectrum(&spectrum, kPlate); }},
  };
  return operations;
}

const std::vector<Operation>& PlateOperations() {
  static const std::vector<Operation> operations = {
      {"operator=(const Vex2FileManagerComponent& other)",
       [](M&, With w) {
         *w.part = *w.part;
         *w.part = w.source;
       }},
      {"operator=(const Vex2FileManager& other)", [](M&, With w) { *w.part = w.plate; }},
      {"GetRuntimeClass", [](M&, With w) { w.part->GetRuntimeClass(); }},
      {"ClassRecord", [](M&, With) { Vex2FileManagerComponent::ClassRecord(); }},
      {"WriteComponentFile",
       [](M&, With w) {
         std::ignore = w.part->SafeOpen(w.target.c_str(), 1, 0);
         std::ignore = w.part->WriteComponentFile(nullptr);
         w.part->Abort();
       }},
      {"ReadComponentFile",
       [](M&, With w) {
         std::ignore = w.part->SafeOpen(w.run.c_str(), 0, 0);
         std::ignore = w.part->ReadComponentFile(nullptr);
         w.part->Abort();
       }},
      {"ReadHeaderData(CFile* file)",
       [](M&, With w) {
         std::ignore = w.part->SafeOpen(w.run.c_str(), 0, 0);
         std::ignore = w.part->ReadHeaderData(nullptr);
         w.part->Abort();
       }},
      {"ReadHeaderData(Vex2HeaderData& header, CFile* file)",
       [](M&, With w) {
         std::ignore = w.part->SafeOpen(w.run.c_str(), 0, 0);
         std::ignore = w.part->ReadHeaderData(w.scratch, nullptr);
         w.part->Abort();
       }},
      {"WriteHeaderData",
       [](M&, With w) {
         std::ignore = w.part->SafeOpen(w.target.c_str(), 1, 0);
         std::ignore = w.part->WriteHeaderData(nullptr);
         w.part->Abort();
       }},
  };
  return operations;
}

}  // namespace vex2::test
