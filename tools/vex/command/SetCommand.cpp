#include <fmt/core.h>

#include <iostream>
#include <utility>

#include "lab/model/AssayTypes.h"
#include "lab/model/Settings.h"
#include "lab/model/Study.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Assignment.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/ChangeOptions.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

using SettingList = std::vector<Setting>;

class SetCommand final : public Command {
 public:
  /// `call` is the part of the command line before the document, such as "vex set".
  SetCommand(Description description, std::string call, SettingList settings, bool ofStudy)
      : Command(std::move(description)),
        call_(std::move(call)),
        settings_(std::move(settings)),
        ofStudy_(ofStudy) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("KEY=VALUE", words_, "The settings and their new values").Require().Show("");
    if (!ofStudy_) plate_.AddTo(options);
    changing_.AddOptions(options);
    if (!ofStudy_) options.PutFirst(PlateAssayTable());
    options.PutFirst("Settings:" + FieldLines(settings_, 20) +
                     "\n  An empty value, as in comment=, removes a text.");
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
    for (const std::string& word : words_) {
      auto [setting, value] =
          words().Parse(word, settings_, ErrorCode::kUnknownSetting,
                        [](const auto& key) { return fmt::format("unknown setting '{}'", key); });
      for (const Change& change : changes) {
        if (change.setting == setting) {
          words().Refuse(fmt::format("'{}' is given twice", setting->key));
        }
      }
      changes.push_back({setting, std::move(value)});
    }
    return changes;
  }

  Assignments words() const { return {file_, call_}; }

  // The plate that was named, otherwise the document to which the settings belong.
  Vex2FileManager& targetOf(Document& document, const std::vector<Change>& changes) const {
    if (!plate_.IsAll(document)) return *plate_.One(document).content;
    for (const Change& change : changes) {
      if (change.setting->isOfStudies) continue;
      throw Error(
          ErrorCode::kUsage, file_,
          fmt::format("a study keeps no {} of its own; name the plate to change with --plate",
                      change.setting->key));
    }
    return document.Content();
  }

  std::string apply(Vex2FileManager& document, const Change& change) const {
    const Setting& setting = *change.setting;
    const std::string before = shown(setting.get(document));
    if (!setting.set(document, change.value)) words().RefuseValue(setting, change.value);
    return fmt::format("{}: {} -> {}\n", setting.key, before, shown(setting.get(document)));
  }

  static std::string shown(const Value& value) {
    return HasValue(value) ? Printable(ValueText(value)) : "none";
  }

  std::string call_;
  SettingList settings_;
  bool ofStudy_;
  std::string file_;
  std::vector<std::string> words_;
  PlateOption plate_;
  ChangeOptions changing_;
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
