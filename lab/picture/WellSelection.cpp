#include "lab/picture/WellSelection.h"

#include <algorithm>

#include "lab/Error.h"
#include "lab/model/PlateLayout.h"

namespace vex2::lab {

namespace {

std::uint32_t wellIn(std::string_view name, const Plate& plate) {
  const auto number = WellNumber(PlainWellName(name), plate.rows, plate.columns);
  if (number) return *number;
  throw Error(ErrorCode::kNoSuchWell, "there is no well '" + std::string(name) +
                                          "' on a plate of " + std::to_string(plate.rows) +
                                          " rows and " + std::to_string(plate.columns) +
                                          " columns; name wells as in A1:C6,D4");
}

void addRectangle(std::set<std::uint32_t>& wells, std::uint32_t one, std::uint32_t other,
                  std::uint32_t columns) {
  const auto rows = std::minmax({(one - 1) / columns, (other - 1) / columns});
  const auto across = std::minmax({(one - 1) % columns, (other - 1) % columns});
  for (std::uint32_t row = rows.first; row <= rows.second; ++row) {
    for (std::uint32_t column = across.first; column <= across.second; ++column) {
      wells.insert(row * columns + column + 1);
    }
  }
}

}  // namespace

std::set<std::uint32_t> WellSelection::On(const Plate& plate) const {
  std::set<std::uint32_t> wells;
  std::string_view rest = text_;
  while (!rest.empty()) {
    const std::string_view part = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    const std::size_t colon = part.find(':');
    const std::uint32_t first = wellIn(part.substr(0, colon), plate);
    const std::uint32_t last =
        colon == std::string_view::npos ? first : wellIn(part.substr(colon + 1), plate);
    addRectangle(wells, first, last, plate.columns);
  }
  return wells;
}

}  // namespace vex2::lab
