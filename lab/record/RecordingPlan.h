#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/Calibration.h"
#include "lab/model/ReadingScale.h"
#include "lab/model/Run.h"

namespace vex2::lab {

/// What is known of a run before its first frame, as plain values. Texts are UTF-8 and must consist
/// of Latin-1 characters, which is what documents store.
struct RecordingPlan {
  /// The plate: rows, columns, and the content of its wells. `type` and the names of the wells are
  /// not used, since rows and columns determine them. Wells that are left out are empty.
  Plate plate{.rows = 8, .columns = 12, .type = {}, .wells = {}};
  /// The numbers of the wells with readings in each frame, from 1, ascending. If it is empty, the
  /// wells of `plate` are recorded.
  std::vector<std::uint16_t> wells;
  /// The detectors with their details. Detectors that only the wells name are added to the document
  /// without details.
  std::vector<Detector> detectors;
  std::vector<std::string> requiredDyes;  ///< in addition to the reporters of the wells' targets
  std::vector<SettingValue> settings;     ///< with the names that `vex set --help` lists
  /// Thermal cycling program. If it is empty, a description is made from the frames.
  std::vector<std::uint8_t> program;
  std::string comment;                 ///< comment on the run
  Calibration calibration;             ///< calibration of the instrument
  std::string assay;                   ///< four-character code; if empty, "AbsQ"
  std::optional<std::string> started;  ///< as "2026-11-22T08:00:00Z", or with "+01:00"

  /// The scale by which the readings of a `MeasuredFrame` become the 16-bit numbers of a document.
  /// Leave it unset for a run whose frames are raw records, which are stored unchanged.
  std::optional<ReadingScale> scale;
  /// Channel names; if empty, a well has one reading in a frame.
  std::vector<std::string> channels;
  /// The exact number of frames that the run will have; nothing if it is known only at `Finish`.
  std::optional<std::size_t> frameCount;
};

/// The readings of one well in a frame, in real units.
struct MeasuredWell {
  std::uint16_t well = 0;                     ///< well number, from 1
  double temperature = 0;                     ///< degrees Celsius, 0 to 655.35; rounded to 0.01
  double time = 0;                            ///< seconds since the run began; rounded to 0.001
  std::vector<std::optional<double>> values;  ///< one for each channel; nothing if missing
};

/// A frame in real units: readings of each of the plan's wells, in any order.
struct MeasuredFrame {
  Stage stage = Stage::kAmplification;  ///< amplification or melting
  std::uint16_t cycle = 0;              ///< within its stage, from 1
  std::vector<MeasuredWell> wells;      ///< one for each of the plan's wells
};

/// A well's record as the instrument produces it. The recorder stores it unchanged.
struct RawRecord {
  std::uint16_t well = 0;  ///< well number, from 1
  /// The leading values. The first must not be 0: 0 marks a record that is not filled. The fifth is
  /// the well's first reading; 0 or 65000 there marks the first frame of a melting stage.
  std::array<std::uint16_t, 8> leading{};
  std::array<std::uint16_t, 32> readings{};  ///< the data values
};

}  // namespace vex2::lab
