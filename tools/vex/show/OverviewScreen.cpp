#include "tools/vex/show/OverviewScreen.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>

#include "lab/model/Codes.h"
#include "lab/model/Value.h"
#include "tools/vex/Errors.h"
#include "tools/vex/text/Paragraph.h"
#include "tools/vex/text/Table.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

// "AbsQ: absolute quantification"; the code alone when its meaning is not known.
std::string explained(CodeField field, std::string_view code) {
  const std::string meaning = CodeMeaning(field, code);
  return Printable(code) + (meaning.empty() ? "" : ": " + meaning);
}

class Screen {
 public:
  explicit Screen(const DocumentOverview& overview) : overview_(overview), plate_(overview.plate) {}

  void Print() {
    const std::string title =
        Printable(overview_.path) + (plate_.isEmbedded ? ", plate " + Printable(plate_.name) : "");
    std::cout << terminal_.Styled(title, Style::kBold) << '\n';
    if (plate_.isEmbedded) line("modified", Printable(plate_.modified));
    line("kind", kindText());
    line("plate", plateText());
    line("assay", assayText());
    line("status", explained(CodeField::kStatus, plate_.status), statusStyle());
    for (const BlockInfo& block : plate_.blocks) lines("data", blockItems(block));
    printSettings();
    printProgram();
    printRecords();
    printPlates();
    line("size", Counted(plate_.size, "byte"));
    printFaults();
  }

 private:
  static constexpr std::string_view kIndent = "  ";
  static constexpr std::size_t kLabelWidth = 20;
  static constexpr std::size_t kNarrowIndent = 4;  // where labels are not beside the values
  static constexpr std::size_t kNarrow = 60;
  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  void line(std::string_view label, const std::string& value, Style style = Style::kPlain) {
    std::cout << kIndent;
    if (isNarrow_) {
      const std::string title = std::string(label).append(label.empty() ? "" : ": ");
      std::cout << terminal_.Styled(Wrapped(title + whole(value), kNarrowIndent), style) << '\n';
      return;
    }
    std::cout << terminal_.Styled(PadRight(std::string(label), kLabelWidth), Style::kDim)
              << terminal_.Styled(Wrapped(whole(value), kIndent.size() + kLabelWidth), style)
              << '\n';
  }

  // Only what fills the screen on its own is left out, and where to have it is said.
  static std::string whole(const std::string& value) {
    constexpr std::size_t kMostColumns = 2000;
    if (!Terminal::Out().HasWidth() || Columns(value) <= kMostColumns) return value;
    return CutTo(value, kMostColumns) + " (" + Counted(Columns(value), "character") +
           " in all; 'vex get' prints it)";
  }

  // As many lines as it takes to show the items.
  void lines(std::string_view label, const std::vector<std::string>& items,
             std::string_view separator = ", ", Style style = Style::kPlain) {
    const std::size_t width =
        isNarrow_ ? kNoLimit : terminal_.TextWidth() - kIndent.size() - kLabelWidth;
    std::string current;
    for (const std::string& item : items) {
      if (!current.empty() && Columns(current) + Columns(item) + 2 * separator.size() > width) {
        current.append(separator.substr(0, separator.size() - 1));
        line(label, current, style);
        label = "";
        current.clear();
      }
      if (!current.empty()) current += separator;
      current += item;
    }
    line(label, current, style);
  }

  void printPlates() {
    if (!overview_.plates) return;
    line("plates", std::to_string(overview_.plates->size()) + " in all");
    for (const PlateOverview& plate : *overview_.plates) {
      line("", Printable(plate.name) + ": " + Counted(plate.wellCount, "well") + ", " +
                   Counted(static_cast<unsigned>(plate.frames), "frame") + ", " +
                   Printable(plate.status) + ", modified " + Printable(plate.modified));
    }
  }

  void printFaults() {
    constexpr std::size_t kMost = 8;
    const auto& faults = overview_.faults;
    for (std::size_t i = 0; i < faults.size() && i < kMost; ++i) {
      std::istringstream words("at byte " + std::to_string(faults[i].offset) + ": " +
                               Printable(faults[i].what));
      lines("fault", {std::istream_iterator<std::string>(words), {}}, " ", Style::kRed);
    }
    if (faults.size() > kMost) line("", "and " + Counted(faults.size() - kMost, "more fault"));
  }

  std::string kindText() const {
    const std::string& kind = plate_.kind;
    if (!CodeMeaning(CodeField::kKind, kind).empty()) return explained(CodeField::kKind, kind);
    return "ordinary document" + (kind.empty() ? "" : " (" + Printable(kind) + ")");
  }

