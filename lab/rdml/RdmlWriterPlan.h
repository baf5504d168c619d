#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/exchange/PlateSource.h"

/// The content of an RDML file before it is written. All texts have only characters that XML can
/// hold.
namespace vex2::lab::rdml {

struct Dye {
  std::string id;
  std::string description;
};

struct TargetEntry {
  std::string id;
  std::string detector;    ///< name of the detector if it differs from the identifier
  bool isDetector = true;  ///< if false, it is made for readings without a target
  std::string description;
  std::string dye;  ///< identifier of the dye
  bool isReference = false;
};

/// The task and the quantity of a sample for one target.
struct SampleUse {
  std::string task;
  std::optional<float> quantity;

  friend bool operator==(const SampleUse&, const SampleUse&) = default;
};

struct Sample {
  std::string id;
  std::optional<std::string> name;        ///< the name if it differs from the identifier
  std::map<std::size_t, SampleUse> uses;  ///< by target
  bool isCalibrator = false;
};

/// The readings of one target in a well.
struct Data {
  std::size_t target = 0;
  std::optional<std::size_t> channel;  ///< nothing if the target has no readings
  const CqResult* cq = nullptr;        ///< null if quantification cycles were not analysed
};

struct React {
  std::uint16_t well = 0;  ///< well number, from 1
  std::size_t sample = 0;
  std::vector<Data> data;
  std::optional<std::size_t> position;  ///< index of the well in each frame
};

struct Documentation {
  std::string id;
  std::string text;
};

struct Run {
  std::string id;
  const PlateSource* source = nullptr;
  std::vector<std::string> documentation;  ///< identifiers
  std::string_view cqMethod;               ///< empty if quantification cycles were not analysed
  std::optional<std::size_t> conditions;   ///< index in `Plan::conditions`
  std::vector<React> reacts;               ///< ascending by well
};

struct Plan {
  std::vector<Documentation> documentation;
  std::vector<Dye> dyes;
  std::vector<Sample> samples;
  std::vector<TargetEntry> targets;
  std::vector<std::string> conditions;  ///< texts of programs that `ParseProgram` can read
  std::vector<Run> runs;
};

/// Arranges the plates as an RDML file, and lists what such a file cannot hold. `analysis` is that
/// of all plates, and may be null. The sources and the analysis must outlive the plan.
Plan PlanOf(const std::vector<const PlateSource*>& sources, Losses& losses,
            const CqAnalysis* analysis = nullptr);

}  // namespace vex2::lab::rdml
