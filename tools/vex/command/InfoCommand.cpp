#include <algorithm>
#include <iostream>

#include "lab/exchange/DocumentJson.h"
#include "lab/exchange/Json.h"
#include "lab/exchange/JsonOutput.h"
#include "lab/text/OverviewText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

namespace {

class InfoCommand final : public Command {
 public:
  InfoCommand()
      : Command({"info", "Show what a document holds, or a line for each of several.",
                 "vex info run.vex\nvex info *.vex\nvex info --json *.vex | jq '.frames'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", files_, "The documents").Require().Show("");
    plate_.AddTo(options);
    const Option screens =
        options.AddFlag("--long", screens_, "Show a full screen for each of several documents");
    options.AddFlag("--json", json_, "Print JSON: one object per document, one per line")
        .Exclude(screens);
  }

  ExitCode Run() override {
    ExitCode worst = ExitCode::kDone;
    for (const std::string& file : files_) {
      try {
        show(file);
      } catch (const Error& error) {
        PrintError(error);
        worst = std::max(worst, ExitCodeOf(error));
      }
    }
    std::cout << listing_.Text();
    return worst;
  }

 private:
  void show(const std::string& file) {
    const Document document(file, Document::Purpose::kReadHeads);
    // What a study says has its plates in it.
    const DocumentOverview overview = OverviewOf(document, plate_.Choose(document).front());
    if (json_) {
      PrintJson(std::cout, ToJson(overview));
    } else if (files_.size() > 1 && !screens_) {
      listing_.Add(overview);
    } else {
      if (shown_++ > 0) std::cout << '\n';
      std::cout << OverviewText(overview, Terminal::Out(), "'vex get' prints it");
    }
    document.RequireWhole("");
  }

  std::vector<std::string> files_;
  PlateOption plate_;
  bool json_ = false;
  bool screens_ = false;
  int shown_ = 0;
  OverviewListing listing_{Terminal::Out()};
};

}  // namespace

std::unique_ptr<Command> MakeInfoCommand() {
  return std::make_unique<InfoCommand>();
}

}  // namespace vex2::tool
