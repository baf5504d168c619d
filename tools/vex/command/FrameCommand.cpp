#include <algorithm>
#include <iostream>
#include <new>

#include "tools/vex/command/Command.h"
#include "tools/vex/document/DataBlock.h"
#include "tools/vex/document/DocumentPlates.h"
#include "tools/vex/document/FileLayout.h"
#include "tools/vex/document/RunLog.h"
#include "tools/vex/document/StoredValues.h"
#include "tools/vex/setup/PlateLayout.h"
#include "tools/vex/text/Json.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

/// One frame with what is needed to show it.
struct FrameView {
  std::string plate;          ///< of a study
  bool isEmbedded = false;    ///< in a study
  std::uint32_t columns = 0;  ///< of the plate
  std::vector<std::uint16_t> wells;
  std::uint64_t frameCount = 0;
  Vex2FrameData frame;

  std::string Name(std::size_t position) const { return WellName(wells[position], columns); }
};

/// The first record of the document itself with a tag.
struct Finder final : RecordVisitor {
  explicit Finder(std::string_view wanted) : tag(wanted) {}
  void Begin(const FileRecord& record, CFile& /*file*/) override {
    if (!found && record.depth == 1 && record.Tag() == tag) found = record;
  }
  std::string_view tag;
  std::optional<FileRecord> found;
};

// The header says where the raw data are, but a document that was saved whole says it wrongly.
std::optional<FileRecord> recordAt(CFile& file, std::uint64_t offset, std::string_view tag) {
  if (offset == 0) return std::nullopt;
  FileRecord record;
  record.offset = offset;
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  file.Read(record.tagBytes.data(), record.tagBytes.size());
  const auto length = ReadLong(file);
  if (!length || record.Tag() != tag) return std::nullopt;
  record.length = *length;
  record.kind = &KindOf(tag);
  return record;
}

std::optional<FileRecord> findBlock(DocumentFile& file, std::string_view tag) {
  if (tag == "RAWa") {
    const auto record = recordAt(file, file.GetHeaderData().acquisitionDataOffset, tag);
    if (record) return record;
  }
  Finder finder(tag);
  static_cast<void>(WalkRecords(file, finder));
  return finder.found;
}

void printTable(const FrameView& view) {
  const auto dataColumns = [&] {
    std::size_t last = 1;
    for (std::size_t well = 0; well < view.wells.size(); ++well) {
      for (std::size_t i = last; i < kStoredData; ++i) {
        if (view.frame.records[well].data[i] != 0) last = i + 1;
      }
    }
    return last;
  }();
  constexpr std::size_t kValueWidth = 6;
  const std::size_t width = Terminal::Out().TextWidth();
  std::string head = "well  ";
  for (int i = 0; i < 8; ++i) head += PadLeft("l" + std::to_string(i), kValueWidth);
  for (std::size_t i = 0; i < dataColumns; ++i) {
    head += PadLeft("d" + std::to_string(i), kValueWidth);
  }
  std::cout << Terminal::Out().Styled(CutTo(head, width), Terminal::Style::kDim) << '\n';
  for (std::size_t well = 0; well < view.wells.size(); ++well) {
    const Vex2WellRecord& record = view.frame.records[well];
    std::string line = PadRight(view.Name(well), kValueWidth);
    for (const std::uint16_t value : record.leading) {
      line += PadLeft(std::to_string(value), kValueWidth);
    }
    for (std::size_t i = 0; i < dataColumns; ++i) {
      line += PadLeft(std::to_string(record.data[i]), kValueWidth);
    }
    std::cout << CutTo(line, width) << '\n';
  }
}

