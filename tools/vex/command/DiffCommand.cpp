#include <iostream>

#include "lab/compare/Diff.h"
#include "lab/json/DiffJson.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"

namespace vex2::tool {

namespace {

constexpr const char* kDiffMeaning =
    "Exit codes: 0 the documents are equal, 1 they differ, 2 one cannot be compared.";

class DiffCommand final : public Command {
 public:
  DiffCommand()
      : Command({"diff", "Show the differences between two documents.",
                 "vex diff before.vex after.vex\n"
                 "vex diff run.vex copy.vex --readings --tolerance 0.01\n"
                 "vex diff run.vex copy.vex --json | jq '.differences | length'"}) {}

  void AddOptions(Options& options) override {
    options.Add("A", one_, "A document").Require().Show("");
    options.Add("B", other_, "The document to compare it with").Require().Show("");
    options.Add("--tolerance", diff_.tolerance, "Readings that differ by X or less are equal")
        .Show("X")
        .AllowRange(0.0, 1e12);
    options.AddFlag("--setup", setup_, "Only settings, program, wells, detectors, calibration");
    options.AddFlag("--readings", readings_, "Only the readings");
    options.AddFlag("--records", records_, "Only other records, and unknown bytes");
    options.AddFlag("--json", json_, "Print JSON: all differences as one object");
    options.PutLast(kDiffMeaning);
  }

  ExitCode Run() override {
    if (setup_ || readings_ || records_) {
      diff_.setup = setup_;
      diff_.readings = readings_;
      diff_.records = records_;
    }
    try {
      const auto differences = Diff(one_, other_, diff_);
      if (json_) std::cout << DiffJson(differences, one_, other_);
      for (const Difference& difference : differences) {
        if (!json_) std::cout << Printable(TextOf(difference)) << '\n';
      }
      return differences.empty() ? ExitCode::kDone : ExitCode::kDocument;
    } catch (const Error& error) {
      // Exit code 1 means that the documents were compared and differ, so an error returns 2.
      if (error.Class() == ErrorClass::kInterrupted) throw;
      PrintError(error);
      return ExitCode::kUsage;
    }
  }

 private:
  std::string one_;
  std::string other_;
  DiffOptions diff_;
  bool setup_ = false;
  bool readings_ = false;
  bool records_ = false;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeDiffCommand() {
  return std::make_unique<DiffCommand>();
}

}  // namespace vex2::tool
