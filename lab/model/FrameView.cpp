#include "lab/model/FrameView.h"

#include <fmt/core.h>

#include <algorithm>
#include <new>
#include <utility>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "lab/model/DataBlock.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/PlateLayout.h"
#include "lab/model/RecordValue.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

/// Finds the log among the run-wide settings, for blocks that are read without their document.
struct LogFinder final : RecordVisitor {
  void Begin(const FileRecord& record, CFile& file) override {
    if (record.depth == 1) {
      isSettings = record.Tag() == TagOf(Kind::kGlobal) && !std::exchange(isFound, true);
    }
    if (!isSettings || record.depth != 2 || record.Tag() != TagOf(Kind::kLog)) return;
    const RecordValue value = ReadRecordValue(file, record);
    if (const auto* text = std::get_if<std::string>(&value)) log = *text;
  }
  bool isFound = false;
  bool isSettings = false;
  std::string log;  ///< UTF-8
};

std::string logOf(DocumentFile& file) {
  LogFinder finder;
  static_cast<void>(WalkRecords(file, finder));
  return finder.log;
}

/// Finds the first top-level record with a tag.
struct Finder final : RecordVisitor {
  explicit Finder(std::string_view wanted) : tag(wanted) {}
  void Begin(const FileRecord& record, CFile& /*file*/) override {
    if (!found && record.depth == 1 && record.Tag() == tag) found = record;
  }
  std::string_view tag;
  std::optional<FileRecord> found;
};

// Uses the header's offset of the raw readings if it points to them. After a save of the whole
// document it does not.
std::optional<FileRecord> recordAt(CFile& file, std::uint64_t offset, std::string_view tag) {
  if (offset == 0) return std::nullopt;
  FileRecord record;
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  return ReadRecordHead(file, record) && record.Tag() == tag ? std::optional(record) : std::nullopt;
}

std::optional<FileRecord> findBlock(DocumentFile& file, std::string_view tag) {
  if (tag == TagOf(Kind::kRawData)) {
    const auto record = recordAt(file, file.GetHeaderData().acquisitionDataOffset, tag);
    if (record) return record;
  }
  Finder finder(tag);
  static_cast<void>(WalkRecords(file, finder));
  return finder.found;
}

}  // namespace

std::string FrameView::NameOf(std::size_t position) const {
  return WellName(wells[position], columns);
}

std::optional<RunReading> FrameView::ReadingOf(std::size_t position) const {
  return recorded.Read(frame.records[position], index);
}

bool FrameView::IsKnown() const {
  if (!recorded.Log()) return false;
  for (std::size_t i = 0; i < wells.size(); ++i) {
    if (frame.records[i] != Vex2WellRecord() && !ReadingOf(i)) return false;
  }
  return true;
}

std::size_t FrameView::DataColumns() const {
  std::size_t count = 1;
  for (std::size_t well = 0; well < wells.size(); ++well) {
    for (std::size_t i = count; i < kStoredDataValues; ++i) {
      if (frame.records[well].data[i] != 0) count = i + 1;
    }
  }
  return count;
}

std::vector<Document::Plate> FrameQuery::PlatesWithFrame(
    const Document& document, std::vector<Document::Plate> plates) const {
  std::erase_if(plates, [&](const auto& plate) { return FindBlock(plate, block_) == nullptr; });
  if (plates.empty()) {
    document.RequireWhole("");
    refuseBlock();
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

FrameView FrameQuery::ViewOf(const Document::Plate& plate) const {
  const AcquisitionDataComp& block = *FindBlock(plate, block_);
  FrameView view{.plate = ToUtf8(plate.name),
                 .isEmbedded = plate.isEmbedded,
                 .rows = static_cast<std::uint32_t>(plate.content->GetHeaderRows()),
                 .columns = static_cast<std::uint32_t>(plate.content->GetHeaderCols()),
                 .wells = {block.GetWellNumbers().begin(), block.GetWellNumbers().end()},
                 .frameCount = static_cast<std::uint64_t>(block.GetFrameCount()),
                 .frame = {},
                 .recorded = {*plate.content, block_},
                 .index = static_cast<std::uint64_t>(index_)};
  const auto index = static_cast<int>(index_);
  if (plate.content->ReadDataFrame(index, &view.frame, BlockType(block_)) != kSuccess) {
    throw std::bad_alloc();
  }
  return view;
}

FrameView FrameQuery::Read(DocumentFile& file) const {
  const auto record = findBlock(file, block_);
  if (!record) refuseBlock();
  auto head = ReadStoredBlock(file, *record);
  if (!head) {
    throw Error(ErrorCode::kDocument, path_,
                fmt::format("the data block \"{}\" is cut short", block_), record->offset);
  }
  requireIndex(head->frameCount);
  FrameView view{.plate = {},
                 .isEmbedded = false,
                 .rows = static_cast<std::uint32_t>(file.GetHeaderRows()),
                 .columns = static_cast<std::uint32_t>(file.GetHeaderCols()),
                 .wells = std::move(head->wells),
                 .frameCount = head->frameCount,
                 .frame = {},
                 .recorded = {logOf(file), block_},
                 .index = static_cast<std::uint64_t>(index_)};
  readRecords(file, *record, *head, view);
  return view;
}

void FrameQuery::requireIndex(std::uint64_t count) const {
  if (index_ >= 0 && static_cast<std::uint64_t>(index_) < count) return;
  throw Error(
      ErrorCode::kNoSuchFrame, path_,
      count == 0
          ? fmt::format("there is no frame {}; the data block \"{}\" has 0 frames", index_, block_)
          : fmt::format("there is no frame {}; the data block \"{}\" has {}, 0 to {}", index_,
                        block_, Counted(count, "frame"), count - 1));
}

void FrameQuery::refuseBlock() const {
  throw Error(ErrorCode::kDocument, path_, fmt::format("it has no data block \"{}\"", block_));
}

void FrameQuery::readRecords(DocumentFile& file, const FileRecord& record, const StoredBlock& head,
                             FrameView& view) const {
  // A frame of another layout can be read only after the whole document has been read.
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
  throw Error(ErrorCode::kDocument, path_,
              fmt::format("frame {} of the data block \"{}\" is cut short", view.index, block_),
              head.firstFrame + view.index * head.frameSize);
}

}  // namespace vex2::lab
