#include <fmt/core.h>

#include <iostream>

#include "lab/Text.h"
#include "lab/csv/CalibrationFile.h"
#include "lab/json/CalibrationJson.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/StudyJson.h"
#include "lab/model/StoredCalibration.h"
#include "lab/text/SetupText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/ChangeOptions.h"
#include "tools/vex/options/CsvOptions.h"
#include "tools/vex/options/ExactOption.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

class CalibrationCommand final : public Command {
 public:
  CalibrationCommand()
      : Command({"calibration", "Show the spectra of pure dyes and background, or replace them.",
                 "vex calibration run.vex\n"
                 "vex calibration run.vex --export calibration.csv\n"
                 "vex calibration other.vex --import calibration.csv"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    const Option json = options.AddFlag("--json", json_, "Print JSON");
    const Option target =
        options.Add("--export", target_, "Write a table; '-' or 'csv' to print it")
            .Show("OUT.csv")
            .Exclude(json);
    options.Add("--import", source_, "Replace the spectra that are in the table")
        .Show("FILE.csv")
        .Exclude(json)
        .Exclude(target);
    input_.AddOptions(options);
    exactness_.AddOption(options);
    options.AddFlag("--force", force_, "Overwrite OUT.csv if it exists");
    plate_.AddTo(options);
    changing_.AddOptions(options);
    options.PutFirst(
        "--import keeps the fields before the spectra, which the table does not contain.");
  }

  ExitCode Run() override {
    if (!source_.empty()) {
      FloatReader values(exactness_.IsExact());
      const Calibration loaded =
          LoadCalibration(source_, values, input_.Format(CalibrationColumns()));
      ExactOption::Tell(CsvName(source_), values.Rounded(), "value", "values");
      std::cout << changing_.ApplyToPlate(
          file_, plate_, [&](Vex2FileManager& plate) { return ReplaceCalibration(plate, loaded); });
      return ExitCode::kDone;
    }
    const Document document(file_, Document::Purpose::kReadHeads);
    const auto plates = plate_.ChoosePlates(document);
    const bool all = plate_.IsAll(document);
    if (!target_.empty()) {
      exportTo(plates, all);
    } else if (json_) {
      PrintJson(
          std::cout,
          DescribePlates(plates, all,
                         [](const Vex2FileManager& plate) { return ToJson(CalibrationOf(plate)); }),
          2);
    } else {
      ShowPlates(plates, all, std::cout, [](const Vex2FileManager& plate) {
        std::cout << CalibrationText(CalibrationOf(plate), Terminal::Out());
      });
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  void exportTo(const std::vector<Document::Plate>& plates, bool all) const {
    const std::string target = target_ == "csv" ? "-" : target_;
    OutputFiles files(force_);
    files.Read(file_).Write(target, OutputFiles::Kind::kTable).Claim();
    Output output(target);
    CsvWriter csv(output.Stream(), all);
    WriteCalibrationColumns(csv);
    for (const Document::Plate& plate : plates) {
      WriteCalibration(CalibrationOf(*plate.content), csv, ToUtf8(plate.name));
    }
    output.Finish();
  }

  std::string file_;
  bool json_ = false;
  std::string target_;
  std::string source_;
  CsvOptions input_;
  ExactOption exactness_;
  bool force_ = false;
  PlateOption plate_;
  ChangeOptions changing_;
};

}  // namespace

std::unique_ptr<Command> MakeCalibrationCommand() {
  return std::make_unique<CalibrationCommand>();
}

}  // namespace vex2::tool
