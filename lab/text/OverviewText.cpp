#include "lab/text/OverviewText.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <sstream>

#include "lab/Text.h"
#include "lab/model/Codes.h"
#include "lab/model/Value.h"
#include "lab/text/Columns.h"
#include "lab/text/Table.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

using Style = TextForm::Style;

class Screen {
 public:
  Screen(const DocumentOverview& overview, const TextForm& form, std::string_view whole)
      : overview_(overview), plate_(overview.plate), form_(form), whole_(whole) {}

  std::string Text() && {
    const std::string title = form_.Printable(overview_.path) +
                              (plate_.isEmbedded ? ", plate " + form_.Printable(plate_.name) : "");
    text_ = form_.Styled(title, Style::kBold) + '\n';
    if (plate_.isEmbedded) line("modified", form_.Printable(plate_.modified));
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
    return std::move(text_);
  }

 private:
  static constexpr std::string_view kIndent = "  ";
  static constexpr std::size_t kLabelWidth = 20;
  // Indent of values if the window is too narrow to have them beside the labels.
  static constexpr std::size_t kNarrowIndent = 4;
  static constexpr std::size_t kNarrow = 60;
  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  void line(std::string_view label, const std::string& value, Style style = Style::kPlain) {
    text_ += kIndent;
    if (isNarrow_) {
      const std::string title = std::string(label).append(label.empty() ? "" : ": ");
      text_ += form_.Styled(form_.Wrapped(title + shortened(value), kNarrowIndent), style) + '\n';
      return;
    }
    text_ += form_.Styled(PadRight(std::string(label), kLabelWidth), Style::kDim) +
             form_.Styled(form_.Wrapped(shortened(value), kIndent.size() + kLabelWidth), style) +
             '\n';
  }

  // Shortens a value only if it would fill the screen by itself. Says after a shortened value how
  // to print the whole value.
  std::string shortened(const std::string& value) const {
    constexpr std::size_t kMostColumns = 2000;
    if (!form_.HasWidth() || Columns(value) <= kMostColumns) return value;
    return fmt::format("{} ({} in all{}{})", form_.CutTo(value, kMostColumns),
                       Counted(Columns(value), "character"), whole_.empty() ? "" : "; ", whole_);
  }

