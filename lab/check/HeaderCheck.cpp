#include "lab/check/HeaderCheck.h"

#include <fmt/core.h>

#include <algorithm>
#include <bit>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr unsigned kMaskBits = 32;
constexpr const char* kRepairPosition = "{repair} makes it lead to the record";

std::string dimensions(const HeaderFields& header) {
  return fmt::format("{} x {}", header.rows, header.columns);
}

void checkSize(const HeaderFields& header, const std::string& name, std::uint64_t offset,
               Findings& findings) {
  const std::uint64_t rowsAt = offset + HeaderLayout::kRowsAt;
  if (header.rows > HeaderLayout::kMaxRows) {
    findings.Add({Severity::kError, name, rowsAt,
                  fmt::format("a plate of {} rows, more than a header has room for", header.rows),
                  "the reader looks for records after the masks of all rows, and a saved copy "
                  "could not be read back",
                  "{recover} takes what it finds into a document of a possible plate"});
    return;
  }
  const auto wells = WellsOfPlateType(header.plateType);
  if (wells == 0) {
    findings.Add({Severity::kNote, name, offset + HeaderLayout::kPlateTypeCodeAt,
                  fmt::format("the number of wells of the plate type '{}' is not known",
                              Escaped(ToUtf8(header.plateType))),
                  "an analysis cannot tell how many wells there are", ""});
  } else if (wells != header.Wells()) {
    findings.Add({Severity::kWarning, name, rowsAt,
                  fmt::format("a plate of {} wells, but the type '{}' has {}", dimensions(header),
                              Escaped(ToUtf8(header.plateType)), wells),
                  "analysis goes by the type, well names and masks by rows and columns", ""});
  }
}

void checkUsage(const HeaderFields& header, const std::string& name, std::uint64_t offset,
                Findings& findings) {
  unsigned outside = 0;
  for (const std::uint32_t mask : header.usage) {
    if (header.columns >= kMaskBits) break;
    outside += static_cast<unsigned>(std::popcount(mask >> header.columns));
  }
  if (outside == 0) return;
  findings.Add({Severity::kWarning, name, offset + HeaderLayout::kUsageAt,
                fmt::format("the masks of wells in use have {} in columns that a plate of {} does "
                            "not have",
                            Counted(outside, "well"), dimensions(header)),
                "they are counted as wells in use", ""});
}

std::string leadsTo(std::uint32_t position, std::string_view tag) {
  return fmt::format("the header's offset of {} is {}", tag, position);
}

/// What is at an offset that the header stores: the tag or the end of a record of the expected
/// kind, or something else.
struct Aim {
  bool isTag = false;
  bool isEnd = false;
  /// The first record with the tag; null if there is none.
  const PositionedRecord* first = nullptr;
};

Aim aimOf(std::uint32_t position, std::string_view tag,
          const std::vector<PositionedRecord>& records) {
  Aim aim;
  for (const PositionedRecord& record : records) {
    if (record.tag != tag) continue;
    if (aim.first == nullptr) aim.first = &record;
    aim.isTag = aim.isTag || record.offset == position;
    aim.isEnd = aim.isEnd || record.end == position || record.declaredEnd == position;
  }
  return aim;
}

// What an instrument would damage if it continued the run at this offset, which is not the offset
// of the block's tag.
std::string harmToRun(std::uint32_t position) {
  return position == 0
             ? "an instrument that continues would write a second block, which nothing reads"
             : fmt::format("an instrument that continues would write the block's length to byte {}",
                           position + 4);
}

void checkProgram(const HeaderFields& header, const Aim& aim, Findings& findings) {
  const std::uint32_t position = header.programPosition;
  if (position == 0 || aim.isTag) return;
  const std::string what = leadsTo(position, TagOf(Kind::kProgram));
  if (aim.isEnd) {
    findings.Add(
        {Severity::kNote, "header", HeaderLayout::kProgramOffsetAt,
         fmt::format("{}, just past the record, as a save of the whole document leaves it", what),
         "none: readers look for the tag of the program", ""});
  } else if (aim.first != nullptr) {
    findings.Add(
        {Severity::kError, "header", HeaderLayout::kProgramOffsetAt,
         fmt::format("{}, which is not where its record is, at byte {}", what, aim.first->offset),
         "a program that goes by it reads something else as the program", kRepairPosition});
  } else {
    findings.Add({Severity::kWarning, "header", HeaderLayout::kProgramOffsetAt,
                  fmt::format("{}, but there is no such record", what),
                  "a program that goes by it reads something else as the program",
                  "saving the whole document with a program corrects it"});
  }
}

