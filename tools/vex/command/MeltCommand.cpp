#include <iostream>

#include "lab/analysis/Melt.h"
#include "lab/csv/AnalysisCsv.h"
#include "lab/csv/CsvWriter.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/MeltJson.h"
#include "lab/text/AnalysisText.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/AnalysisOptions.h"

namespace vex2::tool {

namespace {

class MeltCommand final : public Command {
 public:
  MeltCommand()
      : Command({"melt", "Find the peaks of the melting stage in each well.",
                 "vex melt run.vex\nvex melt run.vex --format csv > peaks.csv\n"
                 "vex melt run.vex --detector MYC --format json | jq '.wells[].peaks'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    shared_.AddTo(options);
  }

  ExitCode Run() override {
    const RunReader run = shared_.Open(file_);
    const std::vector<MeltCurve> curves =
        OrDamage(run, [&] { return AnalyseMelt(run, shared_.detector); });
    if (shared_.format == "json") {
      PrintJson(std::cout, DescribeMelt(curves, file_));
    } else if (shared_.format == "csv") {
      printCsv(run.IsStudy(), curves);
    } else {
      std::cout << MeltText(curves, Terminal::Out());
    }
    RequireWhole(run);
    return ExitCode::kDone;
  }

 private:
  static void printCsv(bool isStudy, const std::vector<MeltCurve>& curves) {
    CsvWriter csv(std::cout, isStudy);
    csv.Row("plate", MeltColumns());
    for (const MeltCurve& curve : curves) {
      for (const auto& fields : MeltFields(curve)) csv.Row(curve.well.plate, fields);
    }
  }

  std::string file_;
  AnalysisOptions shared_;
};

}  // namespace

std::unique_ptr<Command> MakeMeltCommand() {
  return std::make_unique<MeltCommand>();
}

}  // namespace vex2::tool
