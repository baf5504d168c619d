#include "lab/recover/RecoverPass.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/check/RecordPlaces.h"
#include "lab/model/BigEndian.h"
#include "lab/model/HeaderFields.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::uint64_t kListFields = 2;
constexpr std::uint64_t kCellFields = 7;
// Readers do not read records that are nested deeper than this.
constexpr std::size_t kDeepest = 63;

bool isPlateHeader(RecoverSource& source, const RecoverHead& plate) {
  constexpr std::uint32_t kMagic = 0x56657832;
  return source.Long(plate.offset + kRecordHeadSize + kListFields) == kMagic;
}

bool isPrintableAt(RecoverSource& source, std::uint64_t offset) {
  const auto bytes = source.View(offset, kTagLength);
  return bytes.size() >= kTagLength &&
         IsPlain({reinterpret_cast<const char*>(bytes.data()), kTagLength});
}

}  // namespace

RecoverReport RecoverPass::Run() {
  report_.size = source_.Size();
  const auto header = source_.View(0, HeaderLayout::kSize);
  header_.assign(header.begin(), header.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(
                                                      header.size(), HeaderLayout::kSize)));
  auto written = header_;
  written.resize(HeaderLayout::kSize);
  tree_.Append(written);
  if (IsHeaderWhole(header_)) {
    tree_.SetColumns(ShortAt(header_, HeaderLayout::kColumnsAt));
  }
  std::uint64_t offset = firstRecord();
  while (offset < source_.Size()) {
    if (progress_) progress_(offset);
    offset = step(offset);
  }
  tree_.CloseAll();
  finishHeader();
  report_.written = tree_.Position();
  return report_;
}

// The offset of the first record. It is the end of the header, unless the bytes of the header are
// missing from the file.
std::uint64_t RecoverPass::firstRecord() {
  if (source_.Size() == HeaderLayout::kSize || HeadAt(source_, HeaderLayout::kSize))
    return HeaderLayout::kSize;
  const auto early = FindHead(source_, 0, HeaderLayout::kSize);
  if (!early) return std::min(HeaderLayout::kSize, source_.Size());
  header_.clear();
  return *early;
}

std::uint64_t RecoverPass::step(std::uint64_t offset) {
  if (const auto head = HeadAt(source_, offset); head && isCredible(*head)) return keep(*head);
  if (isPlateEnd(offset)) return keepPlateEnd(offset);
  std::string tag;
  if (const auto list = listWithoutTag(offset, tag)) return keepList(*list, tag);
  const auto block = BlockAt(source_, offset);
  const bool isVersion = block && (block->version == 1 || block->version == 2);
  if (isVersion && block->tag.empty() && block->lengthAgrees && block->wells > 0 &&
      IsBoundary(source_, block->End()) &&
      !ReadWellNumbers(source_, block->firstFrame - 2U * block->wells, block->wells).empty()) {
    return keepFound(*block, offset, block->End());
  }
  if (const auto unknown = UnknownHeadAt(source_, offset, tree_.OpenEnd())) {
    return keepUnknown(*unknown);
  }
  return passGap(offset);
}

// Whether to keep the record with this head. If its own numbers agree, the record is kept even if
// no other record follows it: then the bytes after it are damaged. Any other record is kept
// unless a head that can be trusted (see `FindHead`) begins inside it: then its length is wrong.
// The records from that head on must continue past the end of this record, except if this record
// itself ends after a list that contains it.
bool RecoverPass::isCredible(const RecoverHead& head) {
  if (tree_.Depth() > kDeepest) return false;
  if (head.HoldsRecords()) return isCredibleList(head);
  if (!IsOfAnyLength(head.kind->layout) && head.exact) return true;
  return !FindHead(source_, head.offset + 1, head.next, tree_.IsPastEnd(head.next) ? 0 : head.next);
}

