#include "lab/check/RepairPlan.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <limits>

#include "lab/Text.h"
#include "lab/check/RecordCheck.h"
#include "lab/check/UncommittedCheck.h"
#include "lab/model/BigEndian.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::uint64_t kLengthAt = 4;

class Planner {
 public:
  explicit Planner(const std::string& path) : document_(path) {
    file_.OpenDocument(path);
    header_ = ReadHeaderFields(file_, 0);
    plan_.size = document_.Size();
  }

  RepairPlan Plan() {
    Findings unused;
    RecordCheck records(document_, header_, unused);
    const WalkEnd end = WalkRecords(file_, records);
    repairEnd();
    const bool isWalked =
        !end.fault || end.fault->offset >= document_.RecordsEnd() || plan_.newSize;
    if (isWalked && !records.HasGaps()) repairLengths(records.WrongLengths());
    repairProgram(records.Positioned());
    repairRawData();
    return std::move(plan_);
  }

 private:
  void patch(std::uint64_t offset, std::uint64_t before, std::uint64_t after, std::string what) {
    if (before == after || after > std::numeric_limits<std::uint32_t>::max()) return;
    plan_.patches.push_back({offset, static_cast<std::uint32_t>(before),
                             static_cast<std::uint32_t>(after), std::move(what)});
  }

  void cutAt(std::uint64_t offset, std::string_view what) {
    if (offset >= plan_.size) return;
    plan_.newSize = offset;
    plan_.cut = fmt::format("{} {}", Counted(plan_.size - offset, "byte"), what);
  }

  void repairEnd() {
    const auto& records = document_.Records();
    const bool endsInBlock = !records.empty() && records.back().tag == TagOf(Kind::kRawData);
    if (document_.Fault() && !(endsInBlock && document_.Fault()->offset == records.back().offset)) {
      return;
    }
    if (const auto block = FindLastBlock(file_, document_)) return repairBlock(*block);
    const std::uint64_t from =
        document_.Fault() ? document_.Fault()->offset : document_.RecordsEnd();
    const bool isFirstCommit =
        document_.Fault() ? isFirstCommitAt(from) : EndsInFirstCommit(file_, document_, header_);
    if (isFirstCommit) return cutAt(from, "of a first commit that was interrupted");
    if (document_.Fault() || plan_.size - from >= kRecordHeadSize) return;
    cutAt(from, "after the last record, too few for another record");
  }

  bool isFirstCommitAt(std::uint64_t offset) {
    return header_.AwaitsFirstCommit() && IsFirstCommit(file_, offset, header_.Wells());
  }

  void repairBlock(const LastBlock& block) {
    const StoredBlock& head = block.head;
    if (head.version < 2 || head.timeBlockSize != kTimeBlockSize) return;
    const FrameRange range = block.Range(plan_.size);
    const CommittedFrames committed = FindCommittedFrames(range);
    std::uint64_t frames = committed.count;
    // Also count the frames after the declared end in which each well has a reading.
    while (frames < committed.inFile && isFilled(head, frames)) ++frames;
    if (frames == 0 && isFirstCommitAt(block.record.offset)) {
      return cutAt(block.record.offset, "of a first commit that was interrupted");
    }
    const std::uint64_t end = head.firstFrame + frames * head.frameSize;
    // An interrupted commit leaves at most one frame of uncommitted bytes. More bytes than that may
    // be something else, so they are not cut off.
    if (UncommittedBehind(range, end) == Uncommitted::kMore) return;
    patch(block.record.offset + kLengthAt, block.record.length,
          end - block.record.offset - kRecordHeadSize,
          fmt::format("the length of RAWa, for {}", Counted(frames, "whole frame")));
    const bool wasCounted = head.firstFrame + (frames + 1) * head.frameSize <= range.countedEnd;
    cutAt(end,
          wasCounted ? "of a frame whose rest is missing" : "of a frame that was not committed");
  }

  bool isFilled(const StoredBlock& head, std::uint64_t frame) {
    const std::uint64_t begin = head.firstFrame + frame * head.frameSize;
    for (std::uint64_t well = 0; well < head.wells.size(); ++well) {
      file_.Seek(static_cast<std::int64_t>(begin + well * kStoredRecordSize), CFile::begin);
      if (ReadShort(file_).value_or(0) == 0) return false;
    }
    return true;
  }

  void repairLengths(const std::vector<WrongLength>& lengths) {
    for (const WrongLength& wrong : lengths) {
      patch(wrong.offset + kLengthAt, wrong.declared, wrong.held,
            fmt::format("the length of {}, to match what it holds", wrong.name));
    }
  }

  void repairProgram(const std::vector<PositionedRecord>& records) {
    const std::uint32_t position = header_.programPosition;
    const PositionedRecord* first = nullptr;
    for (const PositionedRecord& record : records) {
      if (record.tag != TagOf(Kind::kProgram)) continue;
      if (first == nullptr) first = &record;
      if (record.offset == position || record.end == position) return;
    }
    if (first == nullptr || position == 0) return;
    patch(HeaderLayout::kProgramOffsetAt, position, first->offset,
          "the header's offset of TPro, to lead to its tag");
  }

  // The end of a record after its length is repaired. If the header's offset pointed to the old
  // end, it does not point to this one.
  std::uint64_t endOf(const Document::Record& record) const {
    std::uint64_t length = record.length;
    for (const RepairPlan::Patch& patch : plan_.patches) {
      if (patch.offset == record.offset + kLengthAt) length = patch.after;
    }
    return record.offset + kRecordHeadSize + length;
  }

  void repairRawData() {
    if (document_.IsStudy() || (document_.Fault() && plan_.IsEmpty())) return;
    const std::uint32_t position = header_.rawDataPosition;
    const auto& records = document_.Records();
    const auto isBlock = [](const auto& record) { return record.tag == TagOf(Kind::kRawData); };
    const auto block = std::find_if(records.begin(), records.end(), isBlock);
    if (block == records.end() || block->offset >= plan_.newSize.value_or(plan_.size)) {
      // The bytes after the last record may be the block, with a damaged head.
      if (document_.RecordsEnd() + kRecordHeadSize <= plan_.newSize.value_or(plan_.size)) return;
      return patch(HeaderLayout::kRawDataOffsetAt, position, 0,
                   "the header's offset of RAWa, since there is no such record");
    }
    const auto leads = [&](const auto& record) {
      return record.offset == position || endOf(record) == position;
    };
    // If the run is not in progress, the offset is in order if it is 0, or if it is the end of the
    // block, where a save of the whole document left it.
    const bool isFine =
        !header_.IsRunning() &&
        (position == 0 || std::any_of(records.begin(), records.end(), [&](const auto& record) {
           return isBlock(record) && leads(record);
         }));
    if (isFine) return;
    const bool isAtTag = std::any_of(records.begin(), records.end(), [&](const auto& record) {
      return isBlock(record) && record.offset == position;
    });
    if (isAtTag) return;
    patch(HeaderLayout::kRawDataOffsetAt, position, block->offset,
          "the header's offset of RAWa, to lead to its tag");
  }

  const Document document_;
  DocumentFile file_;
  HeaderFields header_;
  RepairPlan plan_;
};

}  // namespace

RepairPlan PlanRepair(const std::string& path) {
  return Planner(path).Plan();
}

}  // namespace vex2::lab
