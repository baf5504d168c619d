#include "lab/rdml/ProgramSteps.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kDescription = "description";
// The fields of a step, in the order in which they are written.
constexpr std::array<std::string_view, 11> kFields = {
    "temperature", "high", "low",    "seconds", "temperature-change", "seconds-change", "measure",
    "ramp",        "goto", "repeat", "pause"};
constexpr std::string_view kLid = "lid";

std::optional<std::string_view> valueOf(std::string_view line, std::string_view key) {
  if (!line.starts_with(key) || line.substr(key.size(), 1) != "=") return std::nullopt;
  return line.substr(key.size() + 1);
}

bool isNumber(std::string_view text) {
  const auto number = NumberIn<double>(text);
  return number && std::isfinite(*number);
}

bool isWhole(std::string_view text) {
  const auto number = NumberIn<unsigned>(text);
  return number && *number > 0;
}

bool isOptionalNumber(const ProgramStep& step, std::string_view field) {
  return step.Field(field).empty() || isNumber(step.Field(field));
}

// Whether the step has the fields of exactly one kind of step, with valid values.
bool isValid(const ProgramStep& step) {
  const auto has = [&](std::string_view field) { return step.fields.contains(field); };
  const int kinds = (has("temperature") ? 1 : 0) + (has("high") ? 1 : 0) + (has("goto") ? 1 : 0) +
                    (has("pause") ? 1 : 0) + (has(kLid) ? 1 : 0);
  if (kinds != 1 || !isWhole(step.number)) return false;
  if (has("goto")) return isWhole(step.Field("goto")) && isWhole(step.Field("repeat"));
  if (has("pause")) return isNumber(step.Field("pause"));
  if (has(kLid)) return step.Field(kLid) == "open";
  const std::string change = step.Field("seconds-change");
  const std::string measure = step.Field("measure");
  return (has("temperature") ? isNumber(step.Field("temperature"))
                             : isNumber(step.Field("high")) && isNumber(step.Field("low"))) &&
         isWhole(step.Field("seconds")) && isOptionalNumber(step, "temperature-change") &&
         isOptionalNumber(step, "ramp") && (change.empty() || NumberIn<int>(change)) &&
         (measure.empty() || measure == "real-time" || measure == "meltcurve");
}

std::optional<ProgramStep> parseStep(std::string_view line) {
  ProgramStep step;
  step.number = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(step.number.size() + 1, line.size()));
  while (!line.empty()) {
    if (const auto description = valueOf(line, kDescription)) {
      step.fields.emplace(kDescription, *description);
      break;
    }
    const std::string_view word = line.substr(0, line.find(' '));
    const std::size_t equals = word.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    step.fields.emplace(word.substr(0, equals), word.substr(equals + 1));
    line.remove_prefix(std::min(word.size() + 1, line.size()));
  }
  if (!isValid(step)) return std::nullopt;
  return step;
}

}  // namespace

std::string ProgramStep::Field(std::string_view name) const {
  const auto found = fields.find(name);
  return found != fields.end() ? found->second : std::string();
}

std::string ProgramText(const SteppedProgram& program) {
  std::string text;
  const auto line = [&](std::string_view key, const std::string& value) {
    if (!value.empty()) text.append(key).append("=").append(value).append("\n");
  };
  line("name", program.name);
  line(kDescription, program.description);
  line(kLid, program.lid);
  for (const ProgramStep& step : program.steps) {
    text += step.number;
    const auto field = [&](std::string_view name) {
      const std::string value = step.Field(name);
      if (!value.empty()) text.append(" ").append(name).append("=").append(value);
    };
    for (const std::string_view name : kFields) field(name);
    field(kLid);
    field(kDescription);
    text += "\n";
  }
  return text;
}

std::optional<SteppedProgram> ParseProgram(std::string_view text) {
  SteppedProgram program;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (const auto name = valueOf(line, "name")) {
      program.name = *name;
    } else if (const auto description = valueOf(line, kDescription)) {
      program.description = *description;
    } else if (const auto lid = valueOf(line, kLid)) {
      if (!isNumber(*lid)) return std::nullopt;
      program.lid = *lid;
    } else if (auto step = parseStep(line)) {
      program.steps.push_back(std::move(*step));
    } else {
      return std::nullopt;
    }
  }
  // A text in another form could mean the same program, but would not be restored exactly.
  if (program.steps.empty() || program.name.empty() || ProgramText(program) != text) {
    return std::nullopt;
  }
  return program;
}

}  // namespace vex2::lab
