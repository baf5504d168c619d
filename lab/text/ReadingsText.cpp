#include "lab/text/ReadingsText.h"

#include <algorithm>
#include <vector>

#include "lab/csv/ReadingFields.h"
#include "lab/model/PlateLayout.h"
#include "lab/text/Table.h"

namespace vex2::lab {

namespace {

using Rows = std::vector<std::vector<std::string>>;

}  // namespace

std::string ReadingsTable(const FrameView& view, const TextForm& form) {
  std::vector<std::string> names = {"well"};
  const auto fieldNames = ReadingNames(view.recorded.Log().value_or(RunLog()));
  names.insert(names.end(), fieldNames.begin(), fieldNames.end());
  Rows rows;
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    std::vector<std::string> row = {view.NameOf(i)};
    if (const auto reading = view.ReadingOf(i)) {
      const auto fields = ReadingFields(*reading, *view.recorded.Log());
      row.insert(row.end(), fields.begin(), fields.end());
    }
    row.resize(names.size());
    rows.push_back(std::move(row));
  }
  return DrawTable(names, rows, form);
}

// The meaning of leading values 0 and 4 is known for any document.
std::string StoredTable(const FrameView& view, const TextForm& form) {
  const std::size_t count = view.DataColumns();
  std::vector<std::string> names = {"well", "set", "l1", "l2", "l3", "first", "l5", "l6", "l7"};
  for (std::size_t i = 0; i < count; ++i) names.push_back("d" + std::to_string(i));
  Rows rows;
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    const Vex2WellRecord& record = view.frame.records[i];
    std::vector<std::string> row = {view.NameOf(i)};
    for (const std::uint16_t value : record.leading) row.push_back(std::to_string(value));
    for (std::size_t d = 0; d < count; ++d) row.push_back(std::to_string(record.data[d]));
    rows.push_back(std::move(row));
  }
  return DrawTable(names, rows, form);
}

std::string ReadingsGrid(const FrameView& view, std::size_t field, const TextForm& form) {
  constexpr const char* kNothing = "-";
  const std::uint32_t columns = std::max(view.columns, 1U);
  std::vector<std::string> names = {""};
  for (std::uint32_t column = 1; column <= columns; ++column) {
    names.push_back(std::to_string(column));
  }
  Rows rows;
  for (std::uint32_t row = 0; row < view.rows; ++row) {
    rows.emplace_back(names.size(), kNothing);
    rows.back().front() = WellName(row * columns + 1, columns);
    rows.back().front().pop_back();  // removes the column, which is 1
  }
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    const std::uint32_t place = view.wells[i] - 1U;
    const auto reading = view.ReadingOf(i);
    if (!reading || place / columns >= rows.size()) continue;
    rows[place / columns][place % columns + 1] =
        ReadingFields(*reading, *view.recorded.Log())[field];
  }
  return DrawTable(names, rows, form);
}

}  // namespace vex2::lab
