#include <iostream>

#include "tools/vex/command/Command.h"
#include "tools/vex/document/DocumentPlates.h"
#include "tools/vex/document/RecordValue.h"
#include "tools/vex/text/Json.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;
using Style = Terminal::Style;

/// A line for each record, indented by its depth.
class TextTree final : public RecordVisitor {
 public:
  explicit TextTree(std::uint64_t end) : end_(end) {
    std::cout << terminal_.Styled(PadLeft("position", kNumberWidth) +
                                      PadLeft("length", kNumberWidth) + "  record",
                                  Style::kDim)
              << '\n';
  }

  void Begin(const FileRecord& record, CFile& file) override {
    if (record.offset >= end_) return;
    const std::size_t indent = 2 * static_cast<std::size_t>(record.depth - 1);
    const std::string tag = Printable(ToUtf8(record.Tag()));
    const std::size_t taken = 2 * kNumberWidth + 2 + indent + tag.size() + 2;
    const std::size_t width = terminal_.TextWidth();
    std::cout << terminal_.Styled(number(record.offset), Style::kDim) << number(record.length)
              << std::string(indent + 2, ' ')
              << terminal_.Styled(tag, IsKnownTag(record.Tag()) ? Style::kBold : Style::kYellow)
              << "  " << DescribeRecord(file, record, width > taken ? width - taken : 1) << '\n';
  }

  void Finish(std::uint64_t size) {
    if (end_ >= size) return;
    std::cout << terminal_.Styled(number(end_), Style::kDim) << number(size - end_) << "  "
              << terminal_.Styled("bytes that are no record", Style::kYellow) << '\n';
  }

 private:
  static constexpr std::size_t kNumberWidth = 10;

  static std::string number(std::uint64_t value) {
    return PadLeft(std::to_string(value), kNumberWidth);
  }

  const Terminal& terminal_ = Terminal::Out();
  std::uint64_t end_;
};

/// A list of objects, of everything that the document's reader would take for a record. It is
/// written as the records are met, so that a large document costs no more than a small one.
class JsonTree final : public RecordVisitor {
 public:
  JsonTree() { std::cout << '['; }

  void Begin(const FileRecord& record, CFile& file) override {
    std::cout << (isFirst_ ? "\n" : ",\n") << indent(record.depth);
    std::string text = fields(record, file).dump();
    if (holdsRecords(record)) {
      text.back() = ',';
      text += "\"children\":[";
      ++open_;
    }
    std::cout << text;
    isFirst_ = holdsRecords(record);
  }

  void End(const FileRecord& record) override {
    if (!holdsRecords(record)) return;
    close(record.depth);
  }

  void Finish() {
    // A record that could not be followed to its end left its lists open.
    while (open_ > 0) close(open_);
    std::cout << "\n]\n";
  }

 private:
  static bool holdsRecords(const FileRecord& record) {
    const BodyLayout layout = record.kind->layout;
    return layout == BodyLayout::kList || layout == BodyLayout::kCell ||
           layout == BodyLayout::kPlate;
  }

  static std::string indent(int depth) {
    return std::string(2 * static_cast<std::size_t>(depth), ' ');
  }

  static ordered_json fields(const FileRecord& record, CFile& file) {
    ordered_json object = {
        {"tag", ToUtf8(record.Tag())}, {"offset", record.offset}, {"length", record.length}};
    if (!IsKnownTag(record.Tag())) object["known"] = false;
    ordered_json value = ReadRecordValue(file, record);
    if (!value.is_null()) object["value"] = std::move(value);
    object.update(ReadRecordFields(file, record));
    return object;
  }

  void close(int depth) {
    std::cout << (isFirst_ ? "]}" : "\n" + indent(depth) + "]}");
    isFirst_ = false;
    --open_;
  }

  bool isFirst_ = true;
  int open_ = 0;
};

/// Passes the records of one plate on as if it were a document of its own.
class PlateRecords final : public RecordVisitor {
 public:
  PlateRecords(const Document::Plate& plate, RecordVisitor& next) : plate_(plate), next_(next) {}

  void Begin(const FileRecord& record, CFile& file) override {
    if (isWithin(record)) next_.Begin(lifted(record), file);
  }
  void End(const FileRecord& record) override {
    if (isWithin(record)) next_.End(lifted(record));
  }

 private:
  bool isWithin(const FileRecord& record) const {
    if (!plate_.isEmbedded) return true;
    return record.offset > plate_.offset && record.offset < plate_.end;
  }
  FileRecord lifted(FileRecord record) const {
    // A plate is a record in the record of all plates.
    constexpr int kDepthOfPlate = 2;
    if (plate_.isEmbedded) record.depth -= kDepthOfPlate;
    return record;
  }

  const Document::Plate& plate_;
  RecordVisitor& next_;
};

class TreeCommand final : public Command {
 public:
  TreeCommand()
      : Command(
            {"tree", "Show every record of a document, nested as in the file.",
             "vex tree run.vex\nvex tree --json run.vex | jq '.[] | select(.tag == \"GLBL\")'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    plate_.AddTo(options);
    options.AddFlag("--json", json_, "For programs: a list of objects");
  }

  ExitCode Run() override {
    const Document document(file_);
    // The tree of a study has those of its plates in it.
    const Document::Plate plate = plate_.Choose(document).front();
    DocumentFile file;
    file.OpenDocument(file_);
    if (json_) {
      JsonTree tree;
      walk(file, plate, tree);
      tree.Finish();
    } else {
      TextTree tree(plate.isEmbedded ? plate.end : document.StrayOffset());
      walk(file, plate, tree);
      tree.Finish(plate.end);
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  static void walk(CFile& file, const Document::Plate& plate, RecordVisitor& tree) {
    PlateRecords records(plate, tree);
    static_cast<void>(WalkRecords(file, records));
  }

  std::string file_;
  PlateOption plate_;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeTreeCommand() {
  return std::make_unique<TreeCommand>();
}

}  // namespace vex2::tool
