#include "lab/csv/CalibrationFile.h"

#include <fmt/core.h>

#include <bit>
#include <cmath>
#include <limits>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/csv/CsvReader.h"
#include "lab/csv/WellsFile.h"

namespace vex2::lab {

namespace {

struct CalibrationColumn {
  enum : std::size_t {
    kPart,
    kName,
    kDyeIndex,
    kKey1,
    kKey2,
    kByte1,
    kByte2,
    kParam1,
    kParam2,
    kParam3,
    kLimit,
    kValues
  };
};
const std::vector<std::string_view> kCalibrationColumns = {
    "part",  "name",   "dye_index", "key1",   "key2",  "byte1",
    "byte2", "param1", "param2",    "param3", "limit", "values"};
constexpr std::string_view kPureDye = "pure-dye";
constexpr std::string_view kBackground = "background";
constexpr unsigned kMostShort = 65535;
constexpr unsigned kMostByte = 255;

// A value that is not a finite number becomes the hexadecimal digits of its four bytes, so that it
// is not lost.
std::string valueText(std::uint32_t value) {
  const float number = NumberOf(value);
  if (std::isfinite(number)) return DecimalText(number);
  std::string bytes;
  for (unsigned shift = 32; shift > 0; shift -= 8) {
    bytes += static_cast<char>(value >> (shift - 8) & 0xFFU);
  }
  return "0x" + ToHex(bytes);
}

std::uint32_t readValue(const CsvRow& row, const std::string& text, FloatReader& values) {
  if (text.starts_with("0x")) {
    const auto bits = NumberIn<std::uint32_t>(std::string_view(text).substr(2), 16);
    if (bits) return *bits;
  }
  const auto number = NumberIn<double>(text);
  if (!number || !(std::abs(*number) <= std::numeric_limits<float>::max())) {
    row.Refuse(fmt::format("{} among the values is not a number of 32 bits", Quoted(text)));
  }
  return std::bit_cast<std::uint32_t>(values.Keep(row, "value", text, *number));
}

void writePart(const CalibrationPart& part, std::string_view name, CsvWriter& csv,
               const std::string& plate) {
  const bool isDye = name == kPureDye;
  const auto own = [](bool has, unsigned number) { return has ? std::to_string(number) : ""; };
  for (const CalibrationEntry& entry : part.entries) {
    std::string values;
    for (const std::uint32_t value : entry.values) {
      values += (values.empty() ? "" : " ") + valueText(value);
    }
    csv.Row(plate,
            {std::string(name), entry.name, std::to_string(entry.dyeIndex),
             std::to_string(entry.key1), std::to_string(entry.key2), own(isDye, entry.bytes[0]),
             own(isDye, entry.bytes[1]), own(isDye, entry.params[0]), own(isDye, entry.params[1]),
             own(isDye, entry.params[2]), own(!isDye, entry.limit), values});
  }
}

std::vector<std::uint32_t> valuesOf(const CsvRow& row, FloatReader& reader) {
  std::vector<std::uint32_t> values;
  std::string_view rest = row.Text(CalibrationColumn::kValues);
  while (!rest.empty()) {
    const std::string_view text = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(rest.size(), text.size() + 1));
    if (text.empty()) continue;
    values.push_back(readValue(row, row.PointText(CalibrationColumn::kValues, text), reader));
  }
  if (values.size() > kMostByte) row.Refuse("a spectrum has 255 values at most");
  return values;
}

std::uint16_t shortOf(const CsvRow& row, std::size_t column) {
  return static_cast<std::uint16_t>(row.Whole(column, 0, kMostShort));
}

CalibrationEntry entryOf(const CsvRow& row, bool isDye, FloatReader& values) {
  CalibrationEntry entry;
  const auto name = ToLatin1(row.Text(CalibrationColumn::kName));
  if (!name || name->size() > kMostByte) {
    row.RefuseField(CalibrationColumn::kName, "is not a text of 255 Latin-1 characters at most");
  }
  entry.name = row.Text(CalibrationColumn::kName);
  entry.dyeIndex = shortOf(row, CalibrationColumn::kDyeIndex);
  entry.key1 = shortOf(row, CalibrationColumn::kKey1);
  entry.key2 = shortOf(row, CalibrationColumn::kKey2);
  if (isDye) {
    entry.bytes = {static_cast<std::uint8_t>(row.Whole(CalibrationColumn::kByte1, 0, kMostByte)),
                   static_cast<std::uint8_t>(row.Whole(CalibrationColumn::kByte2, 0, kMostByte))};
    entry.params = {shortOf(row, CalibrationColumn::kParam1),
                    shortOf(row, CalibrationColumn::kParam2),
                    shortOf(row, CalibrationColumn::kParam3)};
  } else {
    entry.limit = shortOf(row, CalibrationColumn::kLimit);
  }
  entry.values = valuesOf(row, values);
  return entry;
}

}  // namespace

const std::vector<std::string_view>& CalibrationColumns() {
  return kCalibrationColumns;
}

void WriteCalibrationColumns(CsvWriter& csv) {
  csv.Row("plate", {kCalibrationColumns.begin(), kCalibrationColumns.end()});
}

void WriteCalibration(const Calibration& calibration, CsvWriter& csv, const std::string& plate) {
  if (calibration.pureDyes) writePart(*calibration.pureDyes, kPureDye, csv, plate);
  if (calibration.background) writePart(*calibration.background, kBackground, csv, plate);
}

Calibration LoadCalibration(const std::string& path, FloatReader& values, const CsvFormat& format) {
  Calibration calibration;
  ReadCsv(path, kCalibrationColumns,
          [&](const CsvRow& row) {
            const bool isDye = row.Text(CalibrationColumn::kPart) == kPureDye;
            if (!isDye && row.Text(CalibrationColumn::kPart) != kBackground) {
              row.RefuseField(CalibrationColumn::kPart, "is neither 'pure-dye' nor 'background'");
            }
            auto& part = isDye ? calibration.pureDyes : calibration.background;
            if (!part) part.emplace();
            if (part->entries.size() == kMostShort) row.Refuse("a part has 65535 spectra at most");
            part->entries.push_back(entryOf(row, isDye, values));
          },
          {.format = format});
  if (calibration.IsEmpty()) throw Error(ErrorCode::kDocument, CsvName(path), "holds no spectra");
  return calibration;
}

}  // namespace vex2::lab
