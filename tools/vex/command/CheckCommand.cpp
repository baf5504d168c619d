#include <algorithm>
#include <iostream>

#include "lab/check/Check.h"
#include "lab/exchange/Json.h"
#include "lab/exchange/JsonOutput.h"
#include "lab/exchange/ReportJson.h"
#include "lab/text/FindingsText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

namespace {

constexpr const char* kMeaning =
    "What it means:\n"
    "  error    content is not read, or the next write would do harm\n"
    "  warning  out of the ordinary, but all of the content is read\n"
    "  note     as it should be, and good to know; never a finding\n\n"
    "  Errors come first, then warnings, then notes, each from the file's begin on;\n"
    "  so they do with --json.\n\n"
    "  The exit code is 1 when there are errors, with --strict also when there are\n"
    "  warnings, and else 0. 'vex repair' corrects in place what is safe;\n"
    "  'vex recover' takes what is whole into a new document.";

class CheckCommand final : public Command {
 public:
  CheckCommand()
      : Command({"check", "Look for everything that can be wrong with documents.",
                 "vex check *.vex\nvex check --strict run.vex && echo spotless\n"
                 "vex check --json run.vex | jq '.findings[] | select(.severity == \"error\")'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", files_, "The documents").Require().Show("");
    options.AddFlag("--strict", strict_, "Warnings are findings, too: exit code 1");
    options.AddFlag("--notes", notes_, "Show notes, too");
    options.AddFlag("--json", json_, "For programs: an object a document, one a line");
    options.PutLast(kMeaning);
  }

  ExitCode Run() override {
    ExitCode worst = ExitCode::kDone;
    for (const std::string& file : files_) {
      try {
        worst = std::max(worst, check(file));
      } catch (const Error& error) {
        PrintError(error);
        worst = std::max(worst, ExitCodeOf(error));
      }
    }
    return worst;
  }

 private:
  ExitCode check(const std::string& file) const {
    const Findings findings = Check(file, NamesOfCommands());
    if (json_) {
      PrintJson(std::cout, FindingsJson(file, findings));
    } else {
      std::cout << FindingsText(file, findings, notes_, Terminal::Out());
    }
    const bool isSound = findings.Count(Severity::kError) == 0 &&
                         (!strict_ || findings.Count(Severity::kWarning) == 0);
    return isSound ? ExitCode::kDone : ExitCode::kDocument;
  }

  std::vector<std::string> files_;
  bool strict_ = false;
  bool notes_ = false;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeCheckCommand() {
  return std::make_unique<CheckCommand>();
}

}  // namespace vex2::tool
