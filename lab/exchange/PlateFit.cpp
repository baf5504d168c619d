#include "lab/exchange/PlateFit.h"

namespace vex2::lab {

std::optional<PlateFit> PlateFit::Find(std::uint32_t rows, std::uint32_t columns,
                                       std::uint32_t mostNumber) {
  for (const PlateLayout& plate : {kPlate96, kPlate384}) {
    if (rows > 0 && columns > 0) {
      if (rows <= plate.rows && columns <= plate.columns)
        return PlateFit(plate, rows, columns, true);
    } else if (mostNumber <= plate.WellCount()) {
      return PlateFit(plate, 0, 0, false);
    }
  }
  for (const PlateLayout& plate : {kPlate96, kPlate384}) {
    const std::uint64_t wells = std::uint64_t{rows} * columns;
    if (wells > 0 && wells <= plate.WellCount()) return PlateFit(plate, rows, columns, false);
  }
  return std::nullopt;
}

std::optional<std::uint16_t> PlateFit::WellOf(std::uint32_t number) const {
  const std::uint32_t wells = rows_ > 0 ? rows_ * columns_ : plate_.WellCount();
  if (number < 1 || number > wells) return std::nullopt;
  if (!keepsPlaces_) return static_cast<std::uint16_t>(number);
  const std::uint32_t row = (number - 1) / columns_;
  const std::uint32_t column = (number - 1) % columns_;
  return static_cast<std::uint16_t>(row * plate_.columns + column + 1);
}

std::string PlateFit::Text() const {
  const std::string stored = std::to_string(plate_.rows) + " and " + std::to_string(plate_.columns);
  if (rows_ == 0) return "none is given; it is taken as " + stored;
  return std::to_string(rows_) + " rows and " + std::to_string(columns_) + " columns are " + stored;
}

}  // namespace vex2::lab
