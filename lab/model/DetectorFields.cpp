#include "lab/model/DetectorFields.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

template <auto member>
Value getText(const Vex2Detector& detector) {
  return ToUtf8((detector.*member).View());
}

template <auto member>
bool setText(Vex2Detector& detector, std::string_view text) {
  const auto stored = ToLatin1(text);
  if (!stored || stored->find('\0') != std::string::npos) return false;
  detector.*member = CString(*stored);
  return true;
}

template <auto member>
Value getNumber(const Vex2Detector& detector) {
  return std::int64_t{detector.*member};
}

template <auto member, typename Stored>
bool setNumber(Vex2Detector& detector, std::string_view text) {
  const auto value = NumberIn<Stored>(text);
  if (!value) return false;
  detector.*member = *value;
  return true;
}

template <auto member>
bool setDate(Vex2Detector& detector, std::string_view text) {
  const auto value = NumberIn<std::int32_t>(text);
  if (!value || *value < 0) return false;
  detector.*member = *value;
  return true;
}

template <auto member>
bool setSwitch(Vex2Detector& detector, std::string_view text) {
  if (text != "0" && text != "1") return false;
  detector.*member = text == "1" ? 1 : 0;
  return true;
}

Value getThreshold(const Vex2Detector& detector) {
  if (!std::isfinite(detector.threshold)) return {};
  return detector.threshold;
}

bool setThreshold(Vex2Detector& detector, std::string_view text) {
  const auto value = NumberIn<float>(text);
  if (!value || !std::isfinite(*value)) return false;
  detector.threshold = *value;
  return true;
}

Value getColour(const Vex2Detector& detector) {
  const auto* bytes = reinterpret_cast<const char*>(detector.color);
  return "#" + ToHex({bytes, sizeof detector.color});
}

bool setColour(Vex2Detector& detector, std::string_view text) {
  constexpr std::size_t kLength = 7;
  if (text.size() != kLength || text.front() != '#') return false;
  for (std::size_t i = 0; i < sizeof detector.color; ++i) {
    const auto byte = NumberIn<std::uint8_t>(text.substr(1 + 2 * i, 2), 16);
    if (!byte) return false;
    detector.color[i] = *byte;
  }
  return true;
}

template <auto member>
constexpr DetectorField text(std::string_view key) {
  return {key, "text", getText<member>, setText<member>};
}

using D = Vex2Detector;

}  // namespace

const std::vector<DetectorField>& DetectorFields() {
  static const std::vector<DetectorField> fields = {
      text<&D::name>("name"),
      text<&D::reporterDye>("reporter"),
      text<&D::quencherDye>("quencher"),
      text<&D::description>("description"),
      text<&D::comment>("comment"),
      text<&D::owner>("owner"),
      text<&D::location>("location"),
      {"color", "three bytes, #00ff00", getColour, setColour},
      {"created", "a number, 0 for none", getNumber<&D::dateCreated>, setDate<&D::dateCreated>},
      {"modified", "a number, 0 for none", getNumber<&D::dateModified>, setDate<&D::dateModified>},
      {"baseline-start", "0 to 65535", getNumber<&D::baselineStart>,
       setNumber<&D::baselineStart, std::uint16_t>},
      {"baseline-end", "0 to 65535", getNumber<&D::baselineEnd>,
       setNumber<&D::baselineEnd, std::uint16_t>},
      {"threshold", "a number", getThreshold, setThreshold},
      {"auto-baseline", "0 or 1", getNumber<&D::autoBaseline>, setSwitch<&D::autoBaseline>},
      {"auto-threshold", "0 or 1", getNumber<&D::autoThreshold>, setSwitch<&D::autoThreshold>},
      {"flags", "0 to 65535", getNumber<&D::analysisFlags>,
       setNumber<&D::analysisFlags, std::uint16_t>},
  };
  return fields;
}

std::vector<std::string_view> DefaultedFields(const Vex2Detector& detector) {
  constexpr std::array<std::string_view, 3> kJudged = {"baseline-start", "baseline-end",
                                                       "threshold"};
  static const Vex2Detector fresh;
  std::vector<std::string_view> defaulted;
  for (const DetectorField& field : DetectorFields()) {
    if (std::find(kJudged.begin(), kJudged.end(), field.key) == kJudged.end()) continue;
    if (field.get(detector) == field.get(fresh)) defaulted.push_back(field.key);
  }
  return defaulted;
}

}  // namespace vex2::lab
