#include "lab/check/RecordCheck.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/check/HeaderCheck.h"
#include "lab/model/BigEndian.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

std::string escaped(std::string_view tag) {
  return Escaped(ToUtf8(tag));
}

// Whether records with this layout may declare a length that differs from what they hold.
bool isFreeInLength(BodyLayout layout) {
  return layout == BodyLayout::kPlate || layout == BodyLayout::kData;
}

}  // namespace

RecordCheck::RecordCheck(const Document& document, const HeaderFields& header, Findings& findings)
    : document_(document), findings_(findings), plate_(header) {}

// Whether the record begins after the last record of the document. There the walk may take the
// bytes of an uncommitted frame for records.
bool RecordCheck::isBehindRecords(const FileRecord& record) const {
  return record.offset >= document_.RecordsEnd();
}

void RecordCheck::Begin(const FileRecord& record, CFile& file) {
  if (isBehindRecords(record)) return;
  levels_.resize(static_cast<std::size_t>(record.depth) - 1);
  const bool known = IsKnownTag(record.Tag());
  if (!levels_.empty() && record.kind->layout == BodyLayout::kPlate) ++levels_.back().plates;
  levels_.push_back({record, 0, 0, record.Tag() == TagOf(Kind::kPlates), known});
  if (!known) return checkUnknown(record);
  switch (record.kind->layout) {
    case BodyLayout::kText:
      for (Level& level : levels_) ++level.texts;
      break;
    case BodyLayout::kPlate:
      for (Level& level : levels_) level.holdsPlates = true;
      plate_ = ReadHeaderFields(file, record.BodyOffset() + 2);
      CheckHeader(plate_, path(levels_.size()) + "/header", record.BodyOffset() + 2, findings_);
      break;
    case BodyLayout::kData:
      if (record.length > 0) checkBlock(record, file);
      break;
    default:
      if (record.Tag() == TagOf(Kind::kPlateSetup)) checkCells(record, file);
  }
}

void RecordCheck::End(const FileRecord& record) {
  if (isBehindRecords(record) || levels_.size() < static_cast<std::size_t>(record.depth)) return;
  levels_.resize(static_cast<std::size_t>(record.depth));
  Level& level = levels_.back();
  level.record.end = record.end;
  checkLength(level);
  if (record.depth == 1 &&
      (record.Tag() == TagOf(Kind::kProgram) || record.Tag() == TagOf(Kind::kRawData))) {
    positioned_.push_back(
        {std::string(record.Tag()), record.offset, record.end, record.DeclaredEnd()});
  }
  levels_.pop_back();
}

void RecordCheck::Pass(std::uint64_t offset) {
  constexpr std::uint64_t kPassed = 4;
  const bool goesOn = passedEnd_ == offset;
  passedEnd_ = offset + kPassed;
  hasGaps_ = true;
  if (goesOn || levels_.empty()) return;
  findings_.Add(
      {Severity::kWarning, path(levels_.size()), offset,
       "bytes in a plate that begin no known record",
       "they are skipped four at a time, a save drops them, and bytes among them that look "
       "like a record would be read as one",
       "have the program that wrote the plate save it alone, and add it again"});
}

std::string RecordCheck::NameAt(std::uint64_t offset) const {
  for (std::size_t i = 0; i < levels_.size(); ++i) {
    if (levels_[i].record.offset == offset) return path(i + 1);
  }
  // The reader may have stopped at a record that the walk passed, so look among the records of the
  // document too.
  for (const Document::Record& record : document_.Records()) {
    if (record.offset == offset) return escaped(record.tag);
  }
  return "";
}

std::string RecordCheck::path(std::size_t levels) const {
  std::string text;
  for (std::size_t i = 0; i < levels; ++i) {
    if (i > 0) text += "/";
    text += escaped(levels_[i].record.Tag());
    if (i > 0 && levels_[i].record.kind->layout == BodyLayout::kPlate) {
      text += "[" + std::to_string(levels_[i - 1].plates) + "]";
    }
  }
  return text;
}

