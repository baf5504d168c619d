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
/// of characters of Latin-1, which is what documents store.
struct RecordingPlan {
  /// The plate: rows, columns, and the content of its wells. `type` and the wells' names are not
  /// used, as they follow from the size. Wells that are left out are empty.
  Plate plate{.rows = 8, .columns = 12, .type = {}, .wells = {}};
  /// The numbers of the wells that each frame has readings of, from 1, ascending; empty: the wells
  /// of `plate`.
  std::vector<std::uint16_t> wells;
  /// Details of detectors. Those that wells name are in the document's list in any case.
  std::vector<Detector> detectors;
  std::vector<std::string> requiredDyes;  ///< besides the reporters of the wells' targets
  std::vector<SettingValue> settings;     ///< by the names that `vex set --help` lists
  std::vector<std::uint8_t> program;      ///< thermal cycling; empty: described from the frames
  std::string comment;                    ///< of the run
  Calibration calibration;                ///< of the instrument
  std::string assay;                      ///< a code of four characters; empty: "AbsQ"
  std::optional<std::string> started;     ///< as "2026-11-22T08:00:00Z", or with "+01:00"

  /// How the readings of a `MeasuredFrame` become the 16-bit numbers of a document. Not set for a
  /// run whose frames are raw records; those are stored as they are.
  std::optional<ReadingScale> scale;
  std::vector<std::string> channels;  ///< names; empty: a well has one reading in a frame
  /// How many frames the run will have; nothing if that is known only at `Finish`. If it is given,
  /// a run cannot be finished with fewer, nor have more.
  std::optional<std::size_t> frameCount;
};

/// What one well gave in a frame, in real units.
struct MeasuredWell {
  std::uint16_t well = 0;  ///< the well's number, from 1
  double temperature = 0;  ///< degrees Celsius, 0 to 655.35; kept in steps of 0.01
  double time = 0;         ///< seconds since the run began; kept in steps of 0.001
  std::vector<std::optional<double>> values;  ///< one for each channel; nothing if missing
};

/// A frame in real units: a reading of each of the plan's wells, in any order.
struct MeasuredFrame {
  Stage stage = Stage::kAmplification;  ///< amplification or melting
  std::uint16_t cycle = 0;              ///< within its stage, from 1
  std::vector<MeasuredWell> wells;      ///< one for each of the plan's wells
};

/// A well's record as the instrument gives it. The recorder stores it as it is.
struct RawRecord {
  std::uint16_t well = 0;  ///< the well's number, from 1
  /// The first must not be 0, which marks a record that is not filled. The fifth is the well's
  /// first reading; 0 or 65000 there marks the first frame of a melting stage.
  std::array<std::uint16_t, 8> leading{};
  std::array<std::uint16_t, 32> readings{};  ///< the readings as stored
};

}  // namespace vex2::lab
