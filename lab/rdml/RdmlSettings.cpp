#include "lab/rdml/RdmlSettings.h"

#include <algorithm>

#include "lab/model/Settings.h"

namespace vex2::lab::rdml {

namespace {

constexpr std::string_view kTarget = "target";
constexpr std::string_view kDye = "dye";
constexpr std::string_view kAssay = "assay";
constexpr std::string_view kSetup = "plate-setup";
constexpr std::string_view kNone = "none";
// Every settings record has this setting.
constexpr std::string_view kPlainSetting = "version";

bool isSetting(std::string_view name) {
  const auto& known = Settings();
  return std::any_of(known.begin(), known.end(),
                     [&](const Setting& one) { return one.key == name; });
}

}  // namespace

bool KeptSettings::HasSettings() const {
  return std::any_of(settings.begin(), settings.end(),
                     [](const SettingValue& one) { return one.name == kPlainSetting; });
}

std::string KeptSettings::Text() const {
  std::string text;
  const auto line = [&](std::string_view name, std::string_view value) {
    text.append(name).append("=").append(value).append("\n");
  };
  for (const std::string& dye : dyes) line(kDye, dye);
  for (const std::string& target : targets) line(kTarget, target);
  for (const SettingValue& setting : settings) line(setting.name, ValueText(setting.value));
  if (!assay.empty()) line(kAssay, assay);
  if (!hasSetup) line(kSetup, kNone);
  return text;
}

KeptSettings KeptSettings::Parse(std::string_view lines, Losses& losses) {
  KeptSettings kept;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string name(line.substr(0, equals));
    const std::string value(line.substr(equals + 1));
    if (name == kDye) {
      kept.dyes.push_back(value);
    } else if (name == kTarget) {
      kept.targets.push_back(value);
    } else if (name == kAssay) {
      kept.assay = value;
    } else if (name == kSetup) {
      kept.hasSetup = value != kNone;
    } else if (!isSetting(name)) {
      losses.Add("settings that no document has", "'" + name + "'");
    } else if (name != "log" && name != "comment") {
      kept.settings.push_back({name, value});
    }
  }
  return kept;
}

}  // namespace vex2::lab::rdml
