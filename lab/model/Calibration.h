#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// One spectrum of a calibration: a pure dye, or a trace of the background. Fields that only the
/// other kind of spectrum has are 0.
struct CalibrationEntry {
  std::string name;                       ///< UTF-8
  std::uint16_t key1 = 0;                 ///< stored unchanged
  std::uint16_t key2 = 0;                 ///< stored unchanged
  std::uint16_t dyeIndex = 0;             ///< stored unchanged
  std::array<std::uint8_t, 2> bytes{};    ///< only for a pure dye
  std::array<std::uint16_t, 3> params{};  ///< only for a pure dye
  std::uint16_t limit = 0;                ///< only for the background
  std::vector<std::uint32_t> values;  ///< one stored 32-bit value for each filter, see `NumberOf`

  /// Whether all fields are equal.
  friend bool operator==(const CalibrationEntry&, const CalibrationEntry&) = default;
};

/// The values at the start of either part of a calibration. Their meaning depends on the
/// instrument.
struct CalibrationHead {
  std::array<std::uint8_t, 4> code{};    ///< stored unchanged
  std::uint32_t setting = 10;            ///< stored unchanged
  std::uint16_t option = 0;              ///< stored unchanged
  std::uint32_t value = 0;               ///< stored unchanged
  std::array<std::uint8_t, 4> extra1{};  ///< stored unchanged
  std::array<std::uint8_t, 4> extra2{};  ///< stored unchanged

  /// Whether all fields are equal.
  friend bool operator==(const CalibrationHead&, const CalibrationHead&) = default;
};

/// One part of a calibration: the pure dyes or the background.
struct CalibrationPart {
  CalibrationHead head;                   ///< the values before the spectra
  std::vector<CalibrationEntry> entries;  ///< the spectra in the order of the document

  /// Whether all fields are equal.
  friend bool operator==(const CalibrationPart&, const CalibrationPart&) = default;
};

/// The calibration in a document. A part that the document lacks is empty.
struct Calibration {
  std::optional<CalibrationPart> pureDyes;    ///< the spectra of the pure dyes
  std::optional<CalibrationPart> background;  ///< the traces of the background

  /// Whether the calibration has neither part.
  bool IsEmpty() const { return !pureDyes && !background; }

  /// Whether all fields are equal.
  friend bool operator==(const Calibration&, const Calibration&) = default;
};

/// A calibration with four dyes and a background, like one of an instrument with twelve filters.
VEX2_API Calibration SimulatedCalibration();

/// Converts a stored value to the floating-point number that it encodes.
VEX2_API float NumberOf(std::uint32_t value);

}  // namespace vex2::lab
