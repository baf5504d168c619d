#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/model/Value.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// A run-wide setting under the name by which people call it.
struct Setting {
  std::string_view key;
  std::string_view takes;  ///< what values there are, for people
  /// The value; none when the document does not say.
  Value (*get)(const Vex2FileManager& document);
  /// Sets the value that `text` stands for. False when it stands for none.
  bool (*set)(Vex2FileManager& document, std::string_view text);
  bool isOfStudies = false;  ///< it says how a study compares its plates
  bool isInHeader = false;   ///< it is shown with the header's fields, not among the others
};

/// All of them, in the order in which they are shown.
const std::vector<Setting>& Settings();

/// The log of the run, as bytes.
std::string LogText(const Vex2FileManager& document);

}  // namespace vex2::lab
