#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vex2::tool {

/// The sizes of plates. Wells are numbered by rows, from 1.
struct PlateLayout {
  unsigned rows = 8;
  unsigned columns = 12;

  unsigned WellCount() const { return rows * columns; }
  /// The code for this size in a document's header, four characters.
  const char* TypeCode() const { return WellCount() <= 96 ? "p9C " : "p3C "; }
  std::string NameOf(unsigned well) const;
  std::optional<unsigned short> Find(std::string_view wellName) const;
};

inline constexpr PlateLayout kPlate96{8, 12};
inline constexpr PlateLayout kPlate384{16, 24};

}  // namespace vex2::tool
