#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The record at the start of every document, 1024 bytes in the file. Texts are characters
/// without a terminator. A new one describes a 96-well plate of the second instrument kind, all
/// wells in use. Owns its usage table.
struct VEX2_API Vex2HeaderData {
  char magic[4];          ///< "Vex2"
  std::uint16_t formatA;  ///< carried, not interpreted, as are formatB, flagG and text
  std::uint16_t formatB;
  char assayCode[4];  ///< the kind of run, e.g. "AbsQ"
  char runCode[4];
  char plateTypeCode[4];  ///< tells the plate's size, e.g. "p9C " for 96 wells
  std::uint16_t rows;     ///< of the plate; always the length of `usage`
  std::uint16_t columns;
  std::uint32_t thermocycleOffset;  ///< file position; after a full save past the program's record
  std::uint8_t flagG;
  char text[31];
  char kindMarker[4];                   ///< "Kest", "Blue" or anything else
  char acquisitionStatus[4];            ///< "ZERO", "PROG", "DONE" or anything else
  std::uint32_t acquisitionDataOffset;  ///< file position; after a full save past the data block
  std::uint32_t* usage;  ///< one mask a row, made with new[]; bit j is the well in column j from 0

  Vex2HeaderData();
  Vex2HeaderData(const Vex2HeaderData& other);
  Vex2HeaderData& operator=(const Vex2HeaderData& other);
  ~Vex2HeaderData();

  /// Empties the record: texts are blank, numbers 0, the usage table is gone.
  void Reset();

  /// Sets `rows` and makes a new usage table of that many masks in which the first twelve wells of
  /// every row are in use; none for 0.
  void SetRows(std::uint16_t count);
};
