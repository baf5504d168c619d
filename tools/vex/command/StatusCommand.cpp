#include <algorithm>
#include <cerrno>
#include <iostream>
#include <optional>

#include "lab/model/DocumentFile.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/files/Changing.h"
#include "tools/vex/text/Text.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::tool {

namespace {

class StatusCommand final : public Command {
 public:
  StatusCommand()
      : Command({"status", "Print a document's acquisition status, or set it in place.",
                 "vex status run.vex\nvex status run.vex DONE"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("CODE", code_, "The new one: ZERO, PROG or DONE, or any four").Show("");
    plate_.AddTo(options);
    changing_.AddOptions(options);
  }

  ExitCode Run() override {
    requireCode();
    if (!code_ || plate_.IsGiven()) return printOrChange();
    // A plain code is also the remedy for a run whose recorder is gone: its status does not refuse.
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
    if (!changing_.IsDryRun() &&
        document.SetAcquisitionStatus(file_.c_str(), code_->c_str()) != kSuccess) {
      fail();
    }
    std::cout << change(before) << (changing_.IsDryRun() ? Changing::kDryRun : "");
    return ExitCode::kDone;
  }

  void requireCode() const {
    if (!code_) return;
    for (const std::string_view known :
         {RunStatus::kNotStarted, RunStatus::kInProgress, RunStatus::kDone}) {
      const bool isAlike = std::equal(
          code_->begin(), code_->end(), known.begin(), known.end(),
          [](char given, char letter) { return given == letter || given == letter - 'A' + 'a'; });
      if (!isAlike || *code_ == known) continue;
      throw Error(
          ErrorCode::kUsage, file_,
          "the status '" + *code_ + "' is not known; did you mean " + std::string(known) + "?");
    }
    if (code_->size() == 4 && IsPlain(*code_)) return;
    throw Error(ErrorCode::kUsage, file_,
                "the status '" + *code_ + "' is not four plain characters, like DONE");
  }

  // Of a plate in a study, which is read whole, and saved whole with the plate's new status.
  ExitCode runOnPlates() const {
    if (code_) {
      std::cout << changing_.ApplyToPlate(file_, plate_, [&](Vex2FileManager& plate) {
        const CString before = plate.GetAcquisitionStatus();
        Vex2HeaderData header = plate.GetHeaderData();
        code_->copy(header.acquisitionStatus, sizeof header.acquisitionStatus);
        plate.SetHeaderData(header);
        return change(before);
      });
      return ExitCode::kDone;
    }
    const Document document(file_);
    for (const Document::Plate& plate : plate_.ChoosePlates(document)) {
      std::cout << Printable(plate.content->GetAcquisitionStatus().View());
      if (!plate_.IsGiven()) std::cout << "  " << Printable(ToUtf8(plate.name));
      std::cout << '\n';
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

  std::string change(const CString& before) const {
    return Printable(before.View()) + " -> " + *code_ + "\n";
  }

  [[noreturn]] void fail() const {
    DocumentFile document;
    CFileException reason;
    if (!document.Open(file_.c_str(), CFile::modeReadWrite, &reason)) {
      throw SystemError(file_, reason.GetError());
    }
    if (document.GetLength() < 68) {
      throw Error(ErrorCode::kDocument, file_, "the header is cut short before the status", 64);
    }
    throw SystemError(file_, EIO);
  }

  std::string file_;
  std::optional<std::string> code_;
  PlateOption plate_;
  Changing changing_;
};

}  // namespace

std::unique_ptr<Command> MakeStatusCommand() {
  return std::make_unique<StatusCommand>();
}

}  // namespace vex2::tool
