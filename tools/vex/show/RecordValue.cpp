#include "tools/vex/show/RecordValue.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "lab/model/DataBlock.h"
#include "lab/model/Settings.h"
#include "tools/vex/Lab.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kShownBytes = 16;

void toBody(CFile& file, const FileRecord& record) {
  file.Seek(static_cast<std::int64_t>(record.BodyOffset()), CFile::begin);
}

// Up to `most` bytes of the body, as many as the file has.
std::string bodyBytes(CFile& file, const FileRecord& record, std::uint64_t most) {
  toBody(file, record);
  const std::uint64_t count = std::min({std::uint64_t{record.length}, file.GetRemaining(), most});
  std::string bytes(count, '\0');
  file.Read(bytes.data(), bytes.size());
  return bytes;
}

template <typename Value>
ordered_json orNull(const std::optional<Value>& value) {
  return value ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json byteValue(CFile& file, const FileRecord& record) {
  const std::string bytes = bodyBytes(file, record, 1);
  if (bytes.empty()) return nullptr;
  return static_cast<unsigned char>(bytes.front());
}

// Floats alone are little-endian in documents.
ordered_json floatValue(CFile& file) {
  auto bits = ReadLong(file);
  if (!bits) return nullptr;
  const std::uint32_t swapped =
      *bits >> 24U | (*bits >> 8U & 0xFF00U) | (*bits & 0xFF00U) << 8U | *bits << 24U;
  const float value = std::bit_cast<float>(swapped);
  return std::isfinite(value) ? ordered_json(value) : ordered_json(nullptr);
}

std::string textOf(std::string bytes) {
  if (!bytes.empty() && bytes.back() == '\0') bytes.pop_back();
  return bytes;
}

ordered_json colourValue(CFile& file, const FileRecord& record) {
  constexpr std::size_t kParts = 3;
  toBody(file, record);
  std::array<unsigned char, kParts> parts{};
  if (file.Read(parts.data(), parts.size()) < parts.size()) return nullptr;
  return parts;
}

std::string describeData(CFile& file, const FileRecord& record) {
  const auto head = record.length > 0 ? ReadStoredBlock(file, record) : std::nullopt;
  if (!head) return "";
  std::string text =
      Counted(head->frameCount, "frame") + " of " + Counted(head->wells.size(), "well");
  if (head->version != 2) text += ", version " + std::to_string(head->version);
  return text;
}

std::string describeBytes(CFile& file, const FileRecord& record) {
  std::string text = ToHex(bodyBytes(file, record, kShownBytes));
  return record.length > kShownBytes ? text + std::string(Ellipsis()) : text;
}

std::string describeList(CFile& file, const FileRecord& record) {
  toBody(file, record);
  const auto count = record.length > 0 ? ReadShort(file) : std::uint16_t{0};
  return count ? Counted(*count, "record") : "";
}

std::string describeContent(CFile& file, const FileRecord& record, std::size_t width) {
  switch (record.kind->layout) {
    case BodyLayout::kText:
      return Shown(textOf(bodyBytes(file, record, width + 1)), width);
    case BodyLayout::kData:
      return describeData(file, record);
    case BodyLayout::kList:
    case BodyLayout::kCell:
      return describeList(file, record);
    case BodyLayout::kPlate:
      return "";
    case BodyLayout::kBytes:
    case BodyLayout::kPureDyes:
    case BodyLayout::kBackground:
    case BodyLayout::kUnknown:
      return describeBytes(file, record);
    default: {
      const ordered_json value = ReadRecordValue(file, record);
      return value.is_array() ? value.dump() : JsonText(value);
    }
  }
}

}  // namespace

ordered_json ReadRecordValue(CFile& file, const FileRecord& record) {
  if (record.length == 0) return nullptr;
  toBody(file, record);
  switch (record.kind->layout) {
    case BodyLayout::kByte:
      return byteValue(file, record);
    case BodyLayout::kShort:
      return orNull(ReadShort(file));
    case BodyLayout::kLong:
      return orNull(ReadLong(file));
    case BodyLayout::kFloat:
      return floatValue(file);
    case BodyLayout::kColor:
      return colourValue(file, record);
    case BodyLayout::kText:
      return ToUtf8(textOf(bodyBytes(file, record, record.length)));
    case BodyLayout::kBytes:
    case BodyLayout::kPureDyes:
    case BodyLayout::kBackground:
      return ToHex(bodyBytes(file, record, record.length));
    default:
      return nullptr;
  }
}

ordered_json ReadRecordFields(CFile& file, const FileRecord& record) {
  ordered_json fields = ordered_json::object();
  if (record.length == 0) return fields;
  if (record.kind->layout == BodyLayout::kCell) {
    toBody(file, record);
    static_cast<void>(ReadShort(file));
    fields["coord1"] = orNull(ReadShort(file));
    fields["coord2"] = orNull(ReadShort(file));
    unsigned char flag = 0;
    if (file.Read(&flag, 1) == 1) fields["flag"] = flag;
  } else if (record.kind->layout == BodyLayout::kData) {
    if (const auto head = ReadStoredBlock(file, record)) {
      fields["version"] = head->version;
      fields["startTime"] = head->start.fields;
      fields["endTime"] = head->end.fields;
      fields["wellNumbers"] = head->wells;
      fields["frames"] = head->frameCount;
    }
  }
  return fields;
}

std::string DescribeRecord(CFile& file, const FileRecord& record, std::size_t width) {
  std::string text(record.kind->meaning);
  if (!text.empty()) text += "  ";
  const std::size_t taken = std::min(Columns(text), width);
  return CutTo(text + describeContent(file, record, width - taken), width);
}

}  // namespace vex2::tool