void checkRunningPosition(const HeaderFields& header, const Aim& aim, Findings& findings) {
  const std::uint32_t position = header.rawDataPosition;
  const std::string what = leadsTo(position, TagOf(Kind::kRawData));
  const std::string block = std::to_string(aim.first->offset);
  // Two offsets are usual: 0, which an interrupted first commit leaves, and the end of the block,
  // which a save of the whole document stores.
  const bool isUsual = position == 0 || aim.isEnd;
  findings.Add(
      {isUsual ? Severity::kWarning : Severity::kError, "header", HeaderLayout::kRawDataOffsetAt,
       aim.isEnd ? fmt::format("{}, just past the block at byte {}, and the run is in "
                               "progress",
                               what, block)
                 : fmt::format("{}, but the block is at byte {}, and the run is in progress", what,
                               block),
       harmToRun(position), "{repair} makes it lead to the block; {resume} does so, too"});
}

// Whether the bytes after the last record may be a block that the reader did not recognise.
bool mayHideBlock(const Document& document) {
  return document.RecordsEnd() + kRecordHeadSize <= document.Size();
}

void checkRawData(const HeaderFields& header, const Aim& aim, const Document& document,
                  Findings& findings) {
  const bool isStudy = document.IsStudy();
  const std::uint32_t position = header.rawDataPosition;
  if (aim.isTag || (position == 0 && aim.first == nullptr)) return;
  if (aim.first != nullptr && header.IsRunning() && !isStudy) {
    return checkRunningPosition(header, aim, findings);
  }
  const std::string what = leadsTo(position, TagOf(Kind::kRawData));
  if (aim.first == nullptr) {
    const bool isHarm = header.IsRunning() && !isStudy;
    findings.Add({isStudy  ? Severity::kNote
                  : isHarm ? Severity::kError
                           : Severity::kWarning,
                  "header", HeaderLayout::kRawDataOffsetAt,
                  fmt::format("{}, but there is no such record", what),
                  isStudy  ? "none: a study has no block of its own"
                  : isHarm ? "frames that an instrument commits would belong to no block"
                           : "programs that read single frames from the file find something else",
                  isStudy                  ? ""
                  : mayHideBlock(document) ? "{recover} looks for the block"
                                           : "{repair} makes it 0"});
    return;
  }
  if (position == 0 || aim.isEnd) {
    findings.Add(
        {Severity::kNote, "header", HeaderLayout::kRawDataOffsetAt,
         what + (aim.isEnd ? ", just past the block, as a save of the whole document leaves it"
                           : ", though there is a block"),
         "programs that read single frames from the file find none", ""});
    return;
  }
  findings.Add(
      {Severity::kError, "header", HeaderLayout::kRawDataOffsetAt,
       fmt::format("{}, which is not where the block is, at byte {}", what, aim.first->offset),
       "programs that read single frames from the file read something else as readings",
       kRepairPosition});
}

// A commit appends its frame to the end of the file, so records after the block would separate the
// frame from the block.
void checkLast(const HeaderFields& header, const Document& document, Findings& findings) {
  const auto& records = document.Records();
  if (!header.IsRunning() || document.IsStudy() || records.empty()) return;
  const auto block = std::find_if(records.begin(), records.end(), [](const auto& record) {
    return record.tag == TagOf(Kind::kRawData);
  });
  if (block == records.end() || block + 1 == records.end()) return;
  findings.Add(
      {Severity::kWarning, std::string(TagOf(Kind::kRawData)), block->offset,
       fmt::format("the run is in progress, and {} its block",
                   Counted(records.end() - block - 1, "record follows", "records follow")),
       "a committed frame would follow these records, and the block's length would be wrong",
       "when the run is over, {setStatus} sets its status"});
}

}  // namespace

void CheckHeader(const HeaderFields& header, const std::string& name, std::uint64_t offset,
                 Findings& findings) {
  checkSize(header, name, offset, findings);
  checkUsage(header, name, offset, findings);
}

void CheckPositions(const HeaderFields& header, const std::vector<PositionedRecord>& records,
                    const Document& document, Findings& findings) {
  checkProgram(header, aimOf(header.programPosition, TagOf(Kind::kProgram), records), findings);
  // If the reader could not read a block to its end, the offset may point to that block.
  if (!document.Fault()) {
    checkRawData(header, aimOf(header.rawDataPosition, TagOf(Kind::kRawData), records), document,
                 findings);
  }
  checkLast(header, document, findings);
}

}  // namespace vex2::lab
