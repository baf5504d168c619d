#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// A step of a thermal cycling program: its fields by name, as texts. The fields determine the kind
/// of step:
///
/// - "temperature" and "seconds": a constant temperature;
/// - "high", "low" and "seconds": a gradient; both may have "temperature-change" and
///   "seconds-change" from one cycle to the next, "measure" and "ramp";
/// - "goto" and "repeat": a loop;
/// - "pause": a pause at this temperature;
/// - "lid" with the value "open".
///
/// Any step may have a "description".
struct ProgramStep {
  std::string number;  ///< whole number, from 1
  std::map<std::string, std::string, std::less<>> fields;

  /// The text of the field; empty if the step does not have it.
  std::string Field(std::string_view name) const;
};

/// A thermal cycling program as exchange formats have it. A document stores it as a text of lines
/// KEY=VALUE, and one line for each step: "2 temperature=95 seconds=15 measure=real-time". A
/// description is the last field of its line.
struct SteppedProgram {
  std::string name;
  std::string description;
  std::string lid;  ///< temperature of the lid in degrees Celsius
  std::vector<ProgramStep> steps;
};

/// The text of the program. All texts in it must be printable ASCII.
std::string ProgramText(const SteppedProgram& program);
/// Parses a text that `ProgramText` made; nothing for any other text.
std::optional<SteppedProgram> ParseProgram(std::string_view text);

}  // namespace vex2::lab