  // Writes the items on as many lines as they need.
  void lines(std::string_view label, const std::vector<std::string>& items,
             std::string_view separator = ", ", Style style = Style::kPlain) {
    const std::size_t width =
        isNarrow_ ? kNoLimit : form_.TextWidth() - kIndent.size() - kLabelWidth;
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
      line("", form_.Printable(plate.name) + ": " + Counted(plate.wellCount, "well") + ", " +
                   Counted(static_cast<unsigned>(plate.frames), "frame") + ", " +
                   form_.Printable(plate.status) + ", modified " + form_.Printable(plate.modified));
    }
  }

  void printFaults() {
    constexpr std::size_t kMost = 8;
    const auto& faults = overview_.faults;
    for (std::size_t i = 0; i < faults.size() && i < kMost; ++i) {
      std::istringstream words("at byte " + std::to_string(faults[i].offset) + ": " +
                               form_.Printable(faults[i].what));
      lines("fault", {std::istream_iterator<std::string>(words), {}}, " ", Style::kRed);
    }
    if (faults.size() > kMost) line("", "and " + Counted(faults.size() - kMost, "more fault"));
  }

  // "AbsQ: absolute quantification"; only the code if its meaning is not known.
  std::string explained(CodeField field, std::string_view code) const {
    const std::string meaning = CodeMeaning(field, code);
    return form_.Printable(code) + (meaning.empty() ? "" : ": " + meaning);
  }

  std::string kindText() const {
    const std::string& kind = plate_.kind;
    if (!CodeMeaning(CodeField::kKind, kind).empty()) return explained(CodeField::kKind, kind);
    return "ordinary document" + (kind.empty() ? "" : " (" + form_.Printable(kind) + ")");
  }

  std::string plateText() const {
    const bool isOfType = plate_.wellCount == std::uint64_t{plate_.rows} * plate_.columns;
    return Counted(plate_.wellCount, "well") + (isOfType ? " (" : " (the header says ") +
           std::to_string(plate_.rows) + " x " + std::to_string(plate_.columns) + "), " +
           std::to_string(plate_.wellsInUse) + " in use, type " +
           explained(CodeField::kPlateType, plate_.plateType);
  }

  std::string assayText() const {
    const std::string remark = form_.Printable(plate_.text);
    return explained(CodeField::kAssay, plate_.assay) + ", run " + form_.Printable(plate_.run) +
           (remark.empty() ? "" : ", \"" + remark + "\"");
  }

  Style statusStyle() const {
    if (plate_.status == RunStatus::kInProgress) return Style::kYellow;
    return plate_.status == RunStatus::kDone ? Style::kGreen : Style::kPlain;
  }

  std::vector<std::string> blockItems(const BlockInfo& block) const {
    std::vector<std::string> items = {form_.Printable(block.tag) + ": " +
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

  // The time as text. If its meaning is not known, the stored bytes; if these are all 0, there is
  // no time.
  std::string timeText(const std::optional<std::string>& time,
                       const std::array<std::uint8_t, 6>& stored) const {
    if (time) return form_.Printable(*time);
    if (stored == std::array<std::uint8_t, 6>{}) return {};
    std::string shown = "time bytes";
    for (const unsigned byte : stored) shown += " " + std::to_string(byte);
    return shown;
  }

  // Prints the program if it is a text; otherwise only its size.
  void printProgram() {
    if (!plate_.programSize) return;
    if (!plate_.programText) {
      return line("program", Counted(*plate_.programSize, "byte") + ", no text");
    }
    std::istringstream program(*plate_.programText);
    std::string each;
    for (std::string_view label = "program"; std::getline(program, each); label = "") {
      line(label, form_.Printable(each));
    }
  }

  // Prints each text on a separate line; numbers share lines.
  void printSettings() {
    std::vector<std::string> numbers;
    for (const auto& [key, value] : plate_.settings) {
      std::string shown = ValueText(value);
      if (key == "log") std::replace(shown.begin(), shown.end(), '\n', ' ');
      if (std::holds_alternative<std::string>(value)) {
        line(key, form_.Printable(shown));
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
      items.push_back(form_.Printable(tag) + (count > 1 ? " x" + std::to_string(count) : ""));
    }
    lines("records", items);
  }

  const DocumentOverview& overview_;
  const PlateOverview& plate_;
  const TextForm& form_;
  std::string_view whole_;
  std::string text_;
  bool isNarrow_ = form_.TextWidth() < kNarrow;
};

}  // namespace

std::string OverviewText(const DocumentOverview& overview, const TextForm& form,
                         std::string_view whole) {
  return Screen(overview, form, whole).Text();
}

void OverviewListing::Add(const DocumentOverview& overview) {
  const PlateOverview& plate = overview.plate;
  const std::size_t faults = overview.faults.size();
  const bool isStudy = overview.plates.has_value();
  rows_.push_back({form_.Printable(overview.path),
                   isStudy ? "study of " + Counted(overview.plates->size(), "plate") : "run",
                   form_.Printable(plate.status), isStudy ? "" : std::to_string(plate.frames),
                   isStudy ? "" : std::to_string(plate.wellsInUse),
                   form_.Printable(plate.start.value_or("")),
                   faults > 0 ? Counted(faults, "fault") : ""});
}

std::string OverviewListing::Text() const {
  if (rows_.empty()) return {};
  constexpr std::size_t kFrames = 3;
  constexpr std::size_t kWells = 4;
  return DrawTable({"file", "kind", "status", "frames", "wells", "start", "faults"}, rows_, form_,
                   {kFrames, kWells});
}

}  // namespace vex2::lab
