#include <algorithm>
#include <iostream>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>

#include "lab/model/Settings.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/show/CodeText.h"
#include "tools/vex/show/DocumentInfo.h"
#include "tools/vex/text/JsonOutput.h"
#include "tools/vex/text/Paragraph.h"
#include "tools/vex/text/Table.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;
using Style = Terminal::Style;

/// The same on a person's screen.
class Screen {
 public:
  explicit Screen(const ordered_json& info) : info_(info) {}

  void Print() {
    const bool isPlate = info_.contains("name");
    const std::string title =
        text(info_["file"]) + (isPlate ? ", plate " + text(info_["name"]) : "");
    std::cout << terminal_.Styled(title, Style::kBold) << '\n';
    if (isPlate) line("modified", text(info_["modified"]));
    line("kind", kindText());
    line("plate", plateText());
    line("assay", assayText());
    printStatus();
    for (const auto& block : info_["blocks"]) lines("data", blockItems(block));
    printSettings();
    printProgram();
    printRecords();
    printPlates();
    line("size", Counted(info_["size"].get<std::uint64_t>(), "byte"));
    if (info_.contains("faults")) printFaults();
  }

 private:
  static constexpr std::string_view kIndent = "  ";
  static constexpr std::size_t kLabelWidth = 20;
  static constexpr std::size_t kNarrowIndent = 4;  // where labels are not beside the values
  static constexpr std::size_t kNarrow = 60;
  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  static std::string text(const ordered_json& value) { return Printable(value.get<std::string>()); }

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
    if (!info_.contains("plates")) return;
    const auto& plates = info_["plates"];
    line("plates", std::to_string(plates.size()) + " in all");
    for (const auto& plate : plates) {
      line("", text(plate["name"]) + ": " +
                   Counted(plate["plate"]["rows"].get<std::uint64_t>() *
                               plate["plate"]["columns"].get<std::uint64_t>(),
                           "well") +
                   ", " + Counted(plate["frames"].get<unsigned>(), "frame") + ", " +
                   text(plate["status"]) + ", modified " + text(plate["modified"]));
    }
  }

  void printFaults() {
    constexpr std::size_t kMost = 8;
    const auto& faults = info_["faults"];
    for (std::size_t i = 0; i < faults.size() && i < kMost; ++i) {
      std::istringstream words("at byte " + faults[i]["offset"].dump() + ": " +
                               text(faults[i]["what"]));
      lines("fault", {std::istream_iterator<std::string>(words), {}}, " ", Style::kRed);
    }
    if (faults.size() > kMost) line("", "and " + Counted(faults.size() - kMost, "more fault"));
  }

  std::string kindText() const {
    const std::string kind = info_["kind"];
    if (!CodeMeaning(CodeField::kKind, kind).empty()) return ExplainedCode(CodeField::kKind, kind);
    return "ordinary document" + (kind.empty() ? "" : " (" + Printable(kind) + ")");
  }

  std::string plateText() const {
    const auto& plate = info_["plate"];
    const auto rows = plate["rows"].get<std::uint64_t>();
    const auto columns = plate["columns"].get<std::uint64_t>();
    return Counted(rows * columns, "well") + " (" + std::to_string(rows) + " x " +
           std::to_string(columns) + "), " + plate["wellsInUse"].dump() + " in use, type " +
           ExplainedCode(CodeField::kPlateType, plate["type"].get<std::string>());
  }

  std::string assayText() const {
    const std::string remark = text(info_["text"]);
    return ExplainedCode(CodeField::kAssay, info_["assay"].get<std::string>()) + ", run " +
           text(info_["run"]) + (remark.empty() ? "" : ", \"" + remark + "\"");
  }

  void printStatus() {
    static const std::map<std::string, Style> styles = {{"PROG", Style::kYellow},
                                                        {"DONE", Style::kGreen}};
    const std::string status = info_["status"];
    const auto style = styles.find(status);
    line("status", ExplainedCode(CodeField::kStatus, status),
         style != styles.end() ? style->second : Style::kPlain);
  }

  static std::vector<std::string> blockItems(const ordered_json& block) {
    std::vector<std::string> items = {text(block["tag"]) + ": " +
                                      Counted(block["frames"].get<unsigned>(), "frame") + " of " +
                                      Counted(block["wells"].get<unsigned>(), "well")};
    if (block["version"] != 2) items.push_back("version " + block["version"].dump());
    const std::string start = timeText(block, "start");
    const std::string end = timeText(block, "end");
    if (!start.empty()) items.push_back("from " + start);
    if (!end.empty()) items.push_back("to " + end);
    if ((start + end).empty()) items.emplace_back("start unknown");
    return items;
  }

  // The bytes, where nothing tells what date and time they are. All of them 0 are no time.
  static std::string timeText(const ordered_json& block, const std::string& which) {
    if (!block[which].is_null()) return text(block[which]);
    const auto bytes = block[which + "Bytes"].get<std::vector<unsigned>>();
    if (std::all_of(bytes.begin(), bytes.end(), [](unsigned byte) { return byte == 0; })) return {};
    std::string shown = "time bytes";
    for (const unsigned byte : bytes) shown += " " + std::to_string(byte);
    return shown;
  }

  // A program that is text has its lines; of any other only the size is known.
  void printProgram() {
    if (info_["programSize"].is_null()) return;
    const std::string size = Counted(info_["programSize"].get<unsigned>(), "byte");
    if (info_["programText"].is_null()) return line("program", size + ", no text");
    std::istringstream program(info_["programText"].get<std::string>());
    std::string each;
    for (std::string_view label = "program"; std::getline(program, each); label = "") {
      line(label, Printable(each));
    }
  }

  // Texts have lines of their own; numbers share some.
  void printSettings() {
    std::vector<std::string> numbers;
    for (const auto& [key, value] : info_["settings"].items()) {
      const std::string shown = settingText(key, value);
      if (value.is_string()) {
        line(key, shown);
      } else {
        numbers.push_back(key + " " + shown);
      }
    }
    if (!numbers.empty()) lines("settings", numbers);
  }

  static std::string settingText(const std::string& key, const ordered_json& value) {
    std::string shown = JsonText(value);
    if (key == "log") std::replace(shown.begin(), shown.end(), '\n', ' ');
    return Printable(shown);
  }

  void printRecords() {
    std::vector<std::pair<std::string, unsigned>> counts;
    for (const auto& record : info_["records"]) {
      const std::string tag = text(record["tag"]);
      const auto found = std::find_if(counts.begin(), counts.end(),
                                      [&](const auto& count) { return count.first == tag; });
      if (found != counts.end()) {
        ++found->second;
      } else {
        counts.emplace_back(tag, 1U);
      }
    }
    std::vector<std::string> items = {std::to_string(info_["records"].size()) + " in all"};
    for (const auto& [tag, count] : counts) {
      items.push_back(count > 1 ? tag + " x" + std::to_string(count) : tag);
    }
    lines("records", items);
  }

  const ordered_json& info_;
  const Terminal& terminal_ = Terminal::Out();
  bool isNarrow_ = terminal_.TextWidth() < kNarrow;
};

