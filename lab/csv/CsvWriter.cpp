#include "lab/csv/CsvWriter.h"

#include <csv.h>

namespace vex2::lab {

namespace {

bool needsQuotes(std::string_view field) {
  constexpr std::string_view kBlanks = " \t";
  // Without quotes, many readers remove blanks at the ends of a field.
  const bool hasBlankEnd =
      !field.empty() && (kBlanks.find(field.front()) != std::string_view::npos ||
                         kBlanks.find(field.back()) != std::string_view::npos);
  return hasBlankEnd || field.find_first_of(",\"\r\n") != std::string_view::npos;
}

}  // namespace

std::string CsvField(const std::string& text) {
  if (!needsQuotes(text)) return text;
  std::string quoted(csv_write(nullptr, 0, text.data(), text.size()), '\0');
  csv_write(quoted.data(), quoted.size(), text.data(), text.size());
  return quoted;
}

void CsvWriter::Row(const std::string& plate, const std::vector<std::string>& fields) {
  if (hasPlates_) out_ << CsvField(plate);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (hasPlates_ || i > 0) out_ << ',';
    out_ << CsvField(fields[i]);
  }
  out_ << '\n';
}

}  // namespace vex2::lab
