#include <fmt/core.h>

#include <algorithm>
#include <array>

#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "lab/model/DataBlock.h"
#include "lab/recover/RecoverPass.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

std::vector<std::uint8_t> madeHead(const RecoverBlock& block) {
  std::vector<std::uint8_t> bytes(block.tag.begin(), block.tag.end());
  const auto add = [&](std::span<const std::uint8_t> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
  };
  add(LongBytes(static_cast<std::uint32_t>(kBlockFixedSize + 2U * block.wells +
                                           block.frames * block.FrameSize())));
  add(ShortBytes(2));
  add(ShortBytes(kTimeBlockSize));
  bytes.insert(bytes.end(), block.times.begin(), block.times.end());
  add(ShortBytes(block.wells));
  for (const std::uint16_t number : block.numbers) add(ShortBytes(number));
  return bytes;
}

}  // namespace

void RecoverPass::lose(std::uint64_t from, std::uint64_t to, const std::string& what) {
  if (from < to) report_.Lose(from, to - from, what);
}

// Handles the bytes from `offset`, where no record begins, to the next record. Returns the offset
// of that record.
std::uint64_t RecoverPass::passGap(std::uint64_t offset) {
  tree_.Settle(offset, "", false);
  const std::uint64_t next = FindHead(source_, offset + 1, source_.Size()).value_or(source_.Size());
  // If the end of the open lists is known, a data block can begin only after that end.
  const std::uint64_t end = tree_.OutermostEnd();
  const std::uint64_t from = end > offset && end < next ? end : offset;
  afterLoss_ = true;
  if (end <= offset || end < next) {
    const BlockSearch search{from, next, true, likelyWellCounts(next)};
    if (auto block = FindLostBlock(source_, search))
      return keepFound(std::move(*block), offset, next);
  }
  constexpr std::uint64_t kPlateEnd = 12;
  if (next >= offset + kPlateEnd &&
      (isPlateEnd(next - kPlateEnd) || isRestOfPlateEnd(next - kPlateEnd))) {
    lose(offset, next - kPlateEnd, "bytes that are not a whole record");
    return keepPlateEnd(next - kPlateEnd);
  }
  const bool isRecord = next - offset >= kRecordHeadSize;
  if (isRecord && tree_.IsAtTop()) ++report_.lostRecords;
  lose(offset, next, isRecord ? "bytes that are not a whole record" : "too few bytes for a record");
  if (next < source_.Size()) {
    const auto bytes = source_.View(next, kTagLength);
    const std::string tag(bytes.begin(), bytes.begin() + kTagLength);
    tree_.Settle(next, tag, true);
    fillCells(next, tag == TagOf(Kind::kCell));
  }
  return next;
}

// Adds empty cells for lost ones. Cells belong to wells by their order, so the cells after the lost
// ones would otherwise belong to other wells.
void RecoverPass::fillCells(std::uint64_t offset, bool isCell) {
  const std::uint64_t missing = tree_.Missing();
  if (tree_.OpenTag() != TagOf(Kind::kPlateSetup) || missing == 0) return;
  constexpr std::uint64_t kMostHeads = 100000;
  std::uint64_t left = isCell ? 0 : 1;
  std::uint64_t at = offset;
  for (std::uint64_t i = 0; i < kMostHeads && at < tree_.OpenEnd(); ++i) {
    const auto head = HeadAt(source_, at);
    if (!head) return;
    if (head->Tag() == TagOf(Kind::kCell)) ++left;
    at = head->next;
  }
  if (left < missing) tree_.AddEmptyCells(offset, missing - left);
}

std::uint64_t RecoverPass::keepFound(RecoverBlock block, std::uint64_t from, std::uint64_t to) {
  if (block.tag.empty()) {
    block.tag = likelyTag(block, from);
    block.guesses.emplace_back(fmt::format("the tag {}", InQuotes(block.tag)));
  }
  if (block.numbers.empty() && !block.lengthAgrees) {
    block.numbers = likelyNumbers(block.wells);
    block.guesses.emplace_back("the well numbers");
  } else if (block.numbers.empty()) {
    block.numbers = ReadWellNumbers(source_, block.firstFrame - 2U * block.wells, block.wells);
  }
  tree_.Settle(block.offset, block.tag, true);
  afterLoss_ = true;
  makeRoom(block.offset, block.tag);
  if (block.offset > from) {
    ++report_.lostRecords;
    lose(from, std::min(block.offset, block.firstFrame), "bytes that are not a whole record");
  }
  const std::uint64_t written = tree_.Position();
  tree_.Append(madeHead(block));
  tree_.Copy(block.firstFrame, block.End());
  ++report_.records;
  report_.frames += block.frames;
  ++report_.madeHeads;
  report_.Correct(block.offset,
                  fmt::format("the head of the data block {} was damaged; {} of {} found again{}",
                              InQuotes(block.tag), Counted(block.frames, "frame"),
                              Counted(block.wells, "well"), GuessText(block.guesses)));
  if (tree_.Depth() == 0) {
    positions_[block.tag] = {block.offset, block.End(), written, tree_.Position()};
  }
  note(block);
  if (block.End() < to) {
    ++report_.lostFrames;
    lose(block.End(), to, "part of a frame");
  }
  afterLoss_ = true;
  return to;
}