/// Many documents, a line for each.
class Listing {
 public:
  void Add(const ordered_json& info) {
    const auto& plate = info["plate"];
    const bool isStudy = info.contains("plates");
    rows_.push_back({text(info["file"]),
                     isStudy ? "study of " + Counted(info["plates"].size(), "plate") : "run",
                     text(info["status"]), isStudy ? "" : info["frames"].dump(),
                     isStudy ? "" : plate["wellsInUse"].dump(),
                     info["start"].is_null() ? "" : text(info["start"]), faultText(info)});
  }

  void Print() const {
    if (rows_.empty()) return;
    constexpr std::size_t kFrames = 3;
    constexpr std::size_t kWells = 4;
    std::cout << DrawTable({"file", "kind", "status", "frames", "wells", "start", "faults"}, rows_,
                           Terminal::Out(), {kFrames, kWells});
  }

 private:
  static std::string text(const ordered_json& value) { return Printable(value.get<std::string>()); }

  static std::string faultText(const ordered_json& info) {
    const std::size_t count = info.contains("faults") ? info["faults"].size() : 0;
    return count > 0 ? Counted(count, "fault") : "";
  }

  std::vector<std::vector<std::string>> rows_;
};

class InfoCommand final : public Command {
 public:
  InfoCommand()
      : Command({"info", "Show what a document holds, or a line for each of several.",
                 "vex info run.vex\nvex info *.vex\nvex info --json *.vex | jq '.frames'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", files_, "The documents").Require().Show("");
    plate_.AddTo(options);
    const Option screens = options.AddFlag("--long", screens_, "Show a screen for each of several");
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
    listing_.Print();
    return worst;
  }

 private:
  void show(const std::string& file) {
    const Document document(file);
    // What a study says has its plates in it.
    const ordered_json info = DescribeDocument(document, plate_.Choose(document).front());
    if (json_) {
      PrintJson(std::cout, info);
    } else if (files_.size() > 1 && !screens_) {
      listing_.Add(info);
    } else {
      if (shown_++ > 0) std::cout << '\n';
      Screen(info).Print();
    }
    document.RequireWhole("");
  }

  std::vector<std::string> files_;
  PlateOption plate_;
  bool json_ = false;
  bool screens_ = false;
  int shown_ = 0;
  Listing listing_;
};

}  // namespace

std::unique_ptr<Command> MakeInfoCommand() {
  return std::make_unique<InfoCommand>();
}

}  // namespace vex2::tool
