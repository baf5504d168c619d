#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/Losses.h"
#include "lab/model/Run.h"

namespace vex2::lab::rdml {

/// What an export keeps of a document that RDML has no element for, in a documentation element of
/// lines NAME=VALUE: the settings, and what the lists of detectors and of required dyes hold.
struct KeptSettings {
  std::vector<SettingValue> settings;  ///< of one line each; read as texts
  std::string assay;                   ///< empty: the usual one
  bool hasSetup = true;                ///< whether there is a plate setup, even an empty one
  std::vector<std::string> targets;    ///< of the list of detectors, by their identifiers
  std::vector<std::string> dyes;       ///< of the list of required dyes, by their identifiers

  /// Whether the document has a record of settings.
  bool HasSettings() const;

  /// The lines. Identifiers of several lines, which are rare, do not come back.
  std::string Text() const;
  /// What the lines say; lines that say nothing are passed over, and settings that no document has
  /// are listed.
  static KeptSettings Parse(std::string_view lines, Losses& losses);
};

}  // namespace vex2::lab::rdml
