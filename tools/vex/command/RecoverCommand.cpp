#include <fmt/core.h>

#include <chrono>
#include <iostream>

#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/RecoverJson.h"
#include "lab/model/Document.h"
#include "lab/recover/Recover.h"
#include "lab/text/RecoverText.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/screen/ProgressLine.h"

namespace vex2::tool {

namespace {

constexpr const char* kRecoverMeaning =
    "What it does:\n"
    "  Records are found by their tags, frames by the structure of their data block.\n"
    "  FILE itself is never changed. Damaged bytes within a text or a reading cannot\n"
    "  be noticed, so they are kept.\n\n"
    "  The exit code is 0 if the document was whole, 1 if something was lost and the\n"
    "  rest is in OUT, and 2 if there is nothing to recover.";

class RecoverCommand final : public Command {
 public:
  RecoverCommand()
      : Command({"recover", "Write the undamaged content of a damaged document to a new one.",
                 "vex recover damaged.vex -o recovered.vex\n"
                 "vex recover --json damaged.vex -o recovered.vex | jq .lost"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", source_, "The damaged document").Require().Show("");
    options.Add("-o,--output", target_, "The document to write").Require().Show("OUT");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
    options.AddFlag("--json", json_, "Print JSON: the report as one object");
    options.PutLast(kRecoverMeaning);
  }

  ExitCode Run() override {
    // If the user interrupts the command from here on, the path holds the new document or none, and
    // no temporary file remains.
    Interrupts interrupts;
    const std::string replaced = ReplacedText(target_, force_);
    const std::string running = NoteOnRunAt(source_, "the new document");
    const RecoverReport report = recover(interrupts);
    PrintIfAny(replaced);
    PrintIfAny(running);
    if (json_) {
      PrintJson(std::cout, RecoverJson(report, source_, target_), 2);
    } else {
      std::cout << RecoverText(report, source_, target_, Terminal::Out(), "--json");
    }
    return report.IsWhole() ? ExitCode::kDone : ExitCode::kDocument;
  }

 private:
  RecoverReport recover(Interrupts& interrupts) const {
    constexpr std::chrono::milliseconds kPatience{500};
    constexpr std::uint64_t kStep = 1U << 20U;
    ProgressLine line(kPatience, ProgressLine::AtEnd::kErase);
    std::uint64_t next = kStep;
    return Recover(source_, target_,
                   {.replace = force_,
                    .existsHint = "use --force to overwrite it",
                    .progress = [&](std::uint64_t done, std::uint64_t size) {
                      if (interrupts.Pending()) return false;
                      if (done < next) return true;
                      next = done + kStep;
                      line.Show(fmt::format("recovering: {} %", done * 100 / size));
                      return true;
                    }});
  }

  std::string source_;
  std::string target_;
  bool force_ = false;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeRecoverCommand() {
  return std::make_unique<RecoverCommand>();
}

}  // namespace vex2::tool
