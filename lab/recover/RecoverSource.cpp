#include "lab/recover/RecoverSource.h"

#include <algorithm>
#include <bitset>

#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "lab/model/DocumentWalk.h"
#include "lab/recover/RecoverBlock.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kWindow = 16 * 1024;
// So many heads in a row cannot be an accident.
constexpr int kEnoughHeads = 48;
constexpr int kFewHeads = 2;

// The pairs of bytes with which tags begin. They allow a fast test, since most bytes of a damaged
// file begin no tag.
const std::bitset<65536>& firstTwoOfTags() {
  static const auto set = [] {
    std::bitset<65536> begins;
    for (const std::string_view tag : kTagTable) {
      begins.set(ShortAt({reinterpret_cast<const std::uint8_t*>(tag.data()), tag.size()}));
    }
    return begins;
  }();
  return set;
}

// Sets the fields of `head` that depend on its body. Returns false if the body does not fit into
// the file, or if its numbers contradict each other.
bool measure(RecoverSource& source, RecoverHead& head) {
  const std::uint64_t body = head.offset + kRecordHeadSize;
  const BodyLayout layout = head.kind->layout;
  head.next = body;
  head.exact = true;
  if (head.length == 0) return true;
  if (const std::uint64_t size = FixedSize(layout); size > 0) {
    head.next = body + size;
    head.exact = head.length == size;
    return head.next <= source.Size();
  }
  if (layout == BodyLayout::kData) {
    const auto block = BlockAt(source, head.offset);
    if (!block || !block->lengthAgrees) return false;
    head.next = std::min(block->End(), source.Size());
    return block->firstFrame <= source.Size();
  }
  if (IsOfAnyLength(layout)) {
    head.next = head.DeclaredEnd();
    if (head.next > source.Size()) return false;
    const bool isSpectra = layout == BodyLayout::kPureDyes || layout == BodyLayout::kBackground;
    return !isSpectra || SpectraEnd(source.File(), layout, body) == head.next;
  }
  const std::uint64_t fields = layout == BodyLayout::kCell ? 7 : 2;
  head.count = source.Short(body).value_or(0);
  head.next = body + fields + (layout == BodyLayout::kPlate ? HeaderLayout::kSize : 0);
  head.exact = head.length >= fields + kRecordHeadSize * head.count;
  if (layout == BodyLayout::kPlate) head.exact = head.length == fields && head.count == 0;
  if (head.Tag() == TagOf(Kind::kPlates)) head.exact = head.length % 10 == 2;
  return head.next <= source.Size();
}

std::optional<RecoverHead> rawHead(RecoverSource& source, std::uint64_t offset) {
  const auto bytes = source.View(offset, kRecordHeadSize);
  if (bytes.size() < kRecordHeadSize) return std::nullopt;
  RecoverHead head;
  head.offset = offset;
  std::copy_n(bytes.begin(), 4, head.tagBytes.begin());
  head.length = LongAt(bytes, 4);
  head.kind = &KindOf(head.Tag());
  return head;
}

// Whether too few bytes for a record remain at `offset`.
bool isNearEnd(const RecoverSource& source, std::uint64_t offset) {
  return offset <= source.Size() && source.Size() - offset < kRecordHeadSize;
}

}  // namespace

std::span<const std::uint8_t> RecoverSource::View(std::uint64_t offset, std::size_t count) {
  if (offset >= size_) return {};
  const bool isThere = offset >= start_ && offset + count <= start_ + window_.size();
  if (!isThere && !(offset >= start_ && start_ + window_.size() == size_ && !window_.empty())) {
    window_.resize(std::max(count, kWindow));
    file_.Seek(static_cast<std::int64_t>(offset), CFile::begin);
    window_.resize(file_.Read(window_.data(), window_.size()));
    start_ = offset;
  }
  return std::span<const std::uint8_t>(window_).subspan(
      std::min<std::size_t>(offset - start_, window_.size()));
}

std::optional<std::uint16_t> RecoverSource::Short(std::uint64_t offset) {
  const auto bytes = View(offset, 2);
  if (bytes.size() < 2) return std::nullopt;
  return ShortAt(bytes);
}

