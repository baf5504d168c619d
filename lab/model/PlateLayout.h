#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The sizes of plates. Wells are numbered by rows, from 1.
struct PlateLayout {
  unsigned rows = 8;
  unsigned columns = 12;

  unsigned WellCount() const { return rows * columns; }
  /// The code for this size in a document's header, four characters.
  const char* TypeCode() const { return WellCount() <= 96 ? "p9C " : "p3C "; }
  std::string NameOf(unsigned well) const;
  std::optional<unsigned short> Find(std::string_view wellName) const;
  /// The well with this name as people and other programs write it: "a1", "A01", too.
  std::optional<unsigned short> FindAsWritten(std::string_view wellName) const;
};

inline constexpr PlateLayout kPlate96{8, 12};
inline constexpr PlateLayout kPlate384{16, 24};

/// The name of well `number`, from 1, counted by rows: 1 is "A1", 13 of 12 columns "B1". Rows past
/// Z are AA, AB and so on. The number itself where there are no columns.
std::string WellName(std::uint32_t number, std::uint32_t columns);
/// A well's name as people and other programs write it, "a1" or "A01", without the difference:
/// "A1".
std::string PlainWellName(std::string_view wellName);
/// The number of the well with this name, on a plate with these rows and columns. Returns nothing
/// if it is not the name of a well there.
std::optional<std::uint32_t> WellNumber(std::string_view name, std::uint32_t rows,
                                        std::uint32_t columns);

}  // namespace vex2::lab
