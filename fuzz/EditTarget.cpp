// Input: a length, a script of that many bytes, and a document. Edits the document as a host would.
// Invariant: the content survives a save.

#include <array>
#include <memory>
#include <tuple>

#include "fuzz/Content.h"
#include "fuzz/Target.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::fuzz {
namespace {

using Edit = void (*)(Vex2FileManager& document, Script& script);

CString textOf(Script& script) {
  return CString(script.Text());
}

void replaceSettings(Vex2FileManager& document, Script& script) {
  Vex2GlobalComplex settings;
  const std::string comment = script.Text();
  const std::string log = script.Text();
  settings.SetComment(comment.data(), static_cast<std::uint32_t>(comment.size()));
  settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  settings.SetPassiveReference(textOf(script));
  settings.sampleVolume = script.Short();
  Require(document.ReplaceGlobalComplexComp(&settings) == 0, "settings are replaced");
}

void setSingleSettings(Vex2FileManager& document, Script& script) {
  std::ignore = document.SetCalibrator(textOf(script));
  std::ignore = document.SetEndoControl(textOf(script));
  const auto type = script.Short();
  std::ignore = document.SetRQAnalysisType(type);
  std::uint16_t kept = 0;
  Require(document.GetRQAnalysisType(kept) == 0 && kept == type, "the analysis type is set");
  std::ignore = document.UpdateConfidencePercent(static_cast<float>(script.Byte()));
}

void setParts(Vex2FileManager& document, Script& script) {
  document.SetPassiveReference(textOf(script));
  document.SetSampleVolume(script.Short());
  document.SetPrePostFlags(static_cast<int>(script.Byte()), static_cast<int>(script.Byte()));
}

void replaceProgram(Vex2FileManager& document, Script& script) {
  const std::string bytes = script.Text();
  ThermocycleProgram program;
  program.length = static_cast<std::uint32_t>(bytes.size());
  program.Allocate();
  if (program.data != nullptr) std::copy(bytes.begin(), bytes.end(), program.data);
  std::ignore = document.ReplaceThermocycleProgram(&program);
}

void replaceWells(Vex2FileManager& document, Script& script) {
  Vex2PlateSetup setup;
  setup.Resize(static_cast<std::uint16_t>(script.Byte() % 8));
  for (int index = 0; index < setup.count; ++index) {
    Vex2WellSetup& well = setup.cells[index];
    well.coord1 = script.Short();
    const std::string name = script.Text(script.Byte() % 16);
    well.SetName(name.c_str(), static_cast<std::int32_t>(name.size()));
    for (unsigned left = script.Byte() % 3; left > 0; --left) {
      auto detector = std::make_unique<Vex2WellDetector>();
      const std::string task = script.Text(4);
      detector->SetTask(task.c_str(), static_cast<std::int32_t>(task.size()));
      detector->SetDetectorName(name.c_str(), static_cast<std::int32_t>(name.size()));
      well.detectors.AddTail(detector.release());
    }
  }
  std::ignore = document.ReplacePlateSetup(&setup);
}

void takeWells(Vex2FileManager& document, Script& /*script*/) {
  Vex2PlateSetup setup;
  if (document.GetPlateSetupInfo(&setup) == 0) std::ignore = document.ReplacePlateSetup(&setup);
}

void appendDetector(Vex2FileManager& document, Script& script) {
  Vex2Detector detector;
  detector.name = textOf(script);
  detector.reporterDye = textOf(script);
  detector.baselineEnd = script.Short();
  std::ignore = document.AppendDetectorInfo(&detector);
}

void takeDetectors(Vex2FileManager& document, Script& script) {
  Vex2Detector* list = nullptr;
  int count = 0;
  std::ignore = document.GetNumberOfDetectors(count);
  if (document.GetDetectorListInfo(list) == 0 && list != nullptr && count > 0) {
    const CString name = list[script.Byte() % static_cast<unsigned>(count)].name;
    // A detector that was read with no name, or with two, is not found.
    const bool removed = document.RemoveDetectorInfo(name);
    int left = 0;
    std::ignore = document.GetNumberOfDetectors(left);
    Require(left == (removed ? count - 1 : count), "one detector is removed");
    std::ignore = document.UpdateDetectorList(list, count);
  }
  delete[] list;
}

void changeDyes(Vex2FileManager& document, Script& script) {
  document.AppendRequiredDyenfo(textOf(script));
  CString* dyes = nullptr;
  int count = 0;
  std::ignore = document.GetNumberOfRequiredDyes(count);
  if (document.GetRequiredDyeListInfo(dyes) == 0 && dyes != nullptr && count > 0) {
    document.RemoveRequiredDyeInfo(dyes[script.Byte() % static_cast<unsigned>(count)]);
  }
  delete[] dyes;
}

template <typename Record>
void fillSpectra(Record& record, Script& script) {
  record.setting = script.Short();
  record.SetEntryCount(static_cast<std::uint16_t>(script.Byte() % 4));
  for (std::uint16_t index = 0; index < record.entryCount; ++index) {
    const std::string name = script.Text(script.Byte());
    record.entries[index].SetName(name.data(), static_cast<std::uint8_t>(name.size()));
    record.entries[index].SetValues(nullptr, static_cast<std::uint8_t>(script.Byte() % 16));
  }
}

void replaceCalibration(Vex2FileManager& document, Script& script) {
  Vex2PureDye dyes;
  Vex2BGC background;
  fillSpectra(dyes, script);
  fillSpectra(background, script);
  const unsigned which = script.Byte();
  if ((which & 1U) != 0) std::ignore = document.ReplacePureDye(&dyes);
  if ((which & 2U) != 0) std::ignore = document.ReplaceBackground(&background);
  if ((which & 4U) != 0) std::ignore = document.ReplaceCalibComponent(&dyes, nullptr);
  if ((which & 8U) != 0)
    std::ignore = document.RemoveCalibComponents((which & 16U) != 0, (which & 32U) != 0);
}

void fillFrames(Vex2FileManager& document, Script& script) {
  constexpr std::array<Vex2DataType, 3> kTypes = {DataRAWa, DataREPr, DataREPt};
  const Vex2DataType type = kTypes.at(script.Byte() % kTypes.size());
  const std::array<std::uint16_t, 3> wells = {3, 1, script.Short()};
  if (script.Byte() % 2 == 0) document.InitAcqDataWellNumberArray(wells.data(), 3, type);
  Vex2WellRecord record;
  record.leading[0] = 1;
  record.data[0] = script.Short();
  const int frame = document.GetDataFrameCount(type);
  // A data block without wells can declare any length, from which its number of frames follows once
  // it gets wells. Filling the last frame then needs a table of all frames, and so does each copy
  // in a study.
  constexpr int kMostFrames = 10'000;
  if (frame > kMostFrames) return;
  if (document.SetAcqDataWellRecord(&record, frame, 1, type)) {
    Require(document.GetDataFrameCount(type) >= frame, "no frame is lost");
  }
  TimeStamp time{};
  time.fields[0] = static_cast<std::uint8_t>(script.Byte());
  document.SetAcqDataStartTime(time, type);
}

void dropBlock(Vex2FileManager& document, Script& script) {
  document.RemoveAcquisitionDataBlock(static_cast<Vex2DataType>(script.Byte()));
}

void changeHeader(Vex2FileManager& document, Script& script) {
  std::ignore = document.SetAcquisitionStatus(script.Text(4).c_str());
  const std::array<bool, 4> usage = {true, false, true, true};
  document.SetUsageArray(usage.data(), static_cast<int>(script.Byte() % 3), 2);
  if (script.Byte() % 2 == 1) document.ConvertAQ2RQ();
}

void addPlate(Vex2FileManager& document, Script& script) {
  Vex2FileManager plate(document);
  if (script.Byte() % 4 == 0) document.InitMultiplate();
  plate.SetFilePath(("/plates/" + script.Text(script.Byte() % 8) + ".vex").c_str());
  document.AddRQPlate(&plate, textOf(script));
}

void dropPlate(Vex2FileManager& document, Script& /*script*/) {
  CStringList names;
  CStringList dates;
  if (document.GetMultiPlateList(names, dates) && !names.IsEmpty()) {
    document.RemoveRQPlate(names.GetHead());
  }
}

void copy(Vex2FileManager& document, Script& /*script*/) {
  const Vex2FileManager other(document);
  document = other;
}

constexpr std::array<Edit, 15> kEdits = {
    replaceSettings, setSingleSettings, setParts,      replaceProgram, replaceWells,
    takeWells,       appendDetector,    takeDetectors, changeDyes,     replaceCalibration,
    fillFrames,      dropBlock,         changeHeader,  addPlate,       dropPlate};

// Changes the file in place. Whatever the file contains, each operation returns a status, and the
// file can still be opened.
void editInPlace(Vex2FileManager& document, Script& script) {
  Vex2BGC background;
  Vex2AcquisitionData data;
  switch (script.Byte() % 8) {
    case 0:
      std::ignore = document.ReplaceBackground(kDocument, &background);
      break;
    case 1:
      std::ignore = document.ReplaceAcquisitionDataBlock(kDocument, &data, DataRAWa);
      break;
    case 2:
      std::ignore = document.ReplaceAcquisitionDataBlock(kDocument, &data, DataREPn);
      break;
    case 3:
      std::ignore = document.AppendGlobalComplexComp(kDocument, nullptr);
      break;
    case 4:
      std::ignore = document.AppendDetectorListToFile(kDocument);
      break;
    case 5:
      std::ignore = document.SetAcquisitionStatus(kDocument, "DONE");
      break;
    case 6:
      std::ignore = document.AppendBackground(kDocument, &background);
      break;
    default:
      std::ignore = document.AppendRequiredDyeListToFile(kDocument);
      break;
  }
  Vex2FileManager again;
  Read(again, kDocument);
}

}  // namespace
}  // namespace vex2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vex2::fuzz;
  auto& files = NewFiles();
  Script input(data, size);
  const std::string edits = input.Text();
  files.Put(kDocument, DocumentOf(input.Rest()));
  Vex2FileManager document;
  Read(document, kDocument);
  if (IsTooLarge(document)) return 0;
  Script script(reinterpret_cast<const std::uint8_t*>(edits.data()), edits.size());
  for (int left = 8; left > 0 && !script.IsOver(); --left) {
    const std::size_t choice = script.Byte() % (kEdits.size() + 2);
    if (choice < kEdits.size()) {
      kEdits.at(choice)(document, script);
    } else if (choice == kEdits.size()) {
      copy(document, script);
    } else {
      editInPlace(document, script);
    }
  }
  RequireKept(document);
  std::ignore = document.SaveSetupInfo(kSaved);
  std::ignore = document.SaveCalibrationInfo(kSaved);
  return 0;
}
