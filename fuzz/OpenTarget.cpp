// Input: a document. Opens and reads it, and calls every query. Invariant: the content survives a
// save.

#include <array>
#include <tuple>

#include "fuzz/Content.h"
#include "fuzz/Target.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::fuzz {
namespace {

constexpr std::array<Vex2DataType, 5> kBlocks = {DataRAWa, DataREPr, DataREPn, DataREPd, DataREPt};

void askForSetup(const Vex2FileManager& document) {
  Vex2GlobalComplex settings;
  ThermocycleProgram program;
  Vex2PlateSetup setup;
  std::ignore = document.GetGlobalComplexInfo(&settings);
  std::ignore = document.GetThermocycleProgramInfo(&program);
  std::ignore = document.GetPlateSetupInfo(&setup);
  Vex2Detector* detectors = nullptr;
  CString* dyes = nullptr;
  std::ignore = document.GetDetectorListInfo(detectors);
  std::ignore = document.GetRequiredDyeListInfo(dyes);
  delete[] detectors;
  delete[] dyes;
  Vex2PureDye* pureDye = nullptr;
  Vex2BGC* background = nullptr;
  int has[2] = {};
  std::ignore = document.GetCalibrationInfo(pureDye, &has[0], background, &has[1]);
  delete pureDye;
  delete background;
  CString text;
  std::ignore = document.GetCalibrator(text);
  std::ignore = document.GetEndoControl(text);
  document.GetPassiveReference(text);
  CObList list;
  document.LoadDyeList(&list);
  while (!list.IsEmpty()) delete list.RemoveHead();
}

void askForWells(const Vex2FileManager& document) {
  bool* usage = nullptr;
  if (document.GetUsageArray(usage)) delete[] usage;
  int wells = 0;
  int most = 0;
  long size = 0;
  document.GetPlateDataInfo(wells, most);
  document.GetPlateInfo(size);
  document.FindPCRMeltingParams(nullptr, wells, most);
  KestorSpectrum spectrum(40);
  spectrum.well = 1;
  document.LoadSpectrum(&spectrum, nullptr);
}

void askForFrames(Vex2FileManager& document) {
  for (const auto type : kBlocks) {
    Vex2FrameData frame;
    const int count = document.GetDataFrameCount(type);
    Require(count >= 0, "a block has no fewer frames than none");
    for (const int index : {0, count - 1}) {
      const bool there = index >= 0 && index < count;
      Require((document.ReadDataFrame(index, &frame, type) == 0) == there, "each frame is there");
    }
  }
  // The frame count that is read from the file may differ from the one in memory, because lengths
  // may be false. All reporting blocks are searched in the same way, so one of them is enough.
  for (const auto type : {DataRAWa, DataREPt}) {
    Vex2FrameData frame;
    int stored = 0;
    std::ignore = document.GetDataFrameCount(kDocument, stored, type);
    if (stored == 0) continue;
    std::ignore = document.ReadDataFrame(kDocument, 0, &frame, type);
    std::ignore = document.ReadDataFrame(kDocument, stored - 1, &frame, type);
  }
}

void askForPlates(const Vex2FileManager& document) {
  CStringList names;
  CStringList dates;
  if (!document.GetMultiPlateList(names, dates)) return;
  Require(names.GetCount() == document.GetRQPlateCount(), "every plate has a name");
  for (POSITION at = names.GetHeadPosition(); at != nullptr;) {
    const CString name = names.GetNext(at);
    const Vex2FileManagerComponent* plate = document.GetSinglePlatePtrByName(name);
    document.GetDataFrameCountByName(name.GetString(), DataRAWa);
    if (plate != nullptr) askForSetup(*plate);
  }
}

}  // namespace
}  // namespace vex2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vex2::fuzz;
  auto& files = NewFiles();
  files.Put(kDocument, DocumentOf({data, data + size}));
  Vex2FileManager document;
  Read(document, kDocument);
  if (IsTooLarge(document)) return 0;
  RequireKept(document);
  const Content content = ContentOf(document);
  askForSetup(document);
  askForWells(document);
  askForFrames(document);
  askForPlates(document);
  const Content after = ContentOf(document);
  Require(content.header == after.header && content.components == after.components,
          "questions change nothing");
  return 0;
}