  std::string plateText() const {
    const bool isOfType = plate_.wellCount == std::uint64_t{plate_.rows} * plate_.columns;
    return Counted(plate_.wellCount, "well") + (isOfType ? " (" : " (the header says ") +
           std::to_string(plate_.rows) + " x " + std::to_string(plate_.columns) + "), " +
           std::to_string(plate_.wellsInUse) + " in use, type " +
           explained(CodeField::kPlateType, plate_.plateType);
  }

  std::string assayText() const {
    const std::string remark = Printable(plate_.text);
    return explained(CodeField::kAssay, plate_.assay) + ", run " + Printable(plate_.run) +
           (remark.empty() ? "" : ", \"" + remark + "\"");
  }

  Style statusStyle() const {
    if (plate_.status == RunStatus::kInProgress) return Style::kYellow;
    return plate_.status == RunStatus::kDone ? Style::kGreen : Style::kPlain;
  }

  static std::vector<std::string> blockItems(const BlockInfo& block) {
    std::vector<std::string> items = {Printable(block.tag) + ": " +
                                      Counted(block.frameCount, "frame") + " of " +
                                      Counted(block.wells.size(), "well")};
    if (block.version != 2) items.push_back("version " + std::to_string(block.version));
    const std::string start = timeText(block.start, block.storedStart);
    const std::string end = timeText(block.end, block.storedEnd);
    if (!start.empty()) items.push_back("from " + start);
    if (!end.empty()) items.push_back("to " + end);
    if ((start + end).empty()) items.emplace_back("start unknown");
    return items;
  }

  // The bytes, where nothing tells what date and time they are. All of them 0 are no time.
  static std::string timeText(const std::optional<std::string>& time,
                              const std::array<std::uint8_t, 6>& stored) {
    if (time) return Printable(*time);
    if (stored == std::array<std::uint8_t, 6>{}) return {};
    std::string shown = "time bytes";
    for (const unsigned byte : stored) shown += " " + std::to_string(byte);
    return shown;
  }

  // A program that is text has its lines; of any other only the size is known.
  void printProgram() {
    if (!plate_.programSize) return;
    if (!plate_.programText) {
      return line("program", Counted(*plate_.programSize, "byte") + ", no text");
    }
    std::istringstream program(*plate_.programText);
    std::string each;
    for (std::string_view label = "program"; std::getline(program, each); label = "") {
      line(label, Printable(each));
    }
  }

  // Texts have lines of their own; numbers share some.
  void printSettings() {
    std::vector<std::string> numbers;
    for (const auto& [key, value] : plate_.settings) {
      std::string shown = ValueText(value);
      if (key == "log") std::replace(shown.begin(), shown.end(), '\n', ' ');
      if (std::holds_alternative<std::string>(value)) {
        line(key, Printable(shown));
      } else {
        numbers.push_back(std::string(key) + " " + shown);
      }
    }
    if (!numbers.empty()) lines("settings", numbers);
  }

  void printRecords() {
    std::vector<std::pair<std::string, unsigned>> counts;
    for (const Document::Record& record : plate_.records) {
      const auto found = std::find_if(counts.begin(), counts.end(),
                                      [&](const auto& count) { return count.first == record.tag; });
      if (found != counts.end()) {
        ++found->second;
      } else {
        counts.emplace_back(record.tag, 1U);
      }
    }
    std::vector<std::string> items = {std::to_string(plate_.records.size()) + " in all"};
    for (const auto& [tag, count] : counts) {
      items.push_back(Printable(tag) + (count > 1 ? " x" + std::to_string(count) : ""));
    }
    lines("records", items);
  }

  const DocumentOverview& overview_;
  const PlateOverview& plate_;
  const Terminal& terminal_ = Terminal::Out();
  bool isNarrow_ = terminal_.TextWidth() < kNarrow;
};

}  // namespace

void PrintOverview(const DocumentOverview& overview) {
  Screen(overview).Print();
}

void OverviewListing::Add(const DocumentOverview& overview) {
  const PlateOverview& plate = overview.plate;
  const std::size_t faults = overview.faults.size();
  const bool isStudy = overview.plates.has_value();
  rows_.push_back({Printable(overview.path),
                   isStudy ? "study of " + Counted(overview.plates->size(), "plate") : "run",
                   Printable(plate.status), isStudy ? "" : std::to_string(plate.frames),
                   isStudy ? "" : std::to_string(plate.wellsInUse),
                   Printable(plate.start.value_or("")),
                   faults > 0 ? Counted(faults, "fault") : ""});
}

void OverviewListing::Print() const {
  if (rows_.empty()) return;
  constexpr std::size_t kFrames = 3;
  constexpr std::size_t kWells = 4;
  std::cout << DrawTable({"file", "kind", "status", "frames", "wells", "start", "faults"}, rows_,
                         Terminal::Out(), {kFrames, kWells});
}

}  // namespace vex2::tool
