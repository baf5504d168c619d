#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "lab/model/PlateLayout.h"

namespace vex2::lab {

/// Maps the wells of another program's plate to a plate of 96 or 384 wells, the sizes that
/// documents have. Wells keep their row and column if the document's plate has at least as many
/// rows and columns. Otherwise they keep their number, like those of a ring of 72 tubes.
class PlateFit {
 public:
  /// Finds the plate for a file whose plate has these rows and columns. If the file does not give
  /// them, both are 0, and `mostNumber`, the largest well number in the file, decides. Returns
  /// nothing if no document has room.
  static std::optional<PlateFit> Find(std::uint32_t rows, std::uint32_t columns,
                                      std::uint32_t mostNumber);

  const PlateLayout& Plate() const { return plate_; }
  /// Whether the plate in the document has the same size as the plate in the file.
  bool IsSame() const { return plate_.rows == rows_ && plate_.columns == columns_; }
  /// The well in the document for this well number in the file, both from 1; nothing if the number
  /// is not on the plate.
  std::optional<std::uint16_t> WellOf(std::uint32_t number) const;
  /// The two sizes as a text: "6 rows and 8 columns are 8 and 12".
  std::string Text() const;

 private:
  PlateFit(PlateLayout plate, std::uint32_t rows, std::uint32_t columns, bool keepsPlaces)
      : plate_(plate), rows_(rows), columns_(columns), keepsPlaces_(keepsPlaces) {}

  PlateLayout plate_;
  std::uint32_t rows_;
  std::uint32_t columns_;
  bool keepsPlaces_;
};

}  // namespace vex2::lab
