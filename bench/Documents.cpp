#include "bench/Documents.h"

#include <numeric>
#include <stdexcept>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/CGlobalComp.h"

namespace vex2::bench {
namespace {

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

int SmallRecordsPerList() {
  return makeSettings().GetChildCount();
}

}  // namespace vex2::bench
