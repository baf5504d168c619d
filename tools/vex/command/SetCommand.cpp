#include <algorithm>
#include <iostream>
#include <utility>

#include "lab/Nearest.h"
#include "lab/Text.h"
#include "lab/model/AssayTypes.h"
#include "lab/model/Settings.h"
#include "lab/model/Study.h"
#include "lab/text/Columns.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/files/Changing.h"

namespace vex2::tool {

namespace {

using SettingList = std::vector<Setting>;

std::string settingList(const SettingList& settings) {
  std::string text = "Settings:";
  for (const Setting& setting : settings) {
    text += "\n  " + PadRight(std::string(setting.key), 20) + std::string(setting.takes);
  }
  return text + "\n  A text that is set to nothing, as in comment=, is removed.";
}

class SetCommand final : public Command {
 public:
  /// `call` is what is typed in front of the document.
  SetCommand(Description description, std::string call, SettingList settings, bool ofStudy)
      : Command(std::move(description)),
        call_(std::move(call)),
        settings_(std::move(settings)),
        ofStudy_(ofStudy) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("KEY=VALUE", assignments_, "The settings and their new values").Require().Show("");
    if (!ofStudy_) plate_.AddTo(options);
    changing_.AddOptions(options);
    if (!ofStudy_) options.PutFirst(PlateAssayTable());
    options.PutFirst(settingList(settings_));
  }

  ExitCode Run() override {
    const std::vector<Change> changes = parse();
    std::cout << changing_.Apply(file_, [&](Document& document) {
      if (ofStudy_) RequireStudy(document);
      Vex2FileManager& target = targetOf(document, changes);
      std::string report;
      for (const Change& change : changes) report += apply(target, change);
      return report;
    });
    return ExitCode::kDone;
  }

 private:
  struct Change {
    const Setting* setting;
    std::string value;
  };

  std::vector<Change> parse() const {
    std::vector<Change> changes;
    for (const std::string& assignment : assignments_) {
      const std::size_t equals = assignment.find('=');
      const std::string key = assignment.substr(0, equals);
      const auto found = std::find_if(settings_.begin(), settings_.end(),
                                      [&](const Setting& setting) { return setting.key == key; });
      if (equals == std::string::npos) refuse(assignment, "is not of the form key=value");
      if (found == settings_.end()) refuseKey(key);
      for (const Change& change : changes) {
        if (change.setting == &*found) refuse(key, "is given twice");
      }
      changes.push_back({&*found, assignment.substr(equals + 1)});
    }
    return changes;
  }

  // The plate that was named, or what the settings belong to.
  Vex2FileManager& targetOf(Document& document, const std::vector<Change>& changes) const {
    if (!plate_.IsAll(document)) return *plate_.One(document).content;
    for (const Change& change : changes) {
      if (change.setting->isOfStudies) continue;
      throw Error(ErrorCode::kUsage, file_,
                  "a study keeps no " + std::string(change.setting->key) +
                      " of its own; name the plate to change with --plate");
    }
    return document.Content();
  }

  [[noreturn]] void refuseKey(const std::string& key) const {
    std::vector<std::string> keys;
    for (const Setting& setting : settings_) keys.emplace_back(setting.key);
    const std::string hint = DidYouMean(key, keys);
    throw Error(
        ErrorCode::kUnknownSetting, file_,
        "unknown setting '" + key + "'" + (hint.empty() ? "; see '" + call_ + " --help'" : hint));
  }

  [[noreturn]] void refuse(const std::string& what, const std::string& why) const {
    throw Error(ErrorCode::kInvalidValue, file_,
                "'" + what + "' " + why + "; see '" + call_ + " --help'");
  }

  std::string apply(Vex2FileManager& document, const Change& change) const {
    const Setting& setting = *change.setting;
    const std::string before = shown(setting.get(document));
    if (!setting.set(document, change.value)) {
      const std::string key(setting.key);
      refuse(key + "=" + change.value, "cannot be: " + key + " takes " +
                                           (setting.takes == "text" ? "a text of Latin-1 characters"
                                                                    : std::string(setting.takes)));
    }
    return std::string(setting.key) + ": " + before + " -> " + shown(setting.get(document)) + "\n";
  }

  static std::string shown(const Value& value) {
    return HasValue(value) ? Printable(ValueText(value)) : "none";
  }

  std::string call_;
  SettingList settings_;
  bool ofStudy_;
  std::string file_;
  std::vector<std::string> assignments_;
  PlateOption plate_;
  Changing changing_;
};

}  // namespace

std::unique_ptr<Command> MakeSetCommand() {
  return std::make_unique<SetCommand>(
      Command::Description{"set", "Change a document's run-wide settings.",
                           "vex set run.vex comment='second dilution series' sample-volume=25\n"
                           "vex set run.vex calibrator= --dry-run"},
      "vex set", Settings(), false);
}

std::unique_ptr<Command> MakeStudySetCommand() {
  SettingList settings = Settings();
  std::erase_if(settings, [](const Setting& setting) { return !setting.isOfStudies; });
  return std::make_unique<SetCommand>(
      Command::Description{"set", "Change how a study compares its plates.",
                           "vex study set study.vex calibrator=liver endogenous-control=18S\n"
                           "vex study set study.vex confidence=95 analysis-type=1"},
      "vex study set", std::move(settings), true);
}

}  // namespace vex2::tool