bool RecoverPass::isCredibleList(const RecoverHead& head) {
  const auto first = HeadAt(source_, head.next);
  if (first && StandsIn(head.Tag(), first->Tag())) return true;
  if (head.kind->layout == BodyLayout::kPlate) {
    return first || isPlateHeader(source_, head);
  }
  return (head.exact && head.DeclaredEnd() <= source_.Size()) || IsBoundary(source_, head.next);
}

// Finds a list of which only the tag is damaged: by its numbers, it begins with a record that
// belongs into a list. Sets `tag` to the tag that the list most likely had.
std::optional<RecoverHead> RecoverPass::listWithoutTag(std::uint64_t offset, std::string& tag) {
  const auto length = source_.Long(offset + 4);
  if (!length || *length < kListFields) return std::nullopt;
  for (const std::uint64_t fields : {kListFields, kCellFields, kListFields + HeaderLayout::kSize}) {
    const bool isPlate = fields > kCellFields;
    const std::string_view home = isPlate ? TagOf(Kind::kPlate) : listAround(offset, fields);
    if (home.empty()) continue;
    RecoverHead head;
    head.offset = offset;
    head.kind = &KindOf(home);
    std::copy(home.begin(), home.end(), head.tagBytes.begin());
    head.length = *length;
    head.count = source_.Short(offset + kRecordHeadSize).value_or(0);
    head.next = offset + kRecordHeadSize + fields;
    head.exact = true;
    if (isPlate) {
      if (*length != kListFields || head.count != 0 || !isPlateHeader(source_, head)) continue;
    } else if (home != TagOf(Kind::kPlates)) {
      if (head.count == 0 || *length < fields + kRecordHeadSize * head.count) continue;
      if (!IsBoundary(source_, head.DeclaredEnd())) continue;
    }
    tag = home;
    report_.Correct(offset,
                    fmt::format("a list whose tag was damaged was taken for {}", InQuotes(home)));
    return head;
  }
  return std::nullopt;
}

// The tag of the list that begins at `offset`, found from the first record in it. If such a record
// can be in several lists, returns the tag that is most like the damaged tag. Returns nothing if
// there is no first record, or if the list may be another program's.
std::string_view RecoverPass::listAround(std::uint64_t offset, std::uint64_t fields) {
  const auto first = HeadAt(source_, offset + kRecordHeadSize + fields);
  if (!first || !first->exact) return {};
  const auto layout = fields == kCellFields ? BodyLayout::kCell : BodyLayout::kList;
  std::string_view best;
  int most = isPrintableAt(source_, offset) ? 0 : -1;
  for (const std::string_view home : HomesOf(first->Tag())) {
    if (home.empty() || KindOf(home).layout != layout) continue;
    const int alike = Likeness(source_, offset, home);
    if (alike <= most) continue;
    most = alike;
    best = home;
  }
  return best;
}

// Whether the end record of the open plate is at `offset`, with a damaged tag.
bool RecoverPass::isPlateEnd(std::uint64_t offset) {
  constexpr std::uint32_t kEndLength = 4;
  return tree_.OpenTag() == TagOf(Kind::kPlate) &&
         source_.Long(offset + kTagLength) == kEndLength &&
         source_.Long(offset + kRecordHeadSize) == 0U &&
         Likeness(source_, offset, TagOf(Kind::kEndOfPlate)) > 0;
}

// Whether a plate's end record is at `offset`, of which only the second half of the length and the
// value are left. The next record must belong into the document or begin a plate.
bool RecoverPass::isRestOfPlateEnd(std::uint64_t offset) {
  constexpr std::uint32_t kEndLength = 4;
  const std::uint64_t value = offset + kRecordHeadSize;
  if (tree_.OpenTag() != TagOf(Kind::kPlate) || source_.Short(value - 2) != kEndLength ||
      source_.Long(value) != 0U) {
    return false;
  }
  const auto next = HeadAt(source_, value + kEndLength);
  return next && (StandsIn("", next->Tag()) || next->Tag() == TagOf(Kind::kPlate));
}

