#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// A step of a thermal cycling program: its fields by name, as texts. Which fields there are tells
/// the kind of step:
///
/// - "temperature" and "seconds": a constant temperature;
/// - "high", "low" and "seconds": a gradient; both may have "temperature-change" and
///   "seconds-change" from one cycle to the next, "measure" and "ramp";
/// - "goto" and "repeat": a loop;
/// - "pause": at that temperature;
/// - "lid" with the value "open".
///
/// "description" may stand in any step.
struct ProgramStep {
  std::string number;  ///< whole, from 1
  std::map<std::string, std::string, std::less<>> fields;

  /// The field's text; empty where there is none.
  std::string Field(std::string_view name) const;
};

/// A thermal cycling program as exchange formats have it. Documents hold it as a text of lines
/// KEY=VALUE, and a line for each step: "2 temperature=95 seconds=15 measure=real-time". A
/// description ends its line.
struct SteppedProgram {
  std::string name;
  std::string description;
  std::string lid;  ///< degrees Celsius
  std::vector<ProgramStep> steps;
};

/// The text of the program. All texts must be printable ASCII.
std::string ProgramText(const SteppedProgram& program);
/// The program that `ProgramText` made the text of; nothing for any other text.
std::optional<SteppedProgram> ParseProgram(std::string_view text);

}  // namespace vex2::lab
