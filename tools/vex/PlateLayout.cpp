#include "tools/vex/PlateLayout.h"

#include "tools/vex/RunReading.h"

namespace vex2::tool {

std::string PlateLayout::NameOf(unsigned well) const {
  return WellName(well, columns);
}

std::optional<unsigned short> PlateLayout::Find(std::string_view wellName) const {
  const auto number = WellNumber(wellName, rows, columns);
  if (!number) return std::nullopt;
  return static_cast<unsigned short>(*number);
}

}  // namespace vex2::tool
