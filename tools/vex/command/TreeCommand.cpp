#include <fmt/core.h>

#include <iostream>
#include <optional>
#include <vector>

#include "lab/Nearest.h"
#include "lab/json/RecordsJson.h"
#include "lab/text/TreeText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

class TreeCommand final : public Command {
 public:
  TreeCommand()
      : Command({"tree", "Show every record of a document, nested as in the file.",
                 "vex tree run.vex\nvex tree run.vex --depth 1\n"
                 "vex tree run.vex --only GLBL --json | jq '.records[].children'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    plate_.AddTo(options);
    options.Add("--depth", depth_, "Levels of nesting to show; 1: no nested records")
        .Show("N")
        .AllowRange(1U, kDeepest);
    options.Add("--only", tag_, "Show only records with this tag, with their content").Show("TAG");
    options.AddFlag("--json", json_, "Print JSON: one object with the records");
  }

  ExitCode Run() override {
    const Document document(file_, Document::Purpose::kReadHeads);
    // The tree of a study includes the trees of its plates.
    const Document::Plate plate = plate_.Choose(document).front();
    DocumentFile file;
    file.OpenDocument(file_);
    TreeSelection selection;
    if (depth_) selection.depth = static_cast<int>(*depth_);
    selection.tag = tag_;
    if (json_) {
      JsonTree tree(std::cout, selection.depth);
      walk(file, plate, selection, tree);
      tree.Finish();
    } else {
      TreeText tree(std::cout, plate.isEmbedded ? plate.end : document.RecordsEnd(),
                    Terminal::Out());
      walk(file, plate, selection, tree);
      if (!tag_) tree.Finish(plate.end);
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  static constexpr std::uint32_t kDeepest = 64;  // readers do not follow deeper records

  void walk(CFile& file, const Document::Plate& plate, const TreeSelection& selection,
            RecordVisitor& tree) const {
    SelectedRecords records(plate, selection, tree);
    static_cast<void>(WalkRecords(file, records));
    if (records.HasAny() || !tag_) return;
    const std::vector<std::string> tags(records.Tags().begin(), records.Tags().end());
    throw Error(ErrorCode::kNoSuchValue, file_,
                fmt::format("it has no record \"{}\"{}", *tag_, DidYouMean(*tag_, tags)));
  }

  std::string file_;
  PlateOption plate_;
  std::optional<std::uint32_t> depth_;
  std::optional<std::string> tag_;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeTreeCommand() {
  return std::make_unique<TreeCommand>();
}

}  // namespace vex2::tool
