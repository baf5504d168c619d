#include <algorithm>
#include <cerrno>
#include <iostream>
#include <optional>

#include "tools/vex/Command.h"
#include "tools/vex/DocumentFile.h"

namespace vex2::tool {

namespace {

class StatusCommand final : public Command {
 public:
  StatusCommand()
      : Command({"status", "Print a document's acquisition status, or set it in place.",
                 "vex status run.vex\nvex status run.vex DONE"}) {}

  void AddOptions(CLI::App& app) override {
    app.add_option("FILE", file_, "The document")->required()->type_name("");
    app.add_option("CODE", code_, "The new one: ZERO, PROG or DONE, or any four")->type_name("");
  }

  ExitCode Run() override {
    requireCode();
    DocumentFile document;
    document.OpenDocument(file_);
    static_cast<void>(document.ReadHeaderData(nullptr));
    document.Abort();
    const CString before = document.GetAcquisitionStatus();
    if (!code_) {
      std::cout << Printable(before.View()) << '\n';
      return ExitCode::kDone;
    }
    if (document.SetAcquisitionStatus(file_.c_str(), code_->c_str()) != kSuccess) fail();
    std::cout << Printable(before.View()) << " -> " << *code_ << '\n';
    return ExitCode::kDone;
  }

 private:
  void requireCode() const {
    if (!code_) return;
    const bool isPlain =
        std::all_of(code_->begin(), code_->end(), [](char c) { return c >= ' ' && c <= '~'; });
    if (code_->size() == 4 && isPlain) return;
    throw Error(ExitCode::kUsage, file_,
                "the status '" + *code_ + "' is not four plain characters, like DONE");
  }

  [[noreturn]] void fail() const {
    DocumentFile document;
    CFileException reason;
    if (!document.Open(file_.c_str(), CFile::modeReadWrite, &reason)) {
      throw SystemError(file_, reason.GetError());
    }
    if (document.GetLength() < 68) {
      throw Error(ExitCode::kDocument, file_, "the header is cut short before the status", 64);
    }
    throw SystemError(file_, EIO);
  }

  std::string file_;
  std::optional<std::string> code_;
};

}  // namespace

std::unique_ptr<Command> MakeStatusCommand() {
  return std::make_unique<StatusCommand>();
}

}  // namespace vex2::tool
