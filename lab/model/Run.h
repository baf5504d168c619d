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

/// The content of a plate document as plain values: copies are independent, all texts are UTF-8,
/// and nothing refers to a file.
namespace vex2::lab {

/// A detector in a well.
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
  std::uint16_t number = 0;     ///< well number from 1, counted along the rows of the plate
  std::string name;             ///< as "A1"; the number itself if the plate has no columns
  std::string sample;           ///< empty if none was given
  std::vector<Target> targets;  ///< one for each detector in the well

  /// Whether all fields are equal.
  friend bool operator==(const Well&, const Well&) = default;
};

/// The plate and the contents of its wells.
struct Plate {
  std::uint32_t rows = 0;     ///< the number of rows
  std::uint32_t columns = 0;  ///< the number of columns
  std::string type;           ///< a code without trailing blanks, such as "p9C"
  /// The wells in the plate setup, ascending by number; empty without a setup. A setup that this
  /// library wrote has every well of the plate, so that `wells[0]` is A1.
  std::vector<Well> wells;

  /// The well with this number, from 1; null if the setup does not have it. Valid until `wells`
  /// changes.
  VEX2_API const Well* Find(std::uint16_t number) const;
  /// The well with this name, such as "A1"; null if the setup does not have it. Valid until `wells`
  /// changes.
  VEX2_API const Well* Find(std::string_view name) const;

  /// Whether all fields are equal.
  friend bool operator==(const Plate&, const Plate&) = default;
};

/// A detector: the dyes with which a target is detected, and the settings with which an analysis
/// starts.
struct Detector {
  std::string name;                     ///< the key in the list of detectors, case-sensitive
  std::string reporterDye;              ///< the name of the dye
  std::string quencherDye;              ///< the name of the dye
  std::string description;              ///< a free text
  std::string comment;                  ///< a free text
  std::string owner;                    ///< a free text
  std::string location;                 ///< a free text
  std::array<std::uint8_t, 3> color{};  ///< red, green and blue
  std::int32_t created = 0;             ///< as the document stores it; 0 if it is not set
  std::int32_t modified = 0;            ///< as the document stores it; 0 if it is not set
  std::uint16_t baselineStart = 6;      ///< first cycle of the baseline
  std::uint16_t baselineEnd = 15;       ///< last cycle of the baseline
  float threshold = 0.2F;               ///< threshold of the analysis
  std::uint16_t analysisFlags = 0;      ///< the meaning depends on the instrument
  bool autoBaseline = false;            ///< whether the analysis chooses the baseline
  bool autoThreshold = false;           ///< whether the analysis chooses the threshold

  /// Whether all fields are equal.
  friend bool operator==(const Detector&, const Detector&) = default;
};

/// A run-wide setting of a document, with the name that users know it by.
struct SettingValue {
  std::string name;  ///< as `vex set --help` lists it
  Value value;       ///< always holds a value

  /// Whether name and value are equal.
  friend bool operator==(const SettingValue&, const SettingValue&) = default;
};

/// The thermal cycling program. Its meaning depends on the instrument.
struct Program {
  std::vector<std::uint8_t> bytes;  ///< the program as the document stores it
  /// The program as a text; nothing if some bytes are not characters of a text.
  std::optional<std::string> text;

  /// Whether both fields are equal.
  friend bool operator==(const Program&, const Program&) = default;
};

/// The state of the run, from the acquisition status in the document's header.
enum class RunState {
  kNotStarted,  ///< "ZERO"
  kInProgress,  ///< "PROG": a recorder is at work, or was interrupted
  kDone,        ///< "DONE"
  kOther,       ///< any other code
};

/// The tag of the raw readings, the data block to which a recorder appends. The other data blocks
/// are reporting blocks: "REPr", "REPn", "REPd" and "REPt".
inline constexpr std::string_view kRawReadings = "RAWa";

/// A data block without its frames.
struct BlockInfo {
  std::string tag;                   ///< four characters
  std::uint64_t offset = 0;          ///< of the tag, in bytes from the start of the file
  std::uint16_t version = 0;         ///< version 1 has no times
  std::vector<std::uint16_t> wells;  ///< well numbers, from 1, in the order of each frame
  std::uint64_t frameCount = 0;      ///< number of committed frames
  /// Whether the log of the run says that this library recorded the readings. Only then the meaning
  /// of their times, temperatures and scale is known.
  bool isRecorded = false;
  /// When the first frame was read, in the form "2026-11-22T08:00:00", followed by "Z" or an offset
  /// such as "+01:00" if the zone is known. Nothing if the block is not `isRecorded`, or has no
  /// time.
  std::optional<std::string> start;
  /// When the last frame was read, in the same form as `start`; nothing if the block is not
  /// `isRecorded`, or has no time.
  std::optional<std::string> end;
  std::array<std::uint8_t, 6> storedStart{};  ///< the stored bytes of the start time
  std::array<std::uint8_t, 6> storedEnd{};    ///< the stored bytes of the end time

  /// Whether all fields are equal.
  friend bool operator==(const BlockInfo&, const BlockInfo&) = default;
};

/// The part of a run to which a frame belongs.
enum class Stage { kAmplification, kMelting };

/// The position of a frame in the run. All fields are empty if the log does not say that this
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