std::uint64_t RecoverPass::keepPlateEnd(std::uint64_t offset) {
  constexpr std::uint64_t kValueSize = 4;
  makeRoom(offset, TagOf(Kind::kEndOfPlate));
  ++report_.records;
  tree_.Append({'E', 'O', 'P', 'l', 0, 0, 0, kValueSize});
  tree_.Copy(offset + kRecordHeadSize, offset + kRecordHeadSize + kValueSize);
  tree_.ClosePlate();
  report_.Correct(offset, "the record \"EOPl\", the end of the plate, was given its tag again");
  return offset + kRecordHeadSize + kValueSize;
}

// Whether the header shows that the document is not a study. False if the header is damaged.
bool RecoverPass::isNoStudy() const {
  constexpr std::string_view kStudy = Assay::kRelativeStudy.code;
  return IsHeaderWhole(header_) &&
         !std::equal(kStudy.begin(), kStudy.end(), header_.begin() + HeaderLayout::kAssayCodeAt);
}

// Whether an end record of a plate follows `offset` before another plate begins.
bool RecoverPass::endsInPlate(std::uint64_t offset) {
  constexpr int kMostHeads = 4096;
  for (int i = 0; i < kMostHeads; ++i) {
    const auto head = HeadAt(source_, offset);
    if (!head || head->Tag() == TagOf(Kind::kPlate) || head->Tag() == TagOf(Kind::kPlates))
      return false;
    if (head->Tag() == TagOf(Kind::kEndOfPlate)) return true;
    offset = head->next;
  }
  return false;
}

// Opens new lists for a record with this tag, to replace lost lists around it; also a new plate if
// the beginning of its plate was lost.
void RecoverPass::wrap(std::uint64_t offset, std::string_view tag) {
  const bool isOutside = tree_.Depth() == 0;
  const bool isPlates = HomeOf(tag) == TagOf(Kind::kPlate);
  // If the document should have no plates, records that belong into plates may be directly in it.
  if (isOutside && (isPlates || !isNoStudy()) && endsInPlate(offset)) {
    tree_.Wrap(offset, TagOf(Kind::kPlateName));
  } else if (isOutside && isPlates && isNoStudy()) {
    return;
  }
  tree_.Wrap(offset, tag);
}

// Closes and opens lists so that a record with this tag can be written.
void RecoverPass::makeRoom(std::uint64_t offset, std::string_view tag) {
  tree_.Settle(offset, tag, afterLoss_);
  if (afterLoss_) wrap(offset, tag);
  afterLoss_ = false;
  tree_.Count(tag);
}

std::uint64_t RecoverPass::keep(const RecoverHead& head) {
  if (head.HoldsRecords()) return keepList(head, head.Tag());
  if (head.kind->layout == BodyLayout::kData && head.length > 0) {
    return keepBlock(*BlockAt(source_, head.offset));
  }
  return keepValue(head);
}

std::uint64_t RecoverPass::keepValue(const RecoverHead& head) {
  makeRoom(head.offset, head.Tag());
  ++report_.records;
  const std::uint64_t written = tree_.Position();
  tree_.Copy(head.offset, head.next);
  const std::uint64_t size = head.next - head.offset - kRecordHeadSize;
  if (FixedSize(head.kind->layout) > 0 && head.length != size) {
    tree_.Patch(written + 4, LongBytes(static_cast<std::uint32_t>(size)));
    report_.Correct(head.offset,
                    fmt::format("the record {} now says that it holds {}, not {}",
                                InQuotes(head.Tag()), Counted(size, "byte"), head.length));
  }
  if (tree_.Depth() == 0) {
    positions_[std::string(head.Tag())] = {head.offset, head.next, written, tree_.Position()};
  }
  if (head.Tag() == TagOf(Kind::kEndOfPlate) && tree_.OpenTag() == TagOf(Kind::kPlate))
    tree_.ClosePlate();
  return head.next;
}

