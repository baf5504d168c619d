#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/Value.h"
#include "vex2/framework/Export.h"

/// What a plate document says of a run, as plain values: copies are independent, all texts are
/// UTF-8, and nothing refers to a file.
namespace vex2::lab {

/// What a well holds for one detector.
struct Target {
  std::string detector;           ///< the detector's name
  std::string task;               ///< a code, such as "UNKN" or "STND"
  std::optional<float> quantity;  ///< nothing if none was given
  std::string reporter;           ///< the detector's reporter dye; empty for an unknown detector

  /// Whether all fields are equal.
  friend bool operator==(const Target&, const Target&) = default;
};

/// A well of the plate setup.
struct Well {
  std::uint16_t number = 0;     ///< from 1, counted by rows of the plate
  std::string name;             ///< as "A1"; the number itself where the plate has no columns
  std::string sample;           ///< empty where none was given
  std::vector<Target> targets;  ///< one for each detector in the well

  /// Whether all fields are equal.
  friend bool operator==(const Well&, const Well&) = default;
};

/// The plate and the contents of its wells.
struct Plate {
  std::uint32_t rows = 0;     ///< the number of rows
  std::uint32_t columns = 0;  ///< the number of columns
  std::string type;           ///< a code without trailing blanks, such as "p9C"
  /// The wells that the plate setup has, ascending by number; none without a setup. A setup that
  /// this library wrote has every well of the plate, so that `wells[0]` is A1.
  std::vector<Well> wells;

  /// The well with this number, from 1, or this name; null when the setup does not have it. Valid
  /// until `wells` changes.
  VEX2_API const Well* Find(std::uint16_t number) const;
  /// The well with this name, as "A1"; null when the setup does not have it. Valid until `wells`
  /// changes.
  VEX2_API const Well* Find(std::string_view name) const;

  /// Whether all fields are equal.
  friend bool operator==(const Plate&, const Plate&) = default;
};

/// A named pair of dyes, with the settings that an analysis starts from.
struct Detector {
  std::string name;                     ///< the key of the list of detectors; case counts
  std::string reporterDye;              ///< the name of the dye
  std::string quencherDye;              ///< the name of the dye
  std::string description;              ///< a text for people
  std::string comment;                  ///< a text for people
  std::string owner;                    ///< a text for people
  std::string location;                 ///< a text for people
  std::array<std::uint8_t, 3> color{};  ///< red, green and blue
  std::int32_t created = 0;             ///< as the document stores it; 0 is none
  std::int32_t modified = 0;            ///< as the document stores it; 0 is none
  std::uint16_t baselineStart = 6;      ///< a cycle, as is the end
  std::uint16_t baselineEnd = 15;       ///< a cycle
  float threshold = 0.2F;               ///< of the analysis
  std::uint16_t analysisFlags = 0;      ///< the meaning is the instrument's
  bool autoBaseline = false;            ///< whether the analysis chooses the baseline
  bool autoThreshold = false;           ///< whether the analysis chooses the threshold

  /// Whether all fields are equal.
  friend bool operator==(const Detector&, const Detector&) = default;
};

/// A run-wide setting that the document has, under the name by which people call it.
struct SettingValue {
  std::string name;  ///< as `vex set --help` lists it
  Value value;       ///< never none

  /// Whether name and value are equal.
  friend bool operator==(const SettingValue&, const SettingValue&) = default;
};

/// The thermal cycling program. Its meaning is the instrument's.
struct Program {
  std::vector<std::uint8_t> bytes;  ///< the program as the document stores it
  std::optional<std::string> text;  ///< the same, where all bytes are characters of a text

  /// Whether both fields are equal.
  friend bool operator==(const Program&, const Program&) = default;
};

/// How far the run has come, as the document's header has it.
enum class RunState {
  kNotStarted,  ///< "ZERO"
  kInProgress,  ///< "PROG": a recorder is at work, or was cut off
  kDone,        ///< "DONE"
  kOther,       ///< any other code
};

/// The tag of the raw readings, the data block that a recorder appends to. The others are reporting
/// data: "REPr", "REPn", "REPd" and "REPt".
inline constexpr std::string_view kRawReadings = "RAWa";

/// A data block without its frames.
struct BlockInfo {
  std::string tag;                   ///< four characters
  std::uint64_t offset = 0;          ///< of the tag, in bytes from the start of the file
  std::uint16_t version = 0;         ///< 1 has no times
  std::vector<std::uint16_t> wells;  ///< well numbers, from 1, in the order of each frame
  std::uint64_t frameCount = 0;      ///< that are committed
  /// Whether the run's log says that this library recorded the readings. Nobody else says what
  /// their times, temperatures and scale are.
  bool isRecorded = false;
  /// When the first and the last frame were read, as "2026-11-22T08:00:00" with "Z" or "+01:00"
  /// where the zone is known. Nothing if the block is not `isRecorded`, or has no time.
  std::optional<std::string> start;
  /// When the last frame was read, as `start`; nothing if the block is not `isRecorded`, or has no
  /// time.
  std::optional<std::string> end;
  std::array<std::uint8_t, 6> storedStart{};  ///< the bytes in the block, uninterpreted
  std::array<std::uint8_t, 6> storedEnd{};    ///< the bytes in the block, uninterpreted

  /// Whether all fields are equal.
  friend bool operator==(const BlockInfo&, const BlockInfo&) = default;
};

/// The part of a run that a frame belongs to.
enum class Stage { kAmplification, kMelting };

/// The position of a frame in the run. All of it is unknown if the log does not say that this
/// library recorded the readings.
struct FramePosition {
  std::optional<Stage> stage;          ///< amplification or melting
  std::optional<std::uint16_t> cycle;  ///< within its stage, from 1
  std::optional<double> temperature;   ///< degrees Celsius, in steps of 0.01
  std::optional<double> time;          ///< seconds since the run began, in steps of 0.001

  /// Whether all fields are equal.
  friend bool operator==(const FramePosition&, const FramePosition&) = default;
};

}  // namespace vex2::lab
