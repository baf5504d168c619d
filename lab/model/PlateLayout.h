#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The size of a plate. Well numbers count along the rows, from 1.
struct PlateLayout {
  unsigned rows = 8;
  unsigned columns = 12;

  unsigned WellCount() const { return rows * columns; }
  /// The plate type code for this size in a document's header, four characters.
  const char* TypeCode() const { return WellCount() <= 96 ? "p9C " : "p3C "; }
  std::string NameOf(unsigned well) const;
  std::optional<unsigned short> Find(std::string_view wellName) const;
  /// The number of the well with this name. Also takes the spellings of other programs: "a1",
  /// "A01".
  std::optional<unsigned short> FindAsWritten(std::string_view wellName) const;
};

inline constexpr PlateLayout kPlate96{8, 12};
inline constexpr PlateLayout kPlate384{16, 24};

/// The name of well `number`, which counts along the rows from 1: on 12 columns, 1 is "A1" and 13
/// is "B1". Rows after Z are AA, AB and so on. If there are no columns, the name is the number
/// itself.
std::string WellName(std::uint32_t number, std::uint32_t columns);
/// Converts a well name in another spelling, "a1" or "A01", to "A1".
std::string PlainWellName(std::string_view wellName);
/// The number of the well with this name, on a plate with these rows and columns. Returns nothing
/// if that plate has no such well.
std::optional<std::uint32_t> WellNumber(std::string_view name, std::uint32_t rows,
                                        std::uint32_t columns);

}  // namespace vex2::lab
