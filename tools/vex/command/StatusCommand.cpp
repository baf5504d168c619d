#include <fmt/core.h>

#include <iostream>
#include <optional>

#include "lab/Text.h"
#include "lab/model/AcquisitionStatus.h"
#include "lab/model/DocumentFile.h"
#include "lab/model/DocumentLock.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/ChangeOptions.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

class StatusCommand final : public Command {
 public:
  StatusCommand()
      : Command({"status", "Print a document's acquisition status, or set it in place.",
                 "vex status run.vex\nvex status run.vex DONE"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("CODE", code_, "New status: ZERO, PROG, DONE or any four characters").Show("");
    plate_.AddTo(options);
    changing_.AddOptions(options);
  }

  ExitCode Run() override {
    if (code_) RequireStatusCode(*code_, file_);
    if (!code_ || plate_.IsGiven()) return printOrChange();
    // This command can end a run whose recorder has crashed, so it does not refuse a run in
    // progress.
    const DocumentLock lock(file_, DocumentLock::Holder::kCommand);
    return printOrChange();
  }

 private:
  ExitCode printOrChange() {
    DocumentFile document;
    document.OpenDocument(file_);
    static_cast<void>(document.ReadHeaderData(nullptr));
    document.Abort();
    if (plate_.IsGiven() || (document.IsRQS() && !code_)) return runOnPlates();
    const CString before = document.GetAcquisitionStatus();
    if (!code_) {
      std::cout << Printable(before.View()) << '\n';
      return ExitCode::kDone;
    }
    if (!changing_.IsDryRun()) WriteStatus(file_, *code_);
    std::cout << change(before) << (changing_.IsDryRun() ? ChangeOptions::kDryRun : "");
    return ExitCode::kDone;
  }

  // Shows or sets the status of plates in a study. To set it, the whole study is read and saved.
  ExitCode runOnPlates() const {
    if (code_) {
      std::cout << changing_.ApplyToPlate(file_, plate_, [&](Vex2FileManager& plate) {
        const CString before = plate.GetAcquisitionStatus();
        StoreStatus(plate, *code_);
        return change(before);
      });
      return ExitCode::kDone;
    }
    const Document document(file_, Document::Purpose::kReadHeads);
    for (const Document::Plate& plate : plate_.ChoosePlates(document)) {
      std::cout << Printable(plate.content->GetAcquisitionStatus().View());
      if (!plate_.IsGiven()) std::cout << "  " << Printable(ToUtf8(plate.name));
      std::cout << '\n';
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

  std::string change(const CString& before) const {
    return fmt::format("{} -> {}\n", Printable(before.View()), *code_);
  }

  std::string file_;
  std::optional<std::string> code_;
  PlateOption plate_;
  ChangeOptions changing_;
};

}  // namespace

std::unique_ptr<Command> MakeStatusCommand() {
  return std::make_unique<StatusCommand>();
}

}  // namespace vex2::tool
