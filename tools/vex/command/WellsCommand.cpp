#include <fmt/core.h>

#include <cstdint>
#include <iostream>
#include <limits>

#include "lab/Text.h"
#include "lab/csv/CsvWriter.h"
#include "lab/csv/WellsFile.h"
#include "lab/json/Json.h"
#include "lab/json/SetupJson.h"
#include "lab/model/PlateChange.h"
#include "lab/text/SetupText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/ListingCommand.h"
#include "tools/vex/options/CsvOptions.h"
#include "tools/vex/options/ExactOption.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

constexpr unsigned kMostWells = std::numeric_limits<unsigned short>::max();

WellField fieldCalled(const std::string& name) {
  if (name == "sample") return WellField::kSample;
  return name == "task" ? WellField::kTask : WellField::kDetector;
}

class WellsCommand final : public ListingCommand {
 public:
  WellsCommand()
      : ListingCommand({"wells", "Show the content of the wells, or replace it.",
                        "vex wells run.vex\nvex wells run.vex --show task\n"
                        "vex wells run.vex --csv > wells.csv\n"
                        "vex wells run.vex --from wells.csv"}) {}

 protected:
  void addChanges(Options& options) override {
    options.Add("--show", what_, "What to show: sample (the default), detector, task")
        .AllowOnly({"sample", "detector", "task"})
        .Show("WHAT");
    options.Add("--from", source_, "Replace by well,sample,target,task,quantity,reporter")
        .Show("FILE.csv");
    input_.AddOptions(options);
    exactness_.AddOption(options);
  }

  bool hasChanges() const override { return !source_.empty(); }

  std::string change(Vex2FileManager& plate) const override {
    requireNumberedWells(plate);
    FloatReader quantities(exactness_.IsExact());
    const PlateContents contents =
        LoadWells(source_, quantities, input_.Format(WellsFileColumns()), ContentsOf(plate));
    ExactOption::Tell(CsvName(source_), quantities.Rounded(), "quantity", "quantities");
    return ReplaceWells(plate, contents, source_);
  }

  ordered_json describe(const Vex2FileManager& plate) const override {
    requireSetup(plate);
    return DescribeWells(plate);
  }

  void printCsv(const std::vector<Document::Plate>& plates, bool all) const override {
    for (const Document::Plate& plate : plates) requireSetup(*plate.content);
    CsvWriter csv(std::cout, all);
    WriteWellColumns(csv);
    for (const Document::Plate& plate : plates) {
      WriteWells(ContentsOf(*plate.content), csv, ToUtf8(plate.name));
    }
  }

  void print(const Vex2FileManager& plate) const override {
    requireSetup(plate);
    std::cout << WellsText(ContentsOf(plate), fieldCalled(what_), what_, Terminal::Out());
  }

 private:
  // A header can declare more wells than 16-bit well numbers can number.
  void requireNumberedWells(const Vex2FileManager& plate) const {
    const PlateLayout layout = LayoutOf(plate);
    if (std::uint64_t{layout.rows} * layout.columns <= kMostWells) return;
    throw Error(ErrorCode::kDocument, file_,
                fmt::format("its plate of {} rows and {} columns has more wells than a setup holds",
                            layout.rows, layout.columns));
  }

  void requireSetup(const Vex2FileManager& plate) const {
    requireNumberedWells(plate);
    if (plate.GetPlateSetupComp() != nullptr) return;
    throw Error(ErrorCode::kDocument, file_,
                "it has no plate setup; 'vex wells FILE --from wells.csv' gives it one");
  }

  std::string what_ = "sample";
  std::string source_;
  CsvOptions input_;
  ExactOption exactness_;
};

}  // namespace

std::unique_ptr<Command> MakeWellsCommand() {
  return std::make_unique<WellsCommand>();
}

}  // namespace vex2::tool
