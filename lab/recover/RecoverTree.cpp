#include "lab/recover/RecoverTree.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Text.h"
#include "lab/check/RecordPlaces.h"
#include "lab/model/BigEndian.h"
#include "lab/recover/RecoverHeader.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kCopied = 16 * 1024;
constexpr std::uint64_t kMostRecords = 65535;

}  // namespace

std::string InQuotes(std::string_view tag) {
  return fmt::format("\"{}\"", ToUtf8(tag));
}

void RecoverTree::Copy(std::uint64_t from, std::uint64_t to) {
  while (from < to) {
    const auto bytes = source_.View(from, kCopied);
    const std::size_t count = std::min<std::uint64_t>(bytes.size(), to - from);
    if (count == 0) return;
    out_.Write(bytes.data(), count);
    position_ += count;
    from += count;
  }
}

void RecoverTree::Append(const std::vector<std::uint8_t>& bytes) {
  out_.Write(bytes.data(), bytes.size());
  position_ += bytes.size();
}

void RecoverTree::Patch(std::uint64_t at, std::span<const std::uint8_t> bytes) {
  out_.Seek(static_cast<std::int64_t>(at), CFile::begin);
  out_.Write(bytes.data(), bytes.size());
  out_.Seek(static_cast<std::int64_t>(position_), CFile::begin);
}

void RecoverTree::Settle(std::uint64_t offset, std::string_view tag, bool afterLoss) {
  while (!open_.empty() && isComplete(open_.back(), offset, tag, afterLoss)) {
    closeOrEnd();
  }
}

std::string_view RecoverTree::tagAround(const List& list) const {
  const auto index = static_cast<std::size_t>(&list - open_.data());
  return index == 0 ? std::string_view() : std::string_view(open_[index - 1].tag);
}

bool RecoverTree::isComplete(const List& list, std::uint64_t offset, std::string_view tag,
                             bool afterLoss) const {
  if (list.seen >= kMostRecords && !list.isPlate) return true;
  if (list.isPlate) return isPlateOver(list, tag, afterLoss);
  if (list.isMade) {
    const bool isPastOuter = std::any_of(open_.begin(), open_.end(), [&](const List& outer) {
      return outer.isTrusted && outer.end <= offset;
    });
    return !tag.empty() && (isPastOuter || !StandsIn(list.tag, tag));
  }
  if (list.tag == TagOf(Kind::kPlates) && !tag.empty() && tag != TagOf(Kind::kPlate)) {
    return !afterLoss || list.seen >= list.count || !StandsIn(TagOf(Kind::kPlate), tag) ||
           tag == TagOf(Kind::kEndOfFile);
  }
  if (list.isTrusted && isEndPlausible(list, tag)) return offset >= list.end;
  return isCounted(list, offset, tag, afterLoss);
}

// Whether the next record agrees with the declared end of the list. It does not if the list still
// lacks records and this one belongs into it, or if the list is full and this one belongs only into
// the list around it.
bool RecoverTree::isEndPlausible(const List& list, std::string_view tag) const {
  if (tag.empty()) return true;
  const bool isAtHome = StandsIn(list.tag, tag);
  const bool isAtHomeAround = StandsIn(tagAround(list), tag);
  return list.seen < list.count ? !isAtHome || isAtHomeAround : isAtHome || !isAtHomeAround;
}

// Whether the plate has ended before a record with this tag. The end record of the plate is always
// part of it.
bool RecoverTree::isPlateOver(const List& plate, std::string_view tag, bool afterLoss) const {
  if (tag.empty() || tag == TagOf(Kind::kEndOfPlate)) return false;
  if (tag == TagOf(Kind::kPlate) || tag == TagOf(Kind::kEndOfFile) || tag == TagOf(Kind::kPlates))
    return true;
  if (!afterLoss) return false;
  const auto has = [&](std::string_view other) { return plate.tags.count(std::string(other)) > 0; };
  if (has(TagOf(Kind::kPlateDate)) || has(tag)) return true;
  // After the last plate, a study has records of its own.
  const auto index = static_cast<std::size_t>(&plate - open_.data());
  const bool isLast = index > 0 && open_[index - 1].seen >= open_[index - 1].count;
  return isLast && (tag == TagOf(Kind::kCalibrator) || tag == TagOf(Kind::kEndoControl) ||
                    tag == TagOf(Kind::kAnalysisType) || tag == TagOf(Kind::kConfidence));
}

// Whether a record with this tag belongs into one of the lists around `list`, or into the document
// itself.
bool RecoverTree::isAtHomeOutside(const List& list, std::string_view tag) const {
  return StandsIn("", tag) || std::any_of(open_.data(), &list, [&](const List& outer) {
           return StandsIn(outer.tag, tag);
         });
}