void RecordCheck::add(Severity severity, std::string problem, std::string consequence,
                      std::string remedy) {
  findings_.Add({severity, path(levels_.size()), levels_.back().record.offset, std::move(problem),
                 std::move(consequence), std::move(remedy)});
}

void RecordCheck::checkUnknown(const FileRecord& record) {
  if (levels_.size() > 1 && !levels_.front().known) return;
  if (!IsPlain(record.Tag())) return checkNoRecord(record);
  const std::string size = Counted(record.length, "byte");
  if (record.depth == 1) {
    return add(
        Severity::kWarning, fmt::format("a record of no known kind, of {}", size),
        "the reader leaves it out, and so does the next save",
        "nothing, unless another program needs the record: then do not save the document here");
  }
  add(Severity::kWarning, fmt::format("a record of no known kind within another, of {}", size),
      "the reader keeps its tag and length; the next save makes its bytes zeros",
      "nothing, unless another program needs the record: then do not save the document here");
}

// Within a list, the walk takes each eight bytes of a damaged stretch for a record. Report only the
// first.
void RecordCheck::checkNoRecord(const FileRecord& record) {
  hasGaps_ = true;
  const bool goesOn = garbageEnd_ == record.offset;
  garbageEnd_ = record.DeclaredEnd();
  if (record.depth == 1) {
    return add(
        Severity::kError, "these bytes are not a record, and known records follow",
        fmt::format("the reader skips {} and may miss records there; the next save drops them",
                    Counted(record.length, "byte")),
        "{recover} looks for records among them");
  }
  if (goesOn) return;
  findings_.Add({Severity::kError, path(levels_.size() - 1), record.offset,
                 "from here on there are bytes that are no records",
                 "the reader takes them for records of the list, and loses those after them",
                 "{recover} looks for records among and after them"});
}

void RecordCheck::Finish(const WalkEnd& end) {
  const auto& records = document_.Records();
  const bool isInLastBlock = end.fault && !records.empty() &&
                             records.back().tag == TagOf(Kind::kRawData) &&
                             records.back().offset == end.fault->offset;
  isWalked_ = !end.fault || isInLastBlock || end.fault->offset >= document_.RecordsEnd();
  // If the document has bytes that are not records, a length may be right, and the bytes after it
  // wrong.
  const char* remedy = CanRepairLengths() ? "{repair} sets the length to what the record holds"
                                          : "{recover} takes what is whole into a new document";
  for (Finding& finding : lengths_) {
    finding.remedy = remedy;
    findings_.Add(std::move(finding));
  }
  lengths_.clear();
}

void RecordCheck::checkLength(const Level& level) {
  const FileRecord& record = level.record;
  if (record.length == 0 || level.holdsPlates || isFreeInLength(record.kind->layout)) return;
  const std::uint64_t held = record.end - record.BodyOffset();
  if (held == record.length) return;
  wrongLengths_.push_back({path(levels_.size()), record.offset, record.length, held});
  const std::string lengths = fmt::format("its length is {}, but what it holds takes {}",
                                          record.length, Counted(held, "byte"));
  const auto tell = [&](Severity severity, const char* how, const char* consequence) {
    Finding finding = {severity,      path(levels_.size()),
                       record.offset, fmt::format("{}, {}", lengths, how),
                       consequence,   ""};
    if (lengths_.size() >= Findings::kMost) return findings_.Add(std::move(finding));
    lengths_.push_back(std::move(finding));
  };
  if (record.length < held) {
    return tell(Severity::kError, "so the records overlap",
                "this library reads it by its content, but programs that go by lengths take the "
                "rest for the next record; replacing a reporting block does so");
  }
  // A text that ends in a zero byte loses that byte when it is read, but the lists around the text
  // keep their declared length.
  const bool isUsual =
      record.length - held <= level.texts &&
      (record.kind->layout == BodyLayout::kList || record.kind->layout == BodyLayout::kCell);
  if (isUsual) {
    return tell(Severity::kWarning, "as in lists whose texts lost a zero byte",
                "this library reads it by its content; programs that go by lengths lose the "
                "records after it");
  }
  tell(Severity::kError, "so it overlaps what follows",
       "this library reads it by its content, but may read less if that length goes past the end "
       "of the file; programs that go by lengths lose the records after it");
}

