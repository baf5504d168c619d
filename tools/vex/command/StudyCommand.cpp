#include <fmt/core.h>

#include <algorithm>
#include <iostream>

#include "lab/Text.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/StudyJson.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/Study.h"
#include "lab/text/SetupText.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/ChangeOptions.h"
#include "tools/vex/screen/ProgressLine.h"

namespace vex2::tool {

namespace {

/// The part that the actions that change a study share.
class StudyChange : public Command {
 public:
  using Command::Command;

  void AddOptions(Options& options) override {
    options.Add("STUDY", study_, "The study").Require().Show("");
    AddArguments(options);
    changing_.AddOptions(options);
  }

 protected:
  virtual void AddArguments(Options& options) = 0;

  void AddPlateFiles(Options& options) {
    options.Add("PLATE", plates_, "The documents of the plates").Require().Show("");
  }

  /// Adds the named documents to the study. Returns a report of what was added.
  std::string addPlates(Vex2FileManager& study) const {
    constexpr std::chrono::milliseconds kPatience{200};
    ProgressLine progress(kPatience, ProgressLine::AtEnd::kErase);
    std::size_t done = 0;
    return lab::AddPlates(
        study, study_, plates_, changing_.Losses().Rules(), [&](const std::string& path) {
          progress.Show(fmt::format("plate {} of {}: {}", ++done, plates_.size(), Printable(path)));
        });
  }

  /// Calls `change` with the study and prints the report that it returns.
  template <typename Change>
  void ChangeStudy(const Change& change) const {
    std::cout << changing_.Apply(study_, [&](Document& document) {
      RequireStudy(document);
      return change(document);
    });
  }

  std::string study_;
  std::vector<std::string> plates_;
  ChangeOptions changing_;
};

class NewAction final : public StudyChange {
 public:
  NewAction()
      : StudyChange({"new", "Make a study from the documents of its plates.",
                     "vex study new study.vex plate1.vex plate2.vex"}) {}

  ExitCode Run() override {
    OutputFiles files(force_, "use 'vex study add' to add plates to it or --force to overwrite it");
    for (const std::string& plate : plates_) files.Read(plate);
    files.Write(study_, OutputFiles::Kind::kDocument).Claim();
    DocumentFile study;
    const std::string report = addPlates(study);
    std::cout << changing_.Finish(report, [&] { SaveDocument(study, study_); });
    if (!changing_.IsDryRun()) files.TellReplaced();
    return ExitCode::kDone;
  }

 protected:
  void AddArguments(Options& options) override {
    AddPlateFiles(options);
    options.AddFlag("--force", force_, "Overwrite STUDY if it exists");
  }

 private:
  bool force_ = false;
};

class AddAction final : public StudyChange {
 public:
  AddAction()
      : StudyChange({"add", "Add plates to a study: all of them, or none if one is refused.",
                     "vex study add study.vex plate3.vex"}) {}

  ExitCode Run() override {
    ChangeStudy([&](Document& study) { return addPlates(study.Content()); });
    return ExitCode::kDone;
  }

 protected:
  void AddArguments(Options& options) override { AddPlateFiles(options); }
};

class RemoveAction final : public StudyChange {
 public:
  RemoveAction()
      : StudyChange({"remove", "Remove plates from a study.",
                     "vex study remove study.vex plate1 plate2"}) {}

  ExitCode Run() override {
    ChangeStudy([&](Document& study) { return remove(study); });
    return ExitCode::kDone;
  }

 protected:
  void AddArguments(Options& options) override {
    options.Add("NAME", names_, "The plates' names").Require().Show("");
  }

 private:
  std::string remove(Document& study) const {
    std::vector<std::string> removed;
    for (const std::string& name : names_) {
      const Document::Plate* plate = FindPlate(study, name);
      if (plate == nullptr) RefusePlateName(study, name);
      if (std::find(removed.begin(), removed.end(), plate->name) != removed.end()) {
        throw Error(ErrorCode::kUsage, study_, fmt::format("the plate '{}' is given twice", name));
      }
      removed.push_back(plate->name);
    }
    std::string report;
    for (const std::string& name : removed) {
      study.Content().RemoveRQPlate(CString(std::string_view(name)));
      report += fmt::format("- {}\n", Printable(ToUtf8(name)));
    }
    return report;
  }

  std::vector<std::string> names_;
};

class ListAction final : public Command {
 public:
  ListAction()
      : Command(
            {"list", "List the plates of a study.",
             "vex study list study.vex\nvex study list --json study.vex | jq '.plates[].name'"}) {}

  void AddOptions(Options& options) override {
    options.Add("STUDY", study_, "The study").Require().Show("");
    options.AddFlag("--json", json_, "Print JSON: one object");
  }

  ExitCode Run() override {
    const Document document(study_, Document::Purpose::kReadHeads);
    const std::vector<StudyPlate> plates = StudyPlatesOf(document);
    if (json_) {
      PrintJson(std::cout, {{"file", study_}, {"plates", ToJson(plates)}});
    } else {
      std::cout << StudyText(study_, plates, Terminal::Out());
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  std::string study_;
  bool json_ = false;
};

class ExtractAction final : public Command {
 public:
  ExtractAction()
      : Command({"extract", "Save a plate of a study as a separate document.",
                 "vex study extract study.vex plate1 plate1.vex"}) {}

  void AddOptions(Options& options) override {
    options.Add("STUDY", study_, "The study").Require().Show("");
    options.Add("NAME", name_, "The plate's name").Require().Show("");
    options.Add("OUT", target_, "Where to save it").Require().Show("");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
    rewriting_.AddOptions(options);
  }

  ExitCode Run() override {
    const Document document(study_);
    const Document::Plate* plate = FindPlate(document, name_);
    if (plate == nullptr) RefusePlateName(document, name_);
    OutputFiles files(force_);
    files.Read(study_).Write(target_, OutputFiles::Kind::kDocument).Claim();
    // If the user interrupts the command from here on, OUT is either the new document or the old
    // one, and no temporary file remains.
    const Interrupts interrupts;
    ExtractPlate(document, *plate, target_, rewriting_.Rules());
    files.TellReplaced();
    return ExitCode::kDone;
  }

 private:
  std::string study_;
  std::string name_;
  std::string target_;
  bool force_ = false;
  SaveOptions rewriting_;
};

}  // namespace

std::unique_ptr<Command> MakeStudyCommand() {
  std::vector<std::unique_ptr<Command>> actions;
  actions.push_back(std::make_unique<NewAction>());
  actions.push_back(std::make_unique<AddAction>());
  actions.push_back(std::make_unique<RemoveAction>());
  actions.push_back(std::make_unique<ListAction>());
  actions.push_back(std::make_unique<ExtractAction>());
  actions.push_back(MakeStudySetCommand());
  return std::make_unique<CommandGroup>(
      Command::Description{"study", "Join plates into a study, and list, remove or extract them.",
                           "vex study new study.vex plate1.vex plate2.vex\n"
                           "vex study list study.vex"},
      std::move(actions));
}

}  // namespace vex2::tool
