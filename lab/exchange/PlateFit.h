#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "lab/model/PlateLayout.h"

namespace vex2::lab {

/// Where the wells of a foreign plate go on a plate of 96 or 384 wells, the sizes that documents
/// have. Wells keep their row and column where the plate is large enough in both directions;
/// otherwise, as those of a ring of 72 tubes, they keep their number.
class PlateFit {
 public:
  /// A plate of that many rows and columns; 0 for a size that the file does not give, so that
  /// `mostNumber`, its largest number of a well, decides. Returns nothing if no document has room.
  static std::optional<PlateFit> Find(std::uint32_t rows, std::uint32_t columns,
                                      std::uint32_t mostNumber);

  const PlateLayout& Plate() const { return plate_; }
  /// Whether the document's plate is the file's.
  bool IsSame() const { return plate_.rows == rows_ && plate_.columns == columns_; }
  /// The well of this number in the file, from 1; nothing for one that is not on the plate.
  std::optional<std::uint16_t> WellOf(std::uint32_t number) const;
  /// "6 rows and 8 columns are 8 and 12".
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
