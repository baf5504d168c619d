#include "lab/model/RecordWalk.h"

#include "lab/Text.h"
#include "vex2/format/Encoding.h"

namespace vex2::lab {

namespace {

std::string describe(const WalkFault& fault) {
  using Reason = WalkFault::Reason;
  const std::string name = "the record \"" + ToUtf8({fault.tag.data(), fault.tag.size()}) + "\"";
  const auto cutShort = [&](const char* unit) {
    return name + " is cut short: " + std::to_string(fault.available) + " of " +
           Counted(fault.expected, unit) + " are there";
  };
  switch (fault.reason) {
    case Reason::kNoLength:
      return name + " ends before its length";
    case Reason::kTooDeep:
      return "records are nested too deep";
    case Reason::kBytesMissing:
      return cutShort("byte");
    case Reason::kNoCount:
      return name + " ends before its count";
    case Reason::kRecordsMissing:
      return cutShort("record");
    case Reason::kNoPlateEnd:
      return name + " has no end";
    case Reason::kNoFrames:
      return name + " ends before its frames";
    case Reason::kFramesMissing:
      return cutShort("frame");
  }
  return {};
}

}  // namespace

WalkEnd WalkRecords(CFile& file, RecordVisitor& visitor) {
  const RecordWalk walk = WalkRecordsOf(file, visitor);
  WalkEnd end{walk.offset, std::nullopt};
  if (walk.fault) end.fault = FileFault{walk.fault->offset, describe(*walk.fault)};
  return end;
}

std::optional<std::uint16_t> ReadShort(CFile& file) {
  std::uint16_t value = 0;
  return ReadField(file, value) ? std::optional(value) : std::nullopt;
}

std::optional<std::uint32_t> ReadLong(CFile& file) {
  std::uint32_t value = 0;
  return ReadField(file, value) ? std::optional(value) : std::nullopt;
}

}  // namespace vex2::lab
