#include <fmt/core.h>

#include <iostream>
#include <optional>

#include "lab/check/Check.h"
#include "lab/check/Repair.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"

namespace vex2::tool {

namespace {

constexpr const char* kRepairMeaning =
    "What it does:\n"
    "  The command makes a backup, FILE.backup, or FILE.backup-2 and so on if that\n"
    "  exists. Then it corrects lengths and offsets, cuts off uncommitted bytes, and\n"
    "  changes nothing else. If it is interrupted, the old or the repaired document\n"
    "  remains. Do not repair a run that another program is recording.\n\n"
    "  Errors that cannot be repaired are printed, and the exit code is then 1;\n"
    "  'vex recover' writes the undamaged content to a new document.";

class RepairCommand final : public Command {
 public:
  RepairCommand()
      : Command({"repair", "Repair lengths, offsets and uncommitted bytes in place.",
                 "vex repair --dry-run run.vex\nvex repair run.vex && vex check run.vex"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.AddFlag("--dry-run", dryRun_, "Print what would be repaired, and change nothing");
    options.PutLast(kRepairMeaning);
  }

  ExitCode Run() override {
    // If the user interrupts the command from here on, the path holds the repaired document or the
    // old one, and no temporary file remains.
    std::optional<Interrupts> interrupts;
    const RepairReport report =
        Repair(file_, {.dryRun = dryRun_, .confirm = [&](const RepairPlan& /*plan*/) {
                         interrupts.emplace();
                         return true;
                       }});
    if (report.plan.IsEmpty()) return tellThatNothingIsRepaired();
    std::cout << (dryRun_ ? fmt::format("{}: this would be repaired\n", Printable(file_))
                          : fmt::format("{}: repaired; as it was, it is {}\n", Printable(file_),
                                        Printable(report.backup.string())));
    print(report.plan);
    return dryRun_ ? ExitCode::kDone : tellWhatIsLeft();
  }

 private:
  static void print(const RepairPlan& plan) {
    for (const RepairPlan::Patch& patch : plan.patches) {
      std::cout << fmt::format("  byte {}: {} -> {}, {}\n", patch.offset, patch.before, patch.after,
                               patch.what);
    }
    if (plan.newSize) {
      std::cout << fmt::format("  byte {}: cut off {}\n", *plan.newSize, plan.cut);
    }
  }

  // Prints the errors that cannot be repaired or, if there are none, that there is nothing to
  // repair.
  ExitCode tellThatNothingIsRepaired() const {
    const ExitCode code = tellWhatIsLeft();
    if (code == ExitCode::kDone) {
      std::cout << Printable(file_) << ": there is nothing to repair\n";
    }
    return code;
  }

  ExitCode tellWhatIsLeft() const {
    constexpr std::size_t kMostLines = 8;
    const Findings findings = Check(file_);
    if (findings.Count(Severity::kError) == 0) return ExitCode::kDone;
    std::size_t told = 0;
    for (const Finding& finding : findings.list) {
      if (finding.severity != Severity::kError || told++ >= kMostLines) continue;
      PrintError(Error(ErrorCode::kDocument, file_,
                       fmt::format("not repaired: {}", finding.problem), finding.offset));
    }
    PrintLine(
        fmt::format("{}: 'vex recover' takes what is whole into a new document", Printable(file_)));
    return ExitCode::kDocument;
  }

  std::string file_;
  bool dryRun_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeRepairCommand() {
  return std::make_unique<RepairCommand>();
}

}  // namespace vex2::tool
