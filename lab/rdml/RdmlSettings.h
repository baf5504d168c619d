#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/Losses.h"
#include "lab/model/Run.h"

namespace vex2::lab::rdml {

/// The values of a document for which RDML has no element: the settings, and the lists of detectors
/// and required dyes. An export keeps them in a documentation element with lines NAME=VALUE.
struct KeptSettings {
  std::vector<SettingValue> settings;  ///< each on one line; parsed as texts
  std::string assay;                   ///< if empty, absolute quantification
  bool hasSetup = true;                ///< whether there is a plate setup, even an empty one
  std::vector<std::string> targets;    ///< identifiers of the targets in the list of detectors
  std::vector<std::string> dyes;       ///< identifiers of the dyes in the list of required dyes

  /// Whether the document has a settings record.
  bool HasSettings() const;

  /// The values as lines. Identifiers that contain line ends, which are rare, cannot be restored
  /// from them.
  std::string Text() const;
  /// Parses the lines. Skips lines without "=", and lists settings that no document has.
  static KeptSettings Parse(std::string_view lines, Losses& losses);
};

}  // namespace vex2::lab::rdml
