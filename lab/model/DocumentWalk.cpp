#include "lab/model/DocumentWalk.h"

#include <fmt/core.h>

#include "lab/Text.h"
#include "vex2/format/Encoding.h"

namespace vex2::lab {

namespace {

std::string describe(const WalkFault& fault) {
  using Reason = WalkFault::Reason;
  const std::string name =
      fmt::format("the record \"{}\"", ToUtf8({fault.tag.data(), fault.tag.size()}));
  const auto cutShort = [&](const char* unit) {
    return fmt::format("{} is cut short: {} of {} are there", name, fault.available,
                       Counted(fault.expected, unit));
  };
  switch (fault.reason) {
    case Reason::kNoLength:
      return fmt::format("{} ends before its length", name);
    case Reason::kTooDeep:
      return "records are nested too deep";
    case Reason::kBytesMissing:
      return cutShort("byte");
    case Reason::kNoCount:
      return fmt::format("{} ends before its count", name);
    case Reason::kRecordsMissing:
      return cutShort("record");
    case Reason::kNoPlateEnd:
      return fmt::format("{} has no end", name);
    case Reason::kNoFrames:
      return fmt::format("{} ends before its frames", name);
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
