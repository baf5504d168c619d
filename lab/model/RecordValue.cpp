#include "lab/model/RecordValue.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

void toBody(CFile& file, const FileRecord& record) {
  file.Seek(static_cast<std::int64_t>(record.BodyOffset()), CFile::begin);
}

template <typename Number>
RecordValue numberOrNone(const std::optional<Number>& number) {
  return number ? RecordValue(std::uint32_t{*number}) : RecordValue();
}

std::optional<std::uint8_t> readByte(CFile& file) {
  std::uint8_t byte = 0;
  return file.Read(&byte, 1) == 1 ? std::optional(byte) : std::nullopt;
}

// Floating-point numbers are little-endian in documents, unlike all other numbers.
RecordValue readFloat(CFile& file) {
  const auto bits = ReadLong(file);
  if (!bits) return {};
  const std::uint32_t swapped =
      *bits >> 24U | (*bits >> 8U & 0xFF00U) | (*bits & 0xFF00U) << 8U | *bits << 24U;
  const float value = std::bit_cast<float>(swapped);
  return std::isfinite(value) ? RecordValue(value) : RecordValue();
}

RecordValue readColour(CFile& file) {
  RecordColour parts{};
  if (file.Read(parts.data(), parts.size()) < parts.size()) return {};
  return parts;
}

CellFields readCell(CFile& file, const FileRecord& record) {
  static_cast<void>(ReadListCount(file, record));
  CellFields fields;
  fields.coord1 = ReadShort(file);
  fields.coord2 = ReadShort(file);
  fields.flag = readByte(file);
  return fields;
}

}  // namespace

std::string ReadRecordBytes(CFile& file, const FileRecord& record, std::uint64_t most) {
  toBody(file, record);
  const std::uint64_t count = std::min({std::uint64_t{record.length}, file.GetRemaining(), most});
  std::string bytes(count, '\0');
  file.Read(bytes.data(), bytes.size());
  return bytes;
}

std::string ReadRecordText(CFile& file, const FileRecord& record, std::uint64_t most) {
  std::string bytes = ReadRecordBytes(file, record, most);
  if (!bytes.empty() && bytes.back() == '\0') bytes.pop_back();
  return bytes;
}

std::optional<std::uint16_t> ReadListCount(CFile& file, const FileRecord& record) {
  toBody(file, record);
  return ReadShort(file);
}

RecordValue ReadRecordValue(CFile& file, const FileRecord& record) {
  if (record.length == 0) return {};
  toBody(file, record);
  switch (record.kind->layout) {
    case BodyLayout::kByte:
      return numberOrNone(readByte(file));
    case BodyLayout::kShort:
      return numberOrNone(ReadShort(file));
    case BodyLayout::kLong:
      return numberOrNone(ReadLong(file));
    case BodyLayout::kFloat:
      return readFloat(file);
    case BodyLayout::kColor:
      return readColour(file);
    case BodyLayout::kText:
      return ToUtf8(ReadRecordText(file, record, record.length));
    case BodyLayout::kBytes:
    case BodyLayout::kPureDyes:
    case BodyLayout::kBackground:
      return RecordBytes{ReadRecordBytes(file, record, record.length)};
    default:
      return {};
  }
}

RecordFields ReadRecordFields(CFile& file, const FileRecord& record) {
  if (record.length == 0) return {};
  if (record.kind->layout == BodyLayout::kCell) return readCell(file, record);
  if (record.kind->layout != BodyLayout::kData) return {};
  auto head = ReadStoredBlock(file, record);
  return head ? RecordFields(std::move(*head)) : RecordFields();
}

}  // namespace vex2::lab
