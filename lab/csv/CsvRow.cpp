#include "lab/csv/CsvRow.h"

#include <fmt/core.h>

#include <cmath>

#include "lab/Text.h"

namespace vex2::lab {

void CsvRow::Refuse(const std::string& why, ErrorRemedy remedy) const {
  throw Error(ErrorCode::kDocument, file_, fmt::format("row {}: {}", number_, why), std::nullopt,
              remedy);
}

void CsvRow::RefuseField(std::size_t column, const std::string& why, ErrorRemedy remedy) const {
  Refuse(fmt::format("{} {} {}", columns_[column], Quoted(Text(column)), why), remedy);
}

std::string CsvRow::PointText(std::size_t column, std::string_view text) const {
  DecimalMark::Plain plain = mark_.Read(text, fields_);
  if (plain.why.empty()) return std::move(plain.text);
  if (text == Text(column)) RefuseField(column, plain.why, plain.remedy);
  Refuse(fmt::format("{} among the {} {}", Quoted(text), columns_[column], plain.why),
         plain.remedy);
}

double CsvRow::AnyDecimal(std::size_t column) const {
  const auto value = NumberIn<double>(PointText(column, Text(column)));
  if (!value || !std::isfinite(*value)) RefuseField(column, "is not a number");
  return *value;
}

double CsvRow::Decimal(std::size_t column, double most) const {
  const double value = AnyDecimal(column);
  if (value < 0) RefuseField(column, "is negative");
  if (value > most) RefuseField(column, "is too large");
  return value;
}

unsigned CsvRow::Whole(std::size_t column, unsigned least, unsigned most) const {
  const auto value = NumberIn<unsigned>(Text(column));
  if (!value || *value < least || *value > most) {
    RefuseField(column, fmt::format("is not a whole number from {} to {}", least, most));
  }
  return *value;
}

}  // namespace vex2::lab