// Copies a block whose numbers agree: all of its frames in the file, and whole frames after its
// declared end that a recorder wrote.
std::uint64_t RecoverPass::keepBlock(RecoverBlock block) {
  makeRoom(block.offset, block.tag);
  const CommittedFrames committed = FindCommittedFrames(block.Range(source_.Size()));
  const std::uint64_t there = committed.count;
  const std::uint64_t behind = there == block.frames ? framesBehind(block, committed) : 0;
  const std::uint64_t end = committed.end + behind * block.FrameSize();
  const std::uint64_t written = tree_.Position();
  tree_.Copy(block.offset, end);
  if (there + behind != block.frames) {
    const std::uint64_t change = (there + behind - block.frames) * block.FrameSize();
    tree_.Patch(written + 4, LongBytes(static_cast<std::uint32_t>(block.length + change)));
  }
  if (behind > 0) {
    report_.Correct(block.End(),
                    fmt::format("{} after the declared length of the data block {} added to it",
                                Counted(behind, "whole frame"), InQuotes(block.tag)));
  }
  ++report_.records;
  report_.frames += there + behind;
  if (tree_.Depth() == 0) {
    positions_[block.tag] = {block.offset, block.End(), written, tree_.Position()};
  }
  if (block.wells > 0 && block.version >= 2) {
    block.numbers = ReadWellNumbers(source_, block.firstFrame - 2U * block.wells, block.wells);
    note(block);
  }
  if (there == block.frames) return end;
  report_.lostFrames += block.frames - there;
  lose(end, source_.Size(), "part of a frame: the file ends in it");
  if (end == source_.Size()) {
    report_.Correct(
        end, fmt::format("the file ends after {} of {}", there, Counted(block.frames, "frame")));
  }
  return source_.Size();
}

std::uint64_t RecoverPass::framesBehind(const RecoverBlock& block,
                                        const CommittedFrames& committed) {
  const std::uint64_t end = committed.end;
  if (committed.inFile <= committed.count || IsBoundary(source_, end) ||
      FindHead(source_, end + 1, source_.Size())) {
    return 0;
  }
  auto marker = MarkerOf(source_, end - (block.frames > 0 ? block.FrameSize() : 0), block.wells);
  if (!marker && block.frames > 0) marker = MarkerOf(source_, block.firstFrame, block.wells);
  if (!marker) return 0;
  return CountPlausibleFrames(source_, end, block.wells, committed.inFile - committed.count,
                              marker);
}

void RecoverPass::note(const RecoverBlock& block) {
  constexpr std::size_t kMostKinds = 64;
  if (block.numbers.empty() || numbers_.size() >= kMostKinds) return;
  numbers_[block.wells] = block.numbers;
}

// Likely numbers of wells for a lost block: those of the blocks before and after it, and of the
// plate.
std::vector<std::uint16_t> RecoverPass::likelyWellCounts(std::uint64_t from) {
  constexpr int kLookedAt = 48;
  std::vector<std::uint16_t> counts;
  const auto add = [&](std::uint16_t count) {
    if (count > 0 && std::find(counts.begin(), counts.end(), count) == counts.end()) {
      counts.push_back(count);
    }
  };
  for (const auto& [count, numbers] : numbers_) add(count);
  for (int i = 0; i < kLookedAt; ++i) {
    const auto head = HeadAt(source_, from);
    if (!head) break;
    if (head->kind->layout == BodyLayout::kData && head->length > 0) {
      add(BlockAt(source_, from)->wells);
    }
    from = head->next;
  }
  const auto& header = tree_.IsInPlate() ? plateHeader_ : header_;
  add(static_cast<std::uint16_t>(UsedWells(header).size()));
  add(WellsByShape(header));
  add(96);
  add(384);
  return counts;
}

std::vector<std::uint16_t> RecoverPass::likelyNumbers(std::uint16_t wells) const {
  const auto known = numbers_.find(wells);
  if (known != numbers_.end()) return known->second;
  auto used = UsedWells(tree_.IsInPlate() ? plateHeader_ : header_);
  if (used.size() == wells) return used;
  used.clear();
  for (unsigned number = 1; number <= wells; ++number) {
    used.push_back(static_cast<std::uint16_t>(number));
  }
  return used;
}

// The likely tag of a block whose tag is lost. If the plate has no raw readings yet, it is their
// tag. Otherwise it is the tag of the reporting block that is most like the damaged bytes.
std::string RecoverPass::likelyTag(const RecoverBlock& block, std::uint64_t from) {
  std::string best(kDataBlockTags.front());
  int most = -1;
  for (const std::string_view tag : kDataBlockTags) {
    if (tree_.TagsAtTop().count(std::string(tag)) > 0) continue;
    const int alike = Likeness(source_, std::max(block.offset, from), tag);
    if (alike <= most) continue;
    most = alike;
    best = tag;
  }
  return best;
}

}  // namespace vex2::lab
