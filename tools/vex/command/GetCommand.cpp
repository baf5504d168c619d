#include <iostream>
#include <vector>

#include "lab/Nearest.h"
#include "lab/json/Json.h"
#include "lab/json/JsonPath.h"
#include "lab/json/OverviewJson.h"
#include "lab/json/RecordsJson.h"
#include "lab/json/SetupJson.h"
#include "lab/model/DocumentFile.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Settings.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

constexpr const char* kGetMeaning =
    "Paths:\n"
    "  NAME              a value that 'vex info --json' shows: status, frames\n"
    "  NAME.NAME         a value within another: settings.comment, plate.rows\n"
    "  NAME[N]           an entry of a list, from 0: blocks[0].start\n"
    "  NAME[KEY]         the entry with this well, name or tag: wells[A1].sample,\n"
    "                    detectors[MYC].threshold, plates[liver].status\n"
    "  tree[TAG]         a record that 'vex tree --json' shows:\n"
    "                    tree[GLBL].children[SVOL].value\n\n"
    "  Upper and lower case, '-' and '_' make no difference: settings.sample_volume.\n"
    "  A value that contains other values is printed as JSON. A value that is not set\n"
    "  is printed as an empty line. If a path does not exist, the error lists the\n"
    "  paths that exist.";

class GetCommand final : public Command {
 public:
  GetCommand()
      : Command({"get", "Print one value of a document, for scripts.",
                 "vex get run.vex settings.sample-volume\nvex get run.vex wells[A1].sample\n"
                 "vex get run.vex blocks --json | jq length"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("PATH", path_, "The path of the value").Require().Show("");
    plate_.AddTo(options);
    options.AddFlag("--json", json_, "Print JSON");
    options.PutLast(kGetMeaning);
  }

  ExitCode Run() override {
    const Document document(file_, Document::Purpose::kReadHeads);
    const Document::Plate plate = plate_.Choose(document).front();
    const ordered_json root = describe(document, plate);
    const ValueAt found = FindValue(root, path_);
    if (found.value == nullptr) {
      throw Error(ErrorCode::kNoSuchValue, file_, WhyNoValue(found, path_, {"tree"}));
    }
    print(*found.value);
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  // Builds the JSON in which the path is looked up. Its keys are those of 'vex info
  // --json', and "wells", "detectors", "dyes" and, if the path begins with it, "tree".
  ordered_json describe(const Document& document, const Document::Plate& plate) const {
    ordered_json root = ToJson(OverviewOf(document, plate));
    const Vex2FileManager& content = *plate.content;
    if (content.GetPlateSetupComp() != nullptr) root["wells"] = DescribeWells(content)["wells"];
    root["detectors"] = DescribeDetectors(content);
    root["dyes"] = DescribeDyes(content);
    // The tree needs the document to be read again, so it is made only if the path asks for it.
    if (path_.starts_with("tree")) {
      DocumentFile file;
      file.OpenDocument(file_);
      root["tree"] = RecordsJson(file, plate);
    }
    return root;
  }

  void print(const ordered_json& value) const {
    if (json_ || value.is_structured()) {
      std::cout << value.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
    } else {
      const std::string text = JsonText(value);
      std::cout << (Terminal::Out().IsTerminal() ? Printable(text) : text) << '\n';
    }
  }

  std::string file_;
  std::string path_;
  PlateOption plate_;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeGetCommand() {
  return std::make_unique<GetCommand>();
}

}  // namespace vex2::tool