// Whether a list whose declared end cannot be trusted is complete, judged by its declared number of
// records.
bool RecoverTree::isCounted(const List& list, std::uint64_t offset, std::string_view tag,
                            bool afterLoss) const {
  const bool isFull = list.seen >= list.count;
  const bool isAtHome = StandsIn(list.tag, tag);
  const bool isAtHomeAround = StandsIn(tagAround(list), tag);
  if (isFull) return tag.empty() || !isAtHome || isAtHomeAround;
  // The file has no room for this many records.
  const bool isCountWrong = list.offset + kRecordHeadSize * list.count > source_.Size();
  if (!afterLoss && !isCountWrong && offset < list.end) return false;
  const bool isOthers = !isAtHome && isAtHomeOutside(list, tag);
  return isOthers || (afterLoss && offset >= list.end);
}

void RecoverTree::Wrap(std::uint64_t offset, std::string_view tag) {
  constexpr int kMostMade = 4;
  // In the list of plates, every other record belongs into a plate.
  if (OpenTag() == TagOf(Kind::kPlates) && tag != TagOf(Kind::kPlate))
    openMade(offset, TagOf(Kind::kPlate));
  const std::string here(OpenTag());
  if (StandsIn(here, tag)) return;
  std::vector<std::string_view> needed;
  // If a record can be in several lists, choose by the open list; at the top, by the record that
  // follows.
  const auto head = HeadAt(source_, offset);
  const auto behind = head ? HeadAt(source_, head->next) : std::nullopt;
  std::string_view home = HomeOf(tag, !IsAtTop() || !behind ? here : behind->Tag());
  for (int i = 0; i < kMostMade && !home.empty(); ++i, home = HomeOf(home)) {
    needed.push_back(home);
    if (StandsIn(here, home)) break;
  }
  if (needed.empty() || !StandsIn(here, needed.back())) return;
  std::for_each(needed.rbegin(), needed.rend(),
                [&](std::string_view list) { openMade(offset, list); });
}

// Row, column and flag of the next cell. Cells are stored in the order of their wells, and most
// also store their row and column.
std::vector<std::uint8_t> RecoverTree::cellFields() const {
  const std::uint64_t index = open_.empty() || open_.back().seen == 0 ? 0 : open_.back().seen - 1;
  if (columns_ == 0) return {0, 0, 0, 0, 1};
  const auto row = ShortBytes(static_cast<std::uint16_t>(index / columns_));
  const auto column = ShortBytes(static_cast<std::uint16_t>(index % columns_));
  return {row[0], row[1], column[0], column[1], 1};
}

void RecoverTree::AddEmptyCells(std::uint64_t offset, std::uint64_t count) {
  const std::uint64_t first = open_.back().seen + 1;
  for (std::uint64_t i = 0; i < count; ++i) {
    Count(TagOf(Kind::kCell));
    Append({'C', 'E', 'L', 'L', 0, 0, 0, 7, 0, 0});
    Append(cellFields());
  }
  const auto last = open_.back().seen;
  report_.Correct(
      offset, count == 1
                  ? fmt::format("an empty cell keeps the place of cell {}, which was lost", last)
                  : fmt::format("empty cells keep the places of cells {} to {}, which were lost",
                                first, last));
  report_.lostRecords += count;
}

std::uint64_t RecoverTree::OutermostEnd() const {
  std::uint64_t end = 0;
  for (const List& list : open_) {
    if (list.isPlate || list.hasPlates) {
      end = 0;
    } else if (end == 0 && list.isTrusted) {
      end = list.end;
    }
  }
  return end;
}

void RecoverTree::openMade(std::uint64_t offset, std::string_view tag) {
  Count(tag);
  RecoverHead head;
  head.offset = offset;
  std::copy(tag.begin(), tag.end(), head.tagBytes.begin());
  head.kind = &KindOf(tag);
  head.length = head.kind->layout == BodyLayout::kCell ? 7 : 2;
  std::vector<std::uint8_t> bytes(tag.begin(), tag.end());
  const auto add = [&](std::span<const std::uint8_t> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
  };
  add(LongBytes(head.length));
  add(ShortBytes(0));
  if (head.kind->layout == BodyLayout::kCell) add(cellFields());
  if (head.kind->layout == BodyLayout::kPlate) add(MadeHeader({}, true));
  Append(bytes);
  Open(head, tag, bytes.size(), false);
  open_.back().isMade = true;
  report_.Correct(offset,
                  fmt::format("the list {} was made anew around what was in it", InQuotes(tag)));
}

