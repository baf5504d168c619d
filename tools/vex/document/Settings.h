#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/vex/text/Json.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::tool {

/// A run-wide setting under the name by which people call it.
struct Setting {
  std::string_view key;
  std::string_view takes;  ///< what values there are, for people
  /// The value, texts as UTF-8; null when the document does not say.
  nlohmann::json (*get)(const Vex2FileManager& document);
  /// Sets the value that `text` stands for. False when it stands for none.
  bool (*set)(Vex2FileManager& document, std::string_view text);
  bool isOfStudies = false;  ///< it says how a study compares its plates
  bool isInHeader = false;   ///< it is shown with the header's fields, not among the others
};

/// All of them, in the order in which they are shown.
const std::vector<Setting>& Settings();

/// A setting's value as a person reads and types it; empty when there is none.
std::string SettingText(const nlohmann::json& value);

/// The log of the run, as bytes.
std::string LogText(const Vex2FileManager& document);

}  // namespace vex2::tool
