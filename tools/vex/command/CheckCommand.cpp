#include <iostream>

#include "lab/check/Check.h"
#include "lab/json/FindingsJson.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/text/FindingsText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/FileArguments.h"

namespace vex2::tool {

namespace {

constexpr const char* kCheckMeaning =
    "Severities:\n"
    "  error    some content is not read, or the next write would do damage\n"
    "  warning  unusual, but all content is read\n"
    "  note     correct, but worth knowing; never changes the exit code\n\n"
    "  Errors are printed first, then warnings, then notes, each in the order of\n"
    "  their offsets. JSON has the same order.\n\n"
    "  The exit code is 1 if there are errors, with --strict also if there are\n"
    "  warnings, and 0 otherwise. 'vex repair' corrects in place what is safe to\n"
    "  change; 'vex recover' writes the undamaged content to a new document.";

class CheckCommand final : public Command {
 public:
  CheckCommand()
      : Command({"check", "Check documents for problems, without changing them.",
                 "vex check *.vex\nvex check --strict run.vex && echo spotless\n"
                 "vex check --json run.vex | jq '.findings[] | select(.severity == \"error\")'"}) {}

  void AddOptions(Options& options) override {
    files_.AddTo(options);
    options.AddFlag("--strict", strict_, "Exit with code 1 for warnings, too");
    options.AddFlag("--notes", notes_, "Show notes, too");
    options.AddFlag("--json", json_, "Print JSON: one object per document, one per line");
    options.PutLast(kCheckMeaning);
  }

  ExitCode Run() override {
    return files_.ForEach(files_.List(), [&](const std::string& file) -> FileArguments::Shown {
      return
          [this, file, findings = Check(file, NamesOfCommands())] { return show(file, findings); };
    });
  }

 private:
  ExitCode show(const std::string& file, const Findings& findings) const {
    if (json_) {
      PrintJson(std::cout, FindingsJson(file, findings));
    } else {
      std::cout << FindingsText(file, findings, notes_, Terminal::Out());
    }
    const bool isSound = findings.Count(Severity::kError) == 0 &&
                         (!strict_ || findings.Count(Severity::kWarning) == 0);
    return isSound ? ExitCode::kDone : ExitCode::kDocument;
  }

  FileArguments files_;
  bool strict_ = false;
  bool notes_ = false;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeCheckCommand() {
  return std::make_unique<CheckCommand>();
}

}  // namespace vex2::tool