std::optional<std::uint32_t> RecoverSource::Long(std::uint64_t offset) {
  const auto bytes = View(offset, 4);
  if (bytes.size() < 4) return std::nullopt;
  return LongAt(bytes);
}

bool RecoverHead::HoldsRecords() const {
  return length > 0 && (kind->layout == BodyLayout::kList || kind->layout == BodyLayout::kCell ||
                        kind->layout == BodyLayout::kPlate);
}

std::optional<RecoverHead> HeadAt(RecoverSource& source, std::uint64_t offset) {
  auto head = rawHead(source, offset);
  if (!head || head->kind->layout == BodyLayout::kUnknown || !measure(source, *head)) {
    return std::nullopt;
  }
  return head;
}

std::optional<RecoverHead> UnknownHeadAt(RecoverSource& source, std::uint64_t offset,
                                         std::uint64_t listEnd) {
  auto head = rawHead(source, offset);
  if (!head || head->kind->layout != BodyLayout::kUnknown || !IsPlain(head->Tag())) {
    return std::nullopt;
  }
  head->next = head->DeclaredEnd();
  // Other unknown records may come before the next known record.
  constexpr int kMostUnknown = 16;
  std::uint64_t next = head->next;
  for (int i = 0; i < kMostUnknown; ++i) {
    if (next == listEnd || isNearEnd(source, next) || HeadAt(source, next)) return head;
    const auto other = rawHead(source, next);
    if (!other || other->kind->layout != BodyLayout::kUnknown || !IsPlain(other->Tag())) break;
    next = other->DeclaredEnd();
  }
  return std::nullopt;
}

int Likeness(RecoverSource& source, std::uint64_t offset, std::string_view tag) {
  const auto bytes = source.View(offset, tag.size());
  int alike = 0;
  for (std::size_t i = 0; i < tag.size() && i < bytes.size(); ++i) {
    if (bytes[i] == static_cast<std::uint8_t>(tag[i])) ++alike;
  }
  return alike;
}

bool IsBoundary(RecoverSource& source, std::uint64_t offset) {
  return isNearEnd(source, offset) || HeadAt(source, offset) || UnknownHeadAt(source, offset);
}

bool IsBelieved(RecoverSource& source, std::uint64_t offset, std::uint64_t mustCross) {
  int exact = 0;
  for (int i = 0; i < kEnoughHeads; ++i) {
    if (i > 0 && isNearEnd(source, offset)) return true;
    auto head = HeadAt(source, offset);
    if (!head && i > 0) head = UnknownHeadAt(source, offset);
    if (!head) {
      // A known tag at the expected offset counts, even if its record is damaged.
      const auto cut = rawHead(source, offset);
      if (cut && cut->kind->layout != BodyLayout::kUnknown) ++exact;
      return i > 0 && exact >= kFewHeads && offset > mustCross;
    }
    // The numbers in the head of a data block prove more than the numbers of a few small records.
    const bool isBlock = head->kind->layout == BodyLayout::kData && head->length > 0;
    exact += isBlock ? kFewHeads : head->exact ? 1 : 0;
    offset = head->next;
  }
  return exact > kEnoughHeads / 2;
}

std::optional<std::uint64_t> FindHead(RecoverSource& source, std::uint64_t from,
                                      std::uint64_t before, std::uint64_t mustCross) {
  constexpr std::uint64_t kTagSize = 4;
  const auto& begins = firstTwoOfTags();
  before = std::min(before, source.Size());
  while (from < before) {
    const auto bytes = source.View(from, kTagSize);
    if (bytes.size() < kTagSize) return std::nullopt;
    const std::size_t last = std::min<std::uint64_t>(bytes.size() - kTagSize + 1, before - from);
    std::size_t i = 0;
    while (i < last && !begins.test(ShortAt(bytes, i))) ++i;
    from += i;
    if (i == last) continue;
    if (IsBelieved(source, from, mustCross)) return from;
    ++from;
  }
  return std::nullopt;
}

}  // namespace vex2::lab