void RecoverTree::Open(const RecoverHead& head, std::string_view tag, std::uint64_t bytes,
                       bool isTrusted) {
  List list;
  list.tag = tag;
  list.offset = head.offset;
  list.written = position_ - bytes;
  list.end = head.DeclaredEnd();
  list.length = head.length;
  list.count = head.count;
  list.isTrusted = isTrusted;
  list.isPlate = head.kind->layout == BodyLayout::kPlate;
  if (list.isPlate) ++report_.plates;
  for (List& outer : open_) outer.hasPlates = outer.hasPlates || list.isPlate;
  open_.push_back(std::move(list));
}

void RecoverTree::RightTag(const RecoverHead& head) {
  const auto bytes = source_.View(head.offset, head.tagBytes.size());
  if (std::equal(head.tagBytes.begin(), head.tagBytes.end(), bytes.begin())) return;
  const std::string_view tag = head.Tag();
  Patch(open_.back().written, {reinterpret_cast<const std::uint8_t*>(tag.data()), tag.size()});
}

void RecoverTree::Count(std::string_view tag) {
  if (open_.empty()) {
    tags_.emplace(tag);
    return;
  }
  ++open_.back().seen;
  if (open_.back().isPlate) open_.back().tags.emplace(tag);
}

std::uint32_t RecoverTree::rightLength(const List& list) const {
  const std::uint64_t held = position_ - list.written - kRecordHeadSize;
  if (list.tag == TagOf(Kind::kPlates)) {
    // The length grows by 10 for each plate, each time that a document is read and saved.
    const std::uint64_t least = 2 + 10 * list.seen;
    const bool isPlausible = list.length % 10 == 2 && list.length >= least && list.length <= held;
    return isPlausible ? list.length : static_cast<std::uint32_t>(least);
  }
  if (list.isPlate) return 2;
  if (list.hasPlates && list.length <= held) return list.length;
  return static_cast<std::uint32_t>(held);
}

void RecoverTree::close() {
  const List list = std::move(open_.back());
  open_.pop_back();
  const bool isLess = !list.isMade && !list.isPlate && list.seen < list.count;
  if (isLess) report_.lostRecords += list.count - list.seen;
  const std::uint16_t count = list.isPlate ? 0 : static_cast<std::uint16_t>(list.seen);
  if (count != list.count) Patch(list.written + kRecordHeadSize, ShortBytes(count));
  const std::uint32_t length = rightLength(list);
  if (length != list.length) Patch(list.written + 4, LongBytes(length));
  if (list.isMade || (count == list.count && length == list.length)) return;
  report_.Correct(list.offset, fmt::format("the list {} now says {} in {}, not {} in {}",
                                           InQuotes(list.tag), Counted(count, "record"),
                                           Counted(length, "byte"), list.count, list.length));
}

void RecoverTree::ClosePlate() {
  while (!open_.empty() && !open_.back().isPlate) close();
  if (!open_.empty()) close();
}

void RecoverTree::CloseAll() {
  while (!open_.empty()) closeOrEnd();
}

// Closes the innermost list. Adds an end record to a plate that has none.
void RecoverTree::closeOrEnd() {
  if (open_.back().isPlate) {
    std::vector<std::uint8_t> end = {'E', 'O', 'P', 'l', 0, 0, 0, 4, 0, 0, 0, 0};
    Append(end);
    report_.Correct(open_.back().offset, "the plate had no end record, and was given one");
  }
  close();
}

bool RecoverTree::IsInPlate() const {
  return std::any_of(open_.begin(), open_.end(), [](const List& list) { return list.isPlate; });
}

const std::set<std::string>& RecoverTree::TagsAtTop() const {
  const auto plate =
      std::find_if(open_.rbegin(), open_.rend(), [](const List& list) { return list.isPlate; });
  return plate == open_.rend() ? tags_ : plate->tags;
}

bool RecoverTree::EndsAt(std::uint64_t offset) const {
  return std::any_of(open_.begin(), open_.end(),
                     [&](const List& list) { return !list.isMade && list.end == offset; });
}

bool RecoverTree::IsPastEnd(std::uint64_t offset) const {
  return std::any_of(open_.begin(), open_.end(), [&](const List& list) {
    return list.isTrusted && !list.hasPlates && list.end < offset;
  });
}

std::uint64_t RecoverTree::Missing() const {
  if (open_.empty() || !open_.back().isTrusted) return 0;
  const List& list = open_.back();
  return list.count - std::min<std::uint64_t>(list.count, list.seen);
}

}  // namespace vex2::lab
