#include <iostream>

#include "tools/vex/Command.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::tool {
namespace {
class StatusCommand final : public Command {
 public:
  StatusCommand()
      : Command({"status", "Print a document's acquisition status, or set it in place.",
                 "vex status run.vex\nvex status run.vex DONE"}) {}
  void AddOptions(CLI::App& app) override {
    app.add_option("FILE", file_, "The document")->required();
  }
  ExitCode Run() override {
    Vex2FileManager document;
    if (document.ReadFromFile(file_.c_str()) != kSuccess) throw SystemError(file_, ENOENT);
    std::cout << document.GetAcquisitionStatus() << "\n";
    return ExitCode::kDone;
  }

 private:
  std::string file_;
};
}  // namespace
std::unique_ptr<Command> MakeStatusCommand() {
  return std::make_unique<StatusCommand>();
}
}  // namespace vex2::tool
