#include "lab/model/Study.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/PlateOption.h"
#include "tools/vex/options/SaveOptions.h"

namespace vex2::tool {

namespace {

class CopyCommand final : public Command {
 public:
  CopyCommand()
      : Command({"copy", "Read a document and save it under another name.",
                 "vex copy run.vex saved.vex\nvex copy --upgrade old.vex new.vex"}) {}

  void AddOptions(Options& options) override {
    options.Add("IN", source_, "The document to read").Require().Show("");
    options.Add("OUT", target_, "Where to save it").Require().Show("");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
    plate_.AddTo(options);
    rewriting_.AddOptions(options);
  }

  ExitCode Run() override {
    Document document(source_);
    OutputFiles files(force_);
    files.Read(source_).Write(target_, OutputFiles::Kind::kDocument).Claim();
    // If the user interrupts the command from here on, the path holds the new document or the old
    // one, and no temporary file remains.
    const Interrupts interrupts;
    if (plate_.IsGiven()) {
      ExtractPlate(document, plate_.One(document), target_, rewriting_.Rules());
    } else {
      PrepareToSave(document, target_, rewriting_.Rules());
      SaveDocument(document.Content(), target_);
    }
    files.TellReplaced();
    return ExitCode::kDone;
  }

 private:
  std::string source_;
  std::string target_;
  bool force_ = false;
  PlateOption plate_;
  SaveOptions rewriting_;
};

}  // namespace

std::unique_ptr<Command> MakeCopyCommand() {
  return std::make_unique<CopyCommand>();
}

}  // namespace vex2::tool
