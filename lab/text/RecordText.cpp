#include "lab/text/RecordText.h"

#include <algorithm>

#include "lab/Text.h"
#include "lab/model/Value.h"
#include "lab/text/Columns.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kShownBytes = 16;

std::string describeData(CFile& file, const FileRecord& record) {
  const RecordFields fields = ReadRecordFields(file, record);
  const auto* head = std::get_if<StoredBlock>(&fields);
  if (head == nullptr) return "";
  std::string text =
      Counted(head->frameCount, "frame") + " of " + Counted(head->wells.size(), "well");
  if (head->version != 2) text += ", version " + std::to_string(head->version);
  return text;
}

std::string describeBytes(CFile& file, const FileRecord& record, const TextForm& form) {
  std::string text = ToHex(ReadRecordBytes(file, record, kShownBytes));
  return record.length > kShownBytes ? text + std::string(form.Ellipsis()) : text;
}

std::string describeList(CFile& file, const FileRecord& record) {
  const auto count = record.length > 0 ? ReadListCount(file, record) : std::uint16_t{0};
  return count ? Counted(*count, "record") : "";
}

std::string describeValue(const RecordValue& value) {
  if (const auto* whole = std::get_if<std::uint32_t>(&value)) return std::to_string(*whole);
  if (const auto* number = std::get_if<float>(&value)) return ValueText(*number);
  const auto* colour = std::get_if<RecordColour>(&value);
  if (colour == nullptr) return "";
  std::string text;
  for (const unsigned part : *colour) text += (text.empty() ? "[" : ",") + std::to_string(part);
  return text + "]";
}

std::string describeContent(CFile& file, const FileRecord& record, std::size_t width,
                            const TextForm& form) {
  switch (record.kind->layout) {
    case BodyLayout::kText:
      return form.Shown(ReadRecordText(file, record, width + 1), width);
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
      return describeBytes(file, record, form);
    default:
      return describeValue(ReadRecordValue(file, record));
  }
}

}  // namespace

std::string DescribeRecord(CFile& file, const FileRecord& record, std::size_t width,
                           const TextForm& form) {
  std::string text(record.kind->meaning);
  if (!text.empty()) text += "  ";
  const std::size_t taken = std::min(Columns(text), width);
  return form.CutTo(text + describeContent(file, record, width - taken, form), width);
}

}  // namespace vex2::lab
