#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/model/Value.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// A run-wide setting, and the name that users know it by.
struct Setting {
  std::string_view key;
  std::string_view takes;  ///< the values that it takes, as a text for users
  /// Returns the value; no value if the document does not have the setting.
  Value (*get)(const Vex2FileManager& document);
  /// Sets the value that `text` represents. Returns false if the setting does not take it.
  bool (*set)(Vex2FileManager& document, std::string_view text);
  bool isOfStudies = false;  ///< it describes how a study compares its plates
  /// It is shown with the fields of the header, not with the other settings.
  bool isInHeader = false;
};

/// All settings, in the order in which they are shown.
const std::vector<Setting>& Settings();

/// The log of the run, as the document stores it.
std::string LogText(const Vex2FileManager& document);

}  // namespace vex2::lab
