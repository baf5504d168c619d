#include "lab/check/UncommittedCheck.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kReadings = TagOf(Kind::kRawData);
constexpr const char* kNotCommitted =
    "no committed frame is lost, but an instrument that appends frames here without first checking "
    "the end of the file would damage the frames that it appends";
constexpr const char* kResume = "{resume} and {repair} cut it off";

// Adds the finding about a block that the end of the file cuts off.
void checkCutBlock(CFile& file, const Document& document, const HeaderFields& header,
                   const FileFault& fault, Findings& findings) {
  const auto block = FindLastBlock(file, document);
  if (header.AwaitsFirstCommit() && IsFirstCommit(file, fault.offset, header.Wells())) {
    findings.Add({Severity::kWarning, std::string(kReadings), fault.offset,
                  "a block that the end of the file cuts off, and whose offset is not in the "
                  "header: its first commit was interrupted",
                  "nothing that was committed is lost; an instrument that continues would write a "
                  "second block after it",
                  kResume});
    return;
  }
  const bool canRepair = block && block->head.version >= 2;
  findings.Add(
      {Severity::kError, std::string(kReadings), fault.offset, fault.what,
       "no frame of the block is read, not even the whole ones",
       canRepair ? "{repair} sets the length to the whole frames that are there" : kRecoverWhole});
}

void checkFault(CFile& file, const Document& document, const HeaderFields& header,
                const RecordCheck& records, Findings& findings) {
  const FileFault& fault = *document.Fault();
  const auto& own = document.Records();
  const bool isBlock =
      !own.empty() && own.back().tag == kReadings && own.back().offset == fault.offset;
  if (isBlock) return checkCutBlock(file, document, header, fault, findings);
  const std::uint64_t lost = document.Size() - std::min(document.Size(), fault.offset);
  const std::string name = own.empty() ? "header" : records.NameAt(fault.offset);
  findings.Add({Severity::kError, name, fault.offset, fault.what,
                lost == 0 ? "the document has no records"
                          : fmt::format("nothing is read from there on: {} of {}", lost,
                                        Counted(document.Size(), "byte")),
                records.CanRepairLengths()
                    ? "{repair} sets the lengths of records; check the document again then"
                    : kRecoverWhole});
}

void checkBehindBlock(const LastBlock& block, const Document& document, const HeaderFields& header,
                      Findings& findings) {
  const std::uint64_t from = document.RecordsEnd();
  const std::uint64_t bytes = document.Size() - from;
  const std::uint64_t whole = bytes / block.head.frameSize;
  const std::uint64_t rest = bytes % block.head.frameSize;
  const std::string partText =
      fmt::format("{} of the {} bytes of a frame", rest, block.head.frameSize);
  const bool isOfACommit =
      UncommittedBehind(block.Range(document.Size()), from) == Uncommitted::kCommit;
  if (header.IsUnfinished() && isOfACommit) {
    findings.Add(
        {Severity::kWarning, std::string(kReadings), from,
         whole == 1
             ? "a whole frame follows the end that the block's length declares: a commit was "
               "interrupted"
             : fmt::format(
                   "{} follow the end that the block's length declares: a commit was interrupted",
                   partText),
         kNotCommitted,
         whole == 1 ? "{repair} counts it when each well has a reading in it; "
                      "{resume} cuts it off and records it again"
                    : kResume});
    return;
  }
  if (whole == 0) {
    findings.Add({Severity::kError, std::string(kReadings), from,
                  fmt::format("{} follow the end that the block's length declares", partText),
                  "they are not read, and a save drops them", "{repair} cuts them off"});
    return;
  }
  findings.Add({Severity::kError, std::string(kReadings), from,
                rest > 0
                    ? fmt::format("{} and {} follow the end that the block's length declares",
                                  Counted(whole, "whole frame"), partText)
                    : fmt::format("{} the end that the block's length declares",
                                  Counted(whole, "whole frame follows", "whole frames follow")),
                fmt::format("the block is read with {}, and a save drops the others",
                            Counted(block.head.frameCount, "frame")),
                "{repair} counts those in which each well has a reading"});
}

void checkBehindRecords(CFile& file, const Document& document, const HeaderFields& header,
                        Findings& findings) {
  const std::uint64_t from = document.RecordsEnd();
  const std::uint64_t bytes = document.Size() - from;
  if (bytes == 0) return;
  if (const auto block = FindLastBlock(file, document)) {
    return checkBehindBlock(*block, document, header, findings);
  }
  if (EndsInFirstCommit(file, document, header)) {
    findings.Add(
        {Severity::kWarning, "", from,
         fmt::format("{} of a block without its tag follow the last record: a first commit "
                     "was interrupted",
                     Counted(bytes, "byte")),
         kNotCommitted, kResume});
    return;
  }
  const bool canHide = bytes >= kRecordHeadSize;
  findings.Add({canHide ? Severity::kError : Severity::kWarning, "", from,
                fmt::format("{} the last record, and are not a known record",
                            Counted(bytes, "byte follows", "bytes follow")),
                canHide ? "they are not read, a save drops them, and there may be records in them"
                        : "too few for a record; they are not read, and a save drops them",
                canHide ? "{recover} looks for records in them" : "{repair} cuts them off"});
}

}  // namespace

bool EndsInFirstCommit(CFile& file, const Document& document, const HeaderFields& header) {
  const auto& records = document.Records();
  const bool hasBlock = std::any_of(records.begin(), records.end(),
                                    [](const auto& record) { return record.tag == kReadings; });
  return !hasBlock && header.AwaitsFirstCommit() &&
         IsFirstCommit(file, document.RecordsEnd(), header.Wells());
}

std::optional<LastBlock> FindLastBlock(CFile& file, const Document& document) {
  const auto& records = document.Records();
  if (records.empty() || records.back().tag != kReadings || records.back().length == 0) {
    return std::nullopt;
  }
  LastBlock block;
  block.record.offset = records.back().offset;
  block.record.length = records.back().length;
  auto head = ReadStoredBlock(file, block.record);
  if (!head || head->frameSize == 0) return std::nullopt;
  block.head = std::move(*head);
  return block;
}

void CheckEnd(CFile& file, const Document& document, const HeaderFields& header,
              const RecordCheck& records, Findings& findings) {
  if (document.Fault()) {
    checkFault(file, document, header, records, findings);
  } else {
    checkBehindRecords(file, document, header, findings);
  }
}

}  // namespace vex2::lab
