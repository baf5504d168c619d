#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/exchange/PlateSource.h"

/// What an RDML file is to hold, before it is written. All texts are such as XML can hold.
namespace vex2::lab::rdml {

struct Dye {
  std::string id;
  std::string description;
};

struct TargetEntry {
  std::string id;
  std::string detector;    ///< its name where that is not the identifier
  bool isDetector = true;  ///< otherwise it stands for readings that no target was named for
  std::string description;
  std::string dye;  ///< identifier
  bool isReference = false;
};

/// What a sample is for one target.
struct SampleUse {
  std::string task;
  std::optional<float> quantity;

  friend bool operator==(const SampleUse&, const SampleUse&) = default;
};

struct Sample {
  std::string id;
  std::optional<std::string> name;        ///< where that is not the identifier
  std::map<std::size_t, SampleUse> uses;  ///< by targets
  bool isCalibrator = false;
};

/// The readings of one target in a well.
struct Data {
  std::size_t target = 0;
  std::optional<std::size_t> channel;  ///< nothing if the target has no readings
  const CqResult* cq = nullptr;        ///< null where none was looked for
};

struct React {
  std::uint16_t well = 0;  ///< from 1
  std::size_t sample = 0;
  std::vector<Data> data;
  std::optional<std::size_t> position;  ///< of the well in each frame
};

struct Documentation {
  std::string id;
  std::string text;
};

struct Run {
  std::string id;
  const PlateSource* source = nullptr;
  std::vector<std::string> documentation;  ///< identifiers
  std::string_view cqMethod;               ///< empty where no cycles were looked for
  std::optional<std::size_t> conditions;   ///< of `Plan::conditions`
  std::vector<React> reacts;               ///< ascending by wells
};

struct Plan {
  std::vector<Documentation> documentation;
  std::vector<Dye> dyes;
  std::vector<Sample> samples;
  std::vector<TargetEntry> targets;
  std::vector<std::string> conditions;  ///< texts of programs that `ParseProgram` can read
  std::vector<Run> runs;
};

/// Arranges the plates as an RDML file, and lists what it cannot hold. `analysis`, of all the
/// plates, may be null. The sources and the analysis must outlive the plan.
Plan PlanOf(const std::vector<const PlateSource*>& sources, Losses& losses,
            const CqAnalysis* analysis = nullptr);

}  // namespace vex2::lab::rdml
