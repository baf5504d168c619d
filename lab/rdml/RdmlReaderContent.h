#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "lab/rdml/ProgramSteps.h"

/// The content of an RDML file, with its references as they are in the file.
namespace vex2::lab::rdml {

/// The readings of one target in one stage.
struct Points {
  std::vector<std::uint16_t> cycles;  ///< only for amplification
  std::vector<float> temperatures;    ///< NaN if none is given
  std::vector<double> readings;       ///< NaN for a missing reading
};

struct ReadData {
  std::string target;
  Points amplification;
  Points melting;
};

struct ReadReact {
  std::uint32_t number = 0;  ///< well number from 1, counted along the rows
  std::string sample;
  std::vector<ReadData> data;
};

struct ReadRun {
  std::string experiment;
  std::string id;
  std::string description;
  std::vector<std::string> documentation;
  std::string conditions;
  std::uint32_t rows = 0;  ///< 0 if not given
  std::uint32_t columns = 0;
  std::string date;
  std::vector<ReadReact> reacts;
  std::uint64_t line = 0;
};

/// Values of a sample by target; the key "" is for all other targets.
template <typename Value>
using ByTarget = std::map<std::string, Value>;

struct ReadSample {
  std::optional<std::string> name;
  ByTarget<std::string> types;
  ByTarget<std::string> tasks;  ///< the tasks that an export of this library keeps
  ByTarget<float> quantities;
  bool isCalibrator = false;
};

struct ReadTarget {
  std::string name;  ///< if empty, the identifier
  bool isDetector = true;
  std::string description;
  std::string dye;
  bool isReference = false;
};

struct Content {
  std::string version;
  std::map<std::string, std::string> documentation;
  std::vector<std::string> dyes;  ///< identifiers in the order of the file
  std::set<std::string> unnamedDyes;
  std::map<std::string, ReadSample> samples;
  std::vector<std::string> targetOrder;
  std::map<std::string, ReadTarget> targets;
  std::map<std::string, SteppedProgram> conditions;
  std::vector<ReadRun> runs;
};

}  // namespace vex2::lab::rdml