void RecordCheck::checkCells(const FileRecord& record, CFile& file) {
  if (record.length == 0) return;
  file.Seek(static_cast<std::int64_t>(record.BodyOffset()), CFile::begin);
  const std::uint32_t cells = ReadShort(file).value_or(0);
  if (cells == plate_.Wells()) return;
  add(Severity::kNote,
      fmt::format("it sets up {}, and the plate has {}", Counted(cells, "well"), plate_.Wells()),
      cells < plate_.Wells() ? "the other wells are empty" : "the others are kept, and not shown");
}

void RecordCheck::checkBlock(const FileRecord& record, CFile& file) {
  const auto head = ReadStoredBlock(file, record);
  if (!head) return;  // the walk stops at this record too, so CheckEnd reports it
  if (head->version < kFirstVersionWithTimes) {
    add(Severity::kWarning, fmt::format("a data block of version {}", head->version),
        "it is read, but a saved copy could not be read back",
        "{upgrade} makes a document of it that is safe to save");
  } else if (head->timeBlockSize != kTimeBlockSize) {
    add(Severity::kError,
        fmt::format("its time block is of {}, not 12", Counted(head->timeBlockSize, "byte")),
        "the document is read correctly, but programs that read single frames from the file find "
        "other wells",
        "{recover} writes the block anew");
  }
  checkWells(*head);
  if (head->wells.empty() && record.DeclaredEnd() > head->firstFrame) {
    add(Severity::kError, fmt::format("it has no wells, but a length of {}", record.length),
        fmt::format("nothing in it is read, and the next record is looked for at byte {}",
                    head->firstFrame),
        "{recover} looks for what is left");
  }
  const bool isShort = record.DeclaredEnd() < head->firstFrame;
  const std::uint64_t counted = isShort ? 0 : record.DeclaredEnd() - head->firstFrame;
  const std::uint64_t part = head->frameSize == 0 ? 0 : counted % head->frameSize;
  if (!isShort && part == 0) return;
  // A length that is wrong by a number of whole frames cannot be found here: the reader just gets
  // another number of frames.
  add(Severity::kError,
      isShort ? "its length ends before its first frame"
              : fmt::format("its length covers {} and {} of the {} bytes of another frame",
                            Counted(counted / head->frameSize, "frame"), part, head->frameSize),
      "the half frame is not read, and the next record is looked for in it",
      "{repair} sets the length to whole frames where the block is the last record");
}

void RecordCheck::checkWells(const StoredBlock& head) {
  std::set<std::uint16_t> wells;
  std::size_t doubles = 0;
  std::size_t outside = 0;
  for (const std::uint16_t well : head.wells) {
    if (!wells.insert(well).second) ++doubles;
    if (well == 0 || (plate_.Wells() > 0 && well > plate_.Wells())) ++outside;
  }
  if (doubles > 0) {
    add(Severity::kWarning,
        fmt::format("{} of its wells {} in it twice", doubles, doubles == 1 ? "is" : "are"),
        "only the first reading of such a well is found by its number");
  }
  if (outside > 0) {
    add(Severity::kWarning,
        fmt::format("{} of its wells {} not on a plate of {} wells", outside,
                    outside == 1 ? "is" : "are", plate_.Wells()),
        "their readings are kept, but belong to no well of the plate");
  }
}

}  // namespace vex2::lab
