// Input: the length of a script for a run, the script, and a document. Records a run that begins
// with the content of the document. If the script says so, records it in the file of the document
// itself. Cuts the file off at any byte, and resumes. Invariant: every committed frame, and
// everything else, is still there.

#include <tuple>
#include <vector>

#include "fuzz/Content.h"
#include "fuzz/Target.h"

namespace vex2::fuzz {
namespace {

using Frames = std::vector<std::vector<Vex2WellRecord>>;

constexpr std::uint64_t kStoredRecord = 80;
constexpr std::uint64_t kBlockHead = 8 + 18;

Vex2FrameData frameOf(std::uint16_t wells, Script& script) {
  Vex2FrameData frame(wells);
  for (std::uint16_t well = 0; well < wells; ++well) {
    frame.records[well].leading[0] = 1;
    frame.records[well].leading[4] = script.Short();
    frame.records[well].data[31] = static_cast<std::uint16_t>(script.Byte());
  }
  return frame;
}

// Requires that the file has all frames whose commit returned, and all other content.
void requireRun(const Content& setup, const Frames& frames) {
  Vex2FileManager document;
  int count = 0;
  Require(document.GetDataFrameCount(kSaved, count, DataRAWa) == 0, "the run can be asked");
  Require(count == static_cast<int>(frames.size()), "the file counts the frames");
  Vex2FrameData frame;
  for (int index = 0; index < count; ++index) {
    const auto& expected = frames[static_cast<std::size_t>(index)];
    Require(document.ReadDataFrame(kSaved, index, &frame, DataRAWa) == 0, "a frame can be read");
    Require(frame.wellCount == expected.size() &&
                std::equal(expected.begin(), expected.end(), frame.records),
            "a frame is what was committed");
  }
  Read(document, kSaved);
  const Content content = ContentOf(document);
  Require(content.header == setup.header || !frames.empty(), "the header is what it was");
  Require(
      content.components.size() >= setup.components.size() &&
          std::equal(setup.components.begin(), setup.components.end(), content.components.begin()),
      "the setup is what it was");
}

class Run {
 public:
  Run(Vex2FileManager& document, std::uint16_t wells) : wells_(wells) {
    // A document can have several data blocks. If one of them stayed, the frames would go into it,
    // or be dropped if it has no wells.
    for (int before = -1; before != document.GetAllComponentCount();) {
      before = document.GetAllComponentCount();
      document.RemoveAcquisitionDataBlock(DataRAWa);
    }
    Vex2HeaderData header = document.GetHeaderData();
    header.acquisitionDataOffset = 0;
    document.SetHeaderData(header);
  }

  void Append(Vex2FileManager& document, Script& script) {
    const Vex2FrameData frame = frameOf(wells_, script);
    const std::size_t before = lengthNow();
    const int status = document.AppendAcquisitionDataFrame(kSaved, &frame, DataRAWa);
    if (status != 0) {
      Require(files().HasRefused(), "a commit fails only where the disk is full");
      Require(lengthNow() == before, "a commit that fails leaves the length");
      isOver_ = true;
      return;
    }
    frames_.emplace_back(frame.records, frame.records + wells_);
    Require(lengthNow() == before + bytesOf(frames_.size() - 1), "a commit adds what it must");
  }

  /// Adds uncommitted bytes or cuts the file off within the last frame, and resumes like a
  /// recorder: after the committed frames.
  void Tear(Vex2FileManager& document, Script& script) {
    if (frames_.empty()) return;
    test::Bytes bytes = files().Content(kSaved);
    const std::size_t whole = bytes.size();
    bytes.resize(whole + script.Short() % (kStoredRecord * wells_), 0xA5);
    files().Put(kSaved, bytes);
    Vex2FileManager torn;
    Read(torn, kSaved);
    Require(torn.GetDataFrameCount(DataRAWa) == static_cast<int>(frames_.size()),
            "what a torn frame leaves is no frame");
    bytes.resize(whole);
    files().Put(kSaved, bytes);
    std::ignore = document.ReadFromFile(kSaved);
  }

  const Frames& Committed() const { return frames_; }
  bool IsOver() const { return isOver_; }

 private:
  static test::MemoryFiles& files() { return static_cast<test::MemoryFiles&>(CurrentFileSystem()); }
  static std::size_t lengthNow() { return files().Content(kSaved).size(); }
  std::uint64_t bytesOf(std::size_t index) const {
    return kStoredRecord * wells_ + (index == 0 ? kBlockHead + 2U * wells_ : 0);
  }

  std::uint16_t wells_;
  Frames frames_;
  bool isOver_ = false;
};

void recordBehind(Vex2FileManager& document, Script& script) {
  Run run(document, static_cast<std::uint16_t>(1 + script.Byte() % 4));
  if (document.IsRQS() || !RequireKept(document)) return;
  Vex2FileManager saved;
  Read(saved, kSaved);
  const bool isWhole = saved.GetAllComponentCount() == document.GetAllComponentCount();
  if (!isWhole || !CanBeFollowed(document, saved)) return;
  const Content setup = ContentOf(saved);
  while (!script.IsOver() && !run.IsOver()) {
    if (script.Byte() % 4 == 3) {
      run.Tear(document, script);
    } else {
      run.Append(document, script);
    }
  }
  requireRun(setup, run.Committed());
}

void recordInto(Vex2FileManager& document, Script& script) {
  auto& files = static_cast<test::MemoryFiles&>(CurrentFileSystem());
  while (!script.IsOver()) {
    const Vex2FrameData frame = frameOf(static_cast<std::uint16_t>(script.Byte() % 3), script);
    const std::size_t before = files.Content(kDocument).size();
    const int status = document.AppendAcquisitionDataFrame(kDocument, &frame, DataRAWa);
    Require(status == 0 || files.Content(kDocument).size() == before,
            "a commit that fails leaves the length");
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
  const std::string frames = input.Text(input.Byte() % 64);
  files.Put(kDocument, DocumentOf(input.Rest()));
  Vex2FileManager document;
  Read(document, kDocument);
  if (IsTooLarge(document)) return 0;
  Script script(reinterpret_cast<const std::uint8_t*>(frames.data()), frames.size());
  if (script.Byte() % 2 == 0) {
    recordBehind(document, script);
  } else {
    recordInto(document, script);
  }
  return 0;
}
