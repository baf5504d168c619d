#include <iostream>

#include "lab/check/DocumentCheck.h"
#include "lab/check/Repair.h"
#include "lab/model/DocumentLock.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/Interrupts.h"

namespace vex2::tool {

namespace {

constexpr const char* kMeaning =
    "What it does:\n"
    "  It sets lengths and positions right, cuts off a torn end, and touches nothing\n"
    "  else. A backup is made first: FILE.backup, or with a number where there is\n"
    "  one. The document is the old or the new one at every moment. Do not repair a\n"
    "  run that another program is recording.\n\n"
    "  What cannot be mended is told, with exit code 1; 'vex recover' takes what is\n"
    "  whole into a new document.";

class RepairCommand final : public Command {
 public:
  RepairCommand()
      : Command({"repair", "Mend in place what is safe to: torn ends, lengths, positions.",
                 "vex repair --dry-run run.vex\nvex repair run.vex && vex check run.vex"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.AddFlag("--dry-run", dryRun_, "Say what would be mended, and change nothing");
    options.PutLast(kMeaning);
  }

  ExitCode Run() override {
    if (dryRun_) {
      const RepairPlan plan = PlanRepair(file_);
      if (plan.IsEmpty()) return tellThatNothingIsMended();
      std::cout << Printable(file_) << ": this would be mended\n";
      print(plan);
      return ExitCode::kDone;
    }
    const DocumentLock lock(file_, DocumentLock::Holder::kCommand);
    const std::string document = lock.Document().string();
    const RepairPlan plan = PlanRepair(file_);
    if (plan.IsEmpty()) return tellThatNothingIsMended();
    // Who ends the command here gets the repaired document or the old one, and no temporary file.
    const Interrupts interrupts;
    mend(plan, document);
    return tellWhatIsLeft();
  }

 private:
  void mend(const RepairPlan& plan, const std::string& document) const {
    const std::string backup = BackUp(document);
    if (PlanRepair(backup) != plan) {
      throw Error(ErrorCode::kSystem, file_,
                  "another program changed it meanwhile; it is left alone, try again");
    }
    ApplyRepair(plan, backup, document);
    std::cout << Printable(file_) << ": mended; as it was, it is " << Printable(backup) << '\n';
    print(plan);
  }

  static void print(const RepairPlan& plan) {
    for (const RepairPlan::Patch& patch : plan.patches) {
      std::cout << "  byte " << patch.offset << ": " << patch.before << " -> " << patch.after
                << ", " << patch.what << '\n';
    }
    if (plan.newSize) std::cout << "  byte " << *plan.newSize << ": cut off " << plan.cut << '\n';
  }

  // What is wrong and cannot be mended is told in place of that nothing is to be mended.
  ExitCode tellThatNothingIsMended() const {
    const ExitCode code = tellWhatIsLeft();
    if (code == ExitCode::kDone) {
      std::cout << Printable(file_) << ": there is nothing to mend\n";
    }
    return code;
  }

  ExitCode tellWhatIsLeft() const {
    constexpr std::size_t kMostLines = 8;
    const Findings findings = CheckDocument(file_);
    const std::size_t errors = findings.Count(Severity::kError);
    if (errors == 0) return ExitCode::kDone;
    std::size_t told = 0;
    for (const Finding& finding : findings.Sorted()) {
      if (finding.severity != Severity::kError || told++ >= kMostLines) continue;
      PrintError(
          Error(ErrorCode::kDocument, file_, "not mended: " + finding.problem, finding.offset));
    }
    PrintLine(Printable(file_) + ": 'vex recover' takes what is whole into a new document");
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
