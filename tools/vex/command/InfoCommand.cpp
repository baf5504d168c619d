#include <iostream>
#include <memory>

#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/OverviewJson.h"
#include "lab/text/OverviewText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/FileArguments.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

class InfoCommand final : public Command {
 public:
  InfoCommand()
      : Command({"info", "Show an overview of a document, or one line for each of several.",
                 "vex info run.vex\nvex info *.vex\nvex info --json *.vex | jq '.frames'"}) {}

  void AddOptions(Options& options) override {
    files_.AddTo(options);
    plate_.AddTo(options);
    const Option screens =
        options.AddFlag("--long", screens_, "Show a full screen for each document");
    options.AddFlag("--json", json_, "Print JSON: one object per document, one per line")
        .Exclude(screens);
  }

  ExitCode Run() override {
    const std::vector<std::string> files = files_.List();
    hasSeveral_ = files.size() > 1;
    const ExitCode worst =
        files_.ForEach(files, [&](const std::string& file) -> FileArguments::Shown {
          const auto document =
              std::make_shared<const Document>(file, Document::Purpose::kReadHeads);
          // The overview of a study includes its plates.
          return
              [this, document, overview = OverviewOf(*document, plate_.Choose(*document).front())] {
                show(overview);
                document->RequireWhole("");
                return ExitCode::kDone;
              };
        });
    std::cout << listing_.Text();
    return worst;
  }

 private:
  void show(const DocumentOverview& overview) {
    if (json_) {
      PrintJson(std::cout, ToJson(overview));
    } else if (hasSeveral_ && !screens_) {
      listing_.Add(overview);
    } else {
      if (shown_++ > 0) std::cout << '\n';
      std::cout << OverviewText(overview, Terminal::Out(), "'vex get' prints it");
    }
  }

  FileArguments files_;
  PlateOption plate_;
  bool json_ = false;
  bool screens_ = false;
  bool hasSeveral_ = false;
  int shown_ = 0;
  OverviewListing listing_{Terminal::Out()};
};

}  // namespace

std::unique_ptr<Command> MakeInfoCommand() {
  return std::make_unique<InfoCommand>();
}

}  // namespace vex2::tool
