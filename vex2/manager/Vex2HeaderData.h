#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The record at the start of every document, 1024 bytes in the file. Texts are characters
/// without a terminator. A new one describes a 96-well plate of the second instrument kind, all
/// wells in use. Owns its usage table.
struct VEX2_API Vex2HeaderData {
  char magic[4];          ///< "Vex2"
  std::uint16_t formatA;  ///< carried, not interpreted, as are formatB, flagG and text
  std::uint16_t formatB;  ///< kept unchanged; the library does not use it
  char assayCode[4];      ///< the kind of run, e.g. "AbsQ"
  char runCode[4];        ///< kept unchanged; the library does not use it
  char plateTypeCode[4];  ///< tells the plate's size, e.g. "p9C " for 96 wells
  std::uint16_t rows;     ///< of the plate; set it with `SetRows`, which makes the table for it
  std::uint16_t columns;  ///< of the plate
  std::uint32_t thermocycleOffset;  ///< file position; after a full save past the program's record
  std::uint8_t flagG;               ///< kept unchanged; the library does not use it
  char text[31];                    ///< kept unchanged; the library does not use it
  char kindMarker[4];               ///< "Kest", "Blue" or anything else
  char acquisitionStatus[4];        ///< "ZERO", "PROG", "DONE" or anything else
  std::uint32_t acquisitionDataOffset;  ///< file position; after a full save past the data block
  std::uint32_t* usage;  ///< one mask a row, made with new[]; bit j is the well in column j from 0

  /// A row in which the first twelve wells are in use.
  static constexpr std::uint32_t kTwelveWells = 4095;

  Vex2HeaderData();
  /// A copy has a mask for each of the other's `rows`: its masks, and `kTwelveWells` for rows that
  /// its usage table does not hold.
  Vex2HeaderData(const Vex2HeaderData& other);
  /// A copy as the copy constructor makes it. Throws `std::bad_alloc`.
  Vex2HeaderData& operator=(const Vex2HeaderData& other);
  ~Vex2HeaderData();

  /// Empties the record: texts are blank, numbers 0, the usage table is gone.
  void Reset();

  /// Sets `rows` and makes a new usage table of that many masks, each `kTwelveWells`; none for 0.
  /// Throws `std::bad_alloc`, with the old table in place, where memory runs out; copies do the
  /// same.
  void SetRows(std::uint16_t count);
  /// The masks that can be read from `usage`: `rows`, or fewer where `rows` was set by hand to more
  /// than the table holds; 0 without a table. A table that the host made must hold `rows` masks.
  std::uint16_t GetMaskCount() const;
};
