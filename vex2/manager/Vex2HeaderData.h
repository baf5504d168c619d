#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The header at the start of every document, 1024 bytes in the file. Texts have no terminator. A
/// new header describes a 96-well plate of the second instrument kind, with all wells in use. Owns
/// its usage table.
struct VEX2_API Vex2HeaderData {
  char magic[4];          ///< "Vex2"
  std::uint16_t formatA;  ///< kept unchanged; the library does not use it
  std::uint16_t formatB;  ///< kept unchanged; the library does not use it
  char assayCode[4];      ///< the kind of run, e.g. "AbsQ"
  char runCode[4];        ///< kept unchanged; the library does not use it
  char plateTypeCode[4];  ///< gives the number of wells, e.g. "p9C " for 96
  std::uint16_t rows;     ///< of the plate; set it with `SetRows`, which also makes `usage`
  std::uint16_t columns;  ///< of the plate
  std::uint32_t thermocycleOffset;      ///< after a full save, the offset of the program's end
  std::uint8_t flagG;                   ///< kept unchanged; the library does not use it
  char text[31];                        ///< kept unchanged; the library does not use it
  char kindMarker[4];                   ///< "Kest", "Blue" or anything else
  char acquisitionStatus[4];            ///< "ZERO", "PROG", "DONE" or anything else
  std::uint32_t acquisitionDataOffset;  ///< after a full save, the offset of the data block's end
  std::uint32_t* usage;  ///< a mask for each row, made with new[]; bit j is column j, from 0

  /// A row in which the first twelve wells are in use.
  static constexpr std::uint32_t kTwelveWells = 4095;

  Vex2HeaderData();
  /// Copies all fields. The copy has a mask for each of its `rows`: those of `other`, and
  /// `kTwelveWells` for rows that the usage table of `other` does not hold.
  Vex2HeaderData(const Vex2HeaderData& other);
  /// Copies all fields, as the copy constructor does. Throws `std::bad_alloc` and changes nothing
  /// if memory runs out.
  Vex2HeaderData& operator=(const Vex2HeaderData& other);
  ~Vex2HeaderData();

  /// Empties the record: texts become blank, numbers become 0, and the usage table is released.
  void Reset();

  /// Sets `rows` and makes a new usage table of that many masks, each `kTwelveWells`; no table for
  /// 0. Throws `std::bad_alloc` and changes nothing if memory runs out.
  void SetRows(std::uint16_t count);
  /// The number of masks that can be read from `usage`: `rows`, or fewer if `rows` was set directly
  /// to more than the table holds; 0 if there is no table. A table that a host made must hold
  /// `rows` masks.
  std::uint16_t GetMaskCount() const;
};