class FrameCommand final : public Command {
 public:
  FrameCommand()
      : Command({"frame", "Show one frame of a data block, read straight from the file.",
                 "vex frame run.vex 0\nvex frame run.vex 39 --block REPr --json"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("N", index_, "The frame, from 0").Require().Show("");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    options.AddFlag("--json", json_, "For programs: an object; one a line for each plate");
  }

  ExitCode Run() override {
    DocumentFile file;
    file.OpenDocument(file_);
    static_cast<void>(file.ReadHeaderData(nullptr));
    if (file.IsRQS() || plate_.IsGiven()) {
      file.Close();
      const Document document(file_);
      for (const Document::Plate& plate : platesWithFrame(document)) show(readPlate(plate));
      document.RequireWhole("");
    } else {
      show(read(file));
    }
    return ExitCode::kDone;
  }

 private:
  void show(const FrameView& view) {
    if (json_) return printJson(view);
    if (shown_++ > 0) std::cout << '\n';
    std::cout << Printable(file_) << (view.isEmbedded ? ", plate " + Printable(view.plate) : "")
              << ": " << block_ << ", frame " << index_ << " of " << view.frameCount << ", "
              << Counted(view.wells.size(), "well") << '\n';
    printTable(view);
  }

  std::vector<Document::Plate> platesWithFrame(const Document& document) const {
    auto plates = plate_.Choose(document);
    std::erase_if(plates, [&](const auto& plate) { return FindBlock(plate, block_) == nullptr; });
    if (plates.empty()) {
      document.RequireWhole("");
      throw Error(ExitCode::kDocument, file_, "it has no data block \"" + block_ + "\"");
    }
    std::uint64_t most = 0;
    std::erase_if(plates, [&](const auto& plate) {
      const auto count = static_cast<std::uint64_t>(FindBlock(plate, block_)->GetFrameCount());
      most = std::max(most, count);
      return index_ < 0 || static_cast<std::uint64_t>(index_) >= count;
    });
    if (plates.empty()) requireIndex(most);
    return plates;
  }

  FrameView readPlate(const Document::Plate& plate) const {
    const AcquisitionDataComp& block = *FindBlock(plate, block_);
    FrameView view{.plate = ToUtf8(plate.name),
                   .isEmbedded = plate.isEmbedded,
                   .columns = static_cast<std::uint32_t>(plate.content->GetHeaderCols()),
                   .wells = {block.GetWellNumbers().begin(), block.GetWellNumbers().end()},
                   .frameCount = static_cast<std::uint64_t>(block.GetFrameCount()),
                   .frame = {}};
    const auto index = static_cast<int>(index_);
    if (plate.content->ReadDataFrame(index, &view.frame, BlockType(block_)) != kSuccess) {
      throw std::bad_alloc();
    }
    return view;
  }

  FrameView read(DocumentFile& file) const {
    const auto record = findBlock(file, block_);
    if (!record) throw Error(ExitCode::kDocument, file_, "it has no data block \"" + block_ + "\"");
    auto head = ReadDataBlockHead(file, *record);
    if (!head) {
      throw Error(ExitCode::kDocument, file_, "the data block \"" + block_ + "\" is cut short",
                  record->offset);
    }
    requireIndex(head->frameCount);
    FrameView view{.plate = {},
                   .isEmbedded = false,
                   .columns = static_cast<std::uint32_t>(file.GetHeaderCols()),
                   .wells = std::move(head->wells),
                   .frameCount = head->frameCount,
                   .frame = {}};
    readFrame(file, *record, *head, view);
    return view;
  }

  void requireIndex(std::uint64_t count) const {
    if (index_ >= 0 && static_cast<std::uint64_t>(index_) < count) return;
    throw Error(ExitCode::kUsage, file_,
                "there is no frame " + std::to_string(index_) + "; the data block \"" + block_ +
                    "\" has " + Counted(count, "frame") +
                    (count > 0 ? ", 0 to " + std::to_string(count - 1) : ""));
  }

  void readFrame(DocumentFile& file, const FileRecord& record, const DataBlockHead& head,
                 FrameView& view) const {
    // A block that is laid out differently is for the document's reader alone.
    const int index = static_cast<int>(index_);
    const bool isUsual = head.version >= 2 && head.timeBlockSize == kTimeBlockSize;
    int status = kSuccess;
    if (isUsual) {
      status = file.ReadFrameAt(index, view.frame, record.offset);
    } else {
      static_cast<void>(file.ReadComponentFile(nullptr));
      status = file.ReadDataFrame(index, &view.frame, BlockType(block_));
    }
    if (status == kSuccess && view.frame.wellCount == view.wells.size()) return;
    const auto number = static_cast<std::uint64_t>(index_);
    throw Error(
        ExitCode::kDocument, file_,
        "frame " + std::to_string(number) + " of the data block \"" + block_ + "\" is cut short",
        head.firstFrame + number * head.frameSize);
  }

  void printJson(const FrameView& view) const {
    ordered_json wells = ordered_json::array();
    for (std::size_t i = 0; i < view.wells.size(); ++i) {
      const Vex2WellRecord& record = view.frame.records[i];
      wells.push_back(
          {{"well", view.Name(i)},
           {"number", view.wells[i]},
           {"leading", record.leading},
           {"data", std::vector<std::uint16_t>(record.data, record.data + kStoredData)}});
    }
    ordered_json frame = {{"file", file_}};
    if (view.isEmbedded) frame["plate"] = view.plate;
    frame["block"] = block_;
    frame["frame"] = index_;
    frame["frames"] = view.frameCount;
    frame["wells"] = std::move(wells);
    std::cout << frame.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
  }

  std::string file_;
  std::string block_;
  std::int64_t index_ = 0;
  PlateOption plate_;
  bool json_ = false;
  int shown_ = 0;
};

}  // namespace

std::unique_ptr<Command> MakeFrameCommand() {
  return std::make_unique<FrameCommand>();
}

}  // namespace vex2::tool
