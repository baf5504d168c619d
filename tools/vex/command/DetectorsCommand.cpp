#include <fmt/core.h>

#include <algorithm>
#include <iostream>

#include "lab/Text.h"
#include "lab/csv/CsvWriter.h"
#include "lab/csv/DetectorsFile.h"
#include "lab/json/Json.h"
#include "lab/json/SetupJson.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/PlateContents.h"
#include "lab/text/SetupText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Assignment.h"
#include "tools/vex/command/ListingCommand.h"
#include "tools/vex/options/ExactOption.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

std::string fieldList() {
  return "Fields of --add KEY=VALUE; the name is required:" + FieldLines(DetectorFields(), 16) +
         "\n  A baseline or threshold that nobody has set is shown with \"(default)\"."
         "\n  If a detector has that name, only the given fields change.";
}

class DetectorsCommand final : public ListingCommand {
 public:
  DetectorsCommand()
      : ListingCommand({"detectors", "List the detectors of the plate, or change them.",
                        "vex detectors run.vex\n"
                        "vex detectors run.vex --add name=MYC reporter=FAM quencher=NFQ\n"
                        "vex detectors run.vex --remove MYC --dry-run"}) {}

 protected:
  void addChanges(Options& options) override {
    options.Add("--add", words_, "Add or change a detector; begin each with name=")
        .Show("KEY=VALUE...")
        .TakeSeveral();
    options.Add("--remove", removed_, "Remove the detector of this name")
        .Show("NAME...")
        .TakeSeveral();
    exactness_.AddOption(options);
    options.PutFirst(fieldList());
  }

  bool hasChanges() const override { return !words_.empty() || !removed_.empty(); }

  std::string change(Vex2FileManager& plate) const override {
    std::string report;
    const PlateContents contents = removed_.empty() ? PlateContents() : ContentsOf(plate);
    for (const std::string& name : removed_) {
      const auto stored = ToLatin1(name);
      if (!stored || !plate.RemoveDetectorInfo(CString(*stored))) {
        throw Error(ErrorCode::kUsage, file_, fmt::format("it has no detector '{}'", name));
      }
      // A well keeps the name of the removed detector, but its reporter is then unknown.
      const std::size_t wells = contents.WellsOf(*stored).size();
      report += wells == 0
                    ? fmt::format("removed {}\n", Printable(name))
                    : fmt::format("removed {}; {} it, without a reporter now\n", Printable(name),
                                  Counted(wells, "well still names", "wells still name"));
    }
    for (const auto& fields : additions()) report += add(plate, fields);
    return report;
  }

  bool studiesHaveIt() const override { return true; }

  ordered_json describe(const Vex2FileManager& plate) const override {
    return {{"detectors", DescribeDetectors(plate)}};
  }

  void printCsv(const std::vector<Document::Plate>& plates, bool all) const override {
    CsvWriter csv(std::cout, all);
    WriteDetectorColumns(csv);
    for (const Document::Plate& plate : plates) {
      WriteDetectors(DetectorsOf(*plate.content), csv, ToUtf8(plate.name));
    }
  }

  void print(const Vex2FileManager& plate) const override {
    std::cout << DetectorsText(DetectorsOf(plate), Terminal::Out());
  }

 private:
  using Fields = std::vector<std::pair<const DetectorField*, std::string>>;

  // The given fields, one list for each detector.
  std::vector<Fields> additions() const {
    std::vector<Fields> result;
    for (const std::string& word : words_) {
      auto [field, value] = words().Parse(
          word, DetectorFields(), ErrorCode::kUnknownField,
          [](const auto& key) { return fmt::format("unknown field '{}' of a detector", key); });
      if (field->key == "name") result.emplace_back();
      if (result.empty()) {
        words().Refuse(fmt::format("'{}' stands before the detector's name=", word));
      }
      result.back().emplace_back(field, std::move(value));
    }
    return result;
  }

  Assignments words() const { return {file_, "vex detectors"}; }

  std::string add(Vex2FileManager& plate, const Fields& fields) const {
    const std::string& name = fields.front().second;
    if (name.empty()) words().Refuse("'name=' names no detector");
    const auto stored = ToLatin1(name);
    const std::vector<Vex2Detector> known = DetectorsOf(plate);
    const auto before = std::find_if(known.begin(), known.end(), [&](const Vex2Detector& one) {
      return stored && one.name.View() == *stored;
    });
    Vex2Detector detector = before != known.end() ? *before : Vex2Detector();
    for (const auto& [field, value] : fields) {
      if (!field->set(detector, value)) words().RefuseValue(*field, value);
    }
    tellRounding(detector, fields);
    if (plate.AppendDetectorInfo(&detector) != kSuccess) {
      throw Error(ErrorCode::kDocument, file_, "it cannot hold more detectors");
    }
    return fmt::format("{} {}\n", before != known.end() ? "changed" : "added", Printable(name));
  }

  // Reports the numbers that are rounded when the detector stores them; refuses them with --exact.
  void tellRounding(const Vex2Detector& detector, const Fields& fields) const {
    for (const auto& [field, value] : fields) {
      const Value stored = field->get(detector);
      const auto* number = std::get_if<float>(&stored);
      const double change = number != nullptr ? ChangeOf(value, *number) : 0;
      if (change == 0) continue;
      if (exactness_.IsExact()) {
        words().Refuse(
            fmt::format("'{}={}' would be rounded to {}; leave out --exact to accept that",
                        field->key, value, ValueText(stored)));
      }
      RoundedNumbers rounded;
      rounded.Add(change);
      ExactOption::Tell(file_, rounded, field->key, field->key);
    }
  }

  std::vector<std::string> words_;
  std::vector<std::string> removed_;
  ExactOption exactness_;
};

}  // namespace

std::unique_ptr<Command> MakeDetectorsCommand() {
  return std::make_unique<DetectorsCommand>();
}

}  // namespace vex2::tool
