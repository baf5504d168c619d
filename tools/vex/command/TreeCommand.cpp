#include <fmt/core.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <vector>

#include "lab/Nearest.h"
#include "lab/exchange/RecordTree.h"
#include "lab/text/Columns.h"
#include "lab/text/RecordText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

/// A line for each record, indented by its depth.
class TextTree final : public RecordVisitor {
 public:
  explicit TextTree(std::uint64_t end) : end_(end) {}

  void Begin(const FileRecord& record, CFile& file) override {
    if (record.offset >= end_) return;
    printHead();
    const std::size_t indent = 2 * static_cast<std::size_t>(record.depth - 1);
    const std::string tag = Printable(ToUtf8(record.Tag()));
    std::cout << terminal_.Styled(number(record.offset), Style::kDim) << number(record.length)
              << std::string(indent + 2, ' ')
              << terminal_.Styled(tag, IsKnownTag(record.Tag()) ? Style::kBold : Style::kYellow)
              << described(record, file, 2 * kNumberWidth + 2 + indent + tag.size() + 2) << '\n';
  }

  void Finish(std::uint64_t size) {
    printHead();
    if (end_ >= size) return;
    std::cout << terminal_.Styled(number(end_), Style::kDim) << number(size - end_) << "  "
              << terminal_.Styled("bytes that are no record", Style::kYellow) << '\n';
  }

 private:
  static constexpr std::size_t kNumberWidth = 10;

  // Above the first record, so that there is none above an error.
  void printHead() {
    if (hasHead_) return;
    hasHead_ = true;
    std::cout << terminal_.Styled(PadLeft("position", kNumberWidth) +
                                      PadLeft("length", kNumberWidth) + "  record",
                                  Style::kDim)
              << '\n';
  }

  // The words about the record, beside it or, where there is no room, below it.
  std::string described(const FileRecord& record, CFile& file, std::size_t taken) const {
    constexpr std::size_t kLeastRoom = 24;
    constexpr std::size_t kBelow = 4;
    // What would fill the screen on its own is for --json and 'vex get'.
    constexpr std::size_t kMost = 2000;
    const std::size_t width = terminal_.TextWidth();
    const std::string words = DescribeRecord(file, record, std::max(width, kMost), terminal_);
    if (words.empty()) return "";
    if (Columns(words) + taken <= width || width >= taken + kLeastRoom) {
      return "  " + terminal_.Wrapped(words, taken);
    }
    return "\n" + std::string(kBelow, ' ') + terminal_.Wrapped(words, kBelow);
  }

  static std::string number(std::uint64_t value) {
    return PadLeft(std::to_string(value), kNumberWidth);
  }

  const Terminal& terminal_ = Terminal::Out();
  std::uint64_t end_;
  bool hasHead_ = false;
};

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
    options.AddFlag("--json", json_, "Print JSON: an object with the records");
  }

  ExitCode Run() override {
    const Document document(file_, Document::Purpose::kReadHeads);
    // The tree of a study has those of its plates in it.
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
      TextTree tree(plate.isEmbedded ? plate.end : document.RecordsEnd());
      walk(file, plate, selection, tree);
      if (!tag_) tree.Finish(plate.end);
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  static constexpr std::uint32_t kDeepest = 64;  // deeper ones no reader follows

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