// Keeps a record with an unknown tag: a reader skips it and finds the next record. In a plate,
// readers skip it four bytes at a time, so keep it only if they find the next record that way.
std::uint64_t RecoverPass::keepUnknown(const RecoverHead& head) {
  if (head.next > source_.Size() || hidesRecords(head)) return passGap(head.offset);
  tree_.Settle(head.offset, "", false);
  bool isHarmless = true;
  if (tree_.OpenTag() == TagOf(Kind::kPlate)) {
    isHarmless = head.length % 4 == 0 && head.length < 4096;
    for (std::uint64_t at = head.offset + 4; isHarmless && at < head.next; at += 4) {
      const auto bytes = source_.View(at, 4);
      const std::string tag(bytes.begin(), bytes.begin() + 4);
      isHarmless = KindOf(tag).layout == BodyLayout::kUnknown && tag != kMagic;
    }
  }
  if (!isHarmless) return passGap(head.offset);
  tree_.Count(head.Tag());
  tree_.Copy(head.offset, head.next);
  report_.Correct(head.offset,
                  fmt::format("kept a record of no known kind, {} of {}: readers pass over it",
                              InQuotes(Escaped(head.Tag())), Counted(head.length, "byte")));
  return head.next;
}

// Whether whole records begin in the body that do not fill it exactly. If they fill it exactly, the
// record may be a list that another program wrote.
bool RecoverPass::hidesRecords(const RecoverHead& head) {
  const std::uint64_t body = head.offset + kRecordHeadSize;
  if (!FindHead(source_, head.offset + 1, head.next, head.next)) return false;
  for (const std::uint64_t fields : {kListFields, kCellFields}) {
    std::uint64_t at = body + fields;
    std::uint16_t left = source_.Short(body).value_or(0);
    for (auto next = HeadAt(source_, at); left > 0 && next && at < head.next; --left) {
      at = next->next;
      next = HeadAt(source_, at);
    }
    if (left == 0 && at == head.next) return false;
  }
  return true;
}

std::uint64_t RecoverPass::keepList(const RecoverHead& head, std::string_view tag) {
  makeRoom(head.offset, tag);
  ++report_.records;
  if (head.kind->layout == BodyLayout::kPlate) return keepPlate(head);
  const std::uint64_t end = head.DeclaredEnd();
  const bool isTrusted = tag != TagOf(Kind::kPlates) && end >= head.next &&
                         (IsBoundary(source_, end) || tree_.EndsAt(end));
  tree_.Copy(head.offset, head.next);
  tree_.Open(head, tag, head.next - head.offset, isTrusted);
  tree_.RightTag(head);
  return head.next;
}

std::uint64_t RecoverPass::keepPlate(const RecoverHead& head) {
  const std::uint64_t begin = head.offset + kRecordHeadSize + kListFields;
  const auto bytes = source_.View(begin, HeaderLayout::kSize);
  const auto header = bytes.first(std::min<std::size_t>(bytes.size(), HeaderLayout::kSize));
  if (IsHeaderWhole(header)) {
    plateHeader_.assign(header.begin(), header.end());
  } else {
    std::vector<std::string> guesses;
    plateHeader_ = CorrectedHeader(header, {}, true, guesses);
    ++report_.madeHeads;
    report_.Correct(begin, fmt::format("the plate's header was damaged{}", GuessText(guesses)));
  }
  tree_.Append({'R', 'Q', 'P', 'l', 0, 0, 0, 2, 0, 0});
  tree_.Append(plateHeader_);
  RecoverHead right = head;
  right.length = 2;
  right.count = 0;
  tree_.Open(right, TagOf(Kind::kPlate), head.next - head.offset, false);
  return head.next;
}

}  // namespace vex2::lab
