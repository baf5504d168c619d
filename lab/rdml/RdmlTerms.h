#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lab/analysis/Cq.h"

/// The terms of RDML and of documents for the same things. Also the names under which an export
/// keeps values for which RDML has no element.
namespace vex2::lab::rdml {

inline constexpr std::string_view kMember = "rdml_data.xml";
inline constexpr std::string_view kEmbedded = "vex/document.vex";
inline constexpr std::string_view kNamespace = "http://www.rdml.org";

/// The comment of the ZIP member that holds the embedded document. From it, an import finds out
/// whether another program has changed the XML since. `checksum` is that of the XML.
inline std::string ChecksumComment(std::uint32_t checksum) {
  return std::string(kMember) + " " + std::to_string(checksum);
}

/// Identifiers of documentation elements.
inline constexpr std::string_view kSettings = "vex settings";
inline constexpr std::string_view kLog = "vex run log";
inline constexpr std::string_view kProgram = "vex thermal cycling program";

/// Properties in annotations of samples.
inline constexpr std::string_view kSampleName = "vex sample name";
/// A property with the task for a target: this text is followed by the identifier of the target.
inline constexpr std::string_view kTask = "vex task of ";

/// Names of references in targets: the first for the detector's name, the second for a target that
/// is not a detector.
inline constexpr std::string_view kDetectorName = "vex detector name";
inline constexpr std::string_view kNoDetector = "vex no detector";

/// The description of a dye for detectors that have none.
inline constexpr std::string_view kNoDye = "vex: no dye was named";

struct TaskCode {
  std::string_view task;  ///< the task in a document
  std::string_view type;  ///< the type of a sample in RDML and RDES
};

/// If a type is in several rows, an import uses the task in the first of them.
inline constexpr std::array kTasks = {TaskCode{"UNKN", "unkn"}, TaskCode{"STND", "std"},
                                      TaskCode{"NTC", "ntc"}, TaskCode{"", "unkn"}};

/// Types for which documents have no task; they are stored as these codes.
inline constexpr std::array kForeignTasks = {TaskCode{"NAC", "nac"}, TaskCode{"NTP", "ntp"},
                                             TaskCode{"NRT", "nrt"}, TaskCode{"POS", "pos"},
                                             TaskCode{"OPT", "opt"}};

/// The type for a task; nothing if RDML and RDES have none.
constexpr std::optional<std::string_view> TypeOf(std::string_view task) {
  for (const TaskCode& code : kTasks) {
    if (code.task == task) return code.type;
  }
  for (const TaskCode& code : kForeignTasks) {
    if (code.task == task) return code.type;
  }
  return std::nullopt;
}

/// The task for a type; nothing for a type that RDML and RDES do not have.
constexpr std::optional<std::string_view> TaskOf(std::string_view type) {
  for (const TaskCode& code : kTasks) {
    if (code.type == type) return code.task;
  }
  for (const TaskCode& code : kForeignTasks) {
    if (code.type == type) return code.task;
  }
  return std::nullopt;
}

/// The name in RDML of the method that found the quantification cycles.
inline std::string_view CqMethodName(const CqAnalysis& analysis) {
  if (analysis.method == CqMethod::kSecondDerivative) return "second derivative maximum";
  const auto automatic = static_cast<std::size_t>(
      std::count_if(analysis.detectors.begin(), analysis.detectors.end(),
                    [](const DetectorResult& one) { return one.isThresholdAutomatic; }));
  if (automatic == analysis.detectors.size()) return "automated threshold and baseline settings";
  return automatic == 0 ? "manual threshold and baseline settings" : "other";
}

/// What RDML stores as the quantification cycle of a curve without one.
inline constexpr std::string_view kNoCq = "-1.0";

}  // namespace vex2::lab::rdml
