#include "bench/Documents.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/CGlobalComp.h"
#include "vex2/setup/CPlateSetupComp.h"

namespace vex2::bench {
namespace {

constexpr std::uint16_t kSetupWells = 384;
constexpr int kSetupDetectors = 4;

void require(int status, const std::string& path) {
  if (status != 0) throw std::runtime_error("cannot write " + path);
}

void writeHeader(Vex2FileManager& manager, const std::string& path) {
  require(manager.SaveToFile(path.c_str()), path);
}

Vex2FrameData makeFrame(std::uint16_t wells, int index) {
  Vex2FrameData frame(wells);
  auto value = static_cast<std::uint16_t>(index * 7919);
  for (std::uint16_t well = 0; well < wells; ++well) {
    Vex2WellRecord& record = frame.records[well];
    std::iota(std::begin(record.leading), std::end(record.leading), ++value);
    std::iota(std::begin(record.data), std::begin(record.data) + 32, ++value);
    record.leading[0] = 1;
  }
  return frame;
}

CGlobalComp makeSettings() {
  Vex2GlobalComplex info;
  const std::string comment = "a comment of ordinary length";
  const std::string reference = "ROX";
  info.SetComment(comment.data(), static_cast<std::uint32_t>(comment.size()));
  info.SetPassiveReference(reference.data(), static_cast<std::uint32_t>(reference.size()));
  return CGlobalComp(info);
}

}  // namespace

void MakeRun(const std::string& path, std::uint16_t wells, int frames) {
  Vex2FileManager manager;
  writeHeader(manager, path);
  std::vector<Vex2FrameData> data;
  data.reserve(static_cast<std::size_t>(frames));
  for (int index = 0; index < frames; ++index) data.push_back(makeFrame(wells, index));
  const Vex2AcquisitionData block{data.data(), frames};
  require(manager.ReplaceAcquisitionDataBlock(path.c_str(), &block, DataRAWa), path);
}

void MakeNested(const std::string& path, int lists) {
  Vex2FileManager manager;
  writeHeader(manager, path);
  CFile file;
  if (!file.Open(path.c_str(), CFile::modeReadWrite))
    throw std::runtime_error("cannot open " + path);
  file.SeekToEnd();
  CGlobalComp settings = makeSettings();
  for (int list = 0; list < lists; ++list) require(settings.Write(&file), path);
  file.Close();
}

void MakeSetups(const std::string& path, int setups) {
  Vex2FileManager manager;
  writeHeader(manager, path);
  Vex2PlateSetup setup;
  setup.Resize(kSetupWells);
  for (int index = 0; index < kSetupWells; ++index) {
    Vex2WellSetup& cell = setup.cells[index];
    const std::string name = "sample " + std::to_string(index);
    cell.SetName(name.data(), static_cast<std::int32_t>(name.size()));
    for (int detector = 0; detector < kSetupDetectors; ++detector) {
      auto used = std::make_unique<Vex2WellDetector>();
      const std::string target = "target " + std::to_string(detector);
      used->SetDetectorName(target.data(), static_cast<std::int32_t>(target.size()));
      used->SetTask("STND", 4);
      used->quantity = static_cast<float>(index);
      cell.detectors.AddTail(used.release());
    }
  }
  require(manager.ReplacePlateSetup(&setup), path);
  CFile file;
  if (!file.Open(path.c_str(), CFile::modeReadWrite))
    throw std::runtime_error("cannot open " + path);
  file.SeekToEnd();
  for (int i = 0; i < setups; ++i) require(manager.GetPlateSetupComp()->Write(&file), path);
  file.Close();
}

int RecordsPerSetup() {
  constexpr int kRecordsPerDetector = 5;  // the list and its four values
  return kSetupWells * (2 + kSetupDetectors * kRecordsPerDetector);
}

void MakeStudy(const std::string& path, int plates, int frames) {
  MakeRun(path, kSetupWells, frames);
  Vex2FileManager plate;
  require(plate.ReadFromFile(path.c_str()), path);
  Vex2FileManager study;
  Vex2HeaderData header = study.GetHeaderData();
  std::copy_n("RQSt", sizeof header.assayCode, header.assayCode);
  study.SetHeaderData(header);
  for (int index = 0; index < plates; ++index) {
    plate.SetFilePath(("/plates/" + std::to_string(index) + ".vex").c_str());
    if (!study.AddRQPlate(&plate, "")) throw std::runtime_error("cannot add a plate");
  }
  require(study.SaveToFile(path.c_str()), path);
}

int SmallRecordsPerList() {
  return makeSettings().GetChildCount();
}

}  // namespace vex2::bench
