#include <iostream>

#include "lab/Text.h"
#include "lab/analysis/Cq.h"
#include "lab/csv/AnalysisCsv.h"
#include "lab/csv/CsvWriter.h"
#include "lab/json/CqJson.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/text/AnalysisText.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/AnalysisOptions.h"
#include "tools/vex/options/FileArguments.h"

namespace vex2::tool {

namespace {

class CqCommand final : public Command {
 public:
  CqCommand()
      : Command({"cq", "Find the quantification cycle (Cq) of each well.",
                 "vex cq run.vex\nvex cq run.vex --format csv > cq.csv\n"
                 "vex cq run.vex --method sdm --detector MYC\n"
                 "vex cq run.vex --threshold 0.5 --baseline 3-15\n"
                 "vex cq -j 4 --format json *.vex | jq '.findings[].text'"}) {}

  void AddOptions(Options& options) override {
    files_.AddTo(options);
    options.Add("--method", method_, "threshold (the default) or sdm, second derivative")
        .AllowOnly({"threshold", "sdm"})
        .Show("NAME");
    options.Add("--threshold", options_.threshold,
                "Threshold of all detectors, in units of the readings");
    options.Add("--baseline", baseline_, "Baseline of all curves: cycles A to B").Show("A-B");
    shared_.AddTo(options);
  }

  ExitCode Run() override {
    options_.method = method_ == "sdm" ? CqMethod::kSecondDerivative : CqMethod::kThreshold;
    options_.baseline = baseline();
    options_.detector = shared_.detector;
    const std::vector<std::string> files = files_.List();
    hasSeveral_ = files.size() > 1;
    return files_.ForEach(files, [&](const std::string& file) -> FileArguments::Shown {
      const RunReader run = shared_.Open(file);
      const CqAnalysis analysis = OrDamage(run, [&] { return AnalyseCq(run, options_); });
      return [this, file, run, analysis] {
        print(file, run, analysis);
        RequireWhole(run);
        return ExitCode::kDone;
      };
    });
  }

 private:
  std::optional<CycleRange> baseline() const {
    if (!baseline_) return std::nullopt;
    const std::size_t dash = baseline_->find('-');
    const auto first = NumberIn<std::uint32_t>(baseline_->substr(0, dash));
    const auto last = dash == std::string::npos
                          ? std::nullopt
                          : NumberIn<std::uint32_t>(baseline_->substr(dash + 1));
    if (!first || !last || *first > *last) {
      throw Error(ErrorCode::kInvalidValue,
                  "--baseline takes two cycles, as 3-15, and not '" + *baseline_ + "'");
    }
    return CycleRange{.first = static_cast<double>(*first), .last = static_cast<double>(*last)};
  }

  void print(const std::string& file, const RunReader& run, const CqAnalysis& analysis) {
    if (shared_.format == "json") {
      PrintJson(std::cout, DescribeCq(analysis, file));
    } else if (shared_.format == "csv") {
      printCsv(file, run.IsStudy(), analysis);
    } else {
      if (hasSeveral_) std::cout << (isFirst_ ? "" : "\n") << Printable(file) << ":\n";
      std::cout << CqText(analysis, Terminal::Out());
    }
    isFirst_ = false;
  }

  // If there are several documents, each row begins with the path and the plate. If there is one
  // and it is a study, each row begins with the plate.
  void printCsv(const std::string& file, bool isStudy, const CqAnalysis& analysis) {
    CsvWriter csv(std::cout, hasSeveral_);
    const auto row = [&](const std::string& front, const std::string& plate,
                         std::vector<std::string> fields) {
      if (isStudy || hasSeveral_) fields.insert(fields.begin(), plate);
      csv.Row(front, fields);
    };
    if (isFirst_) row("file", "plate", CqColumns());
    for (const CqResult& result : analysis.wells) {
      row(file, result.curve.well.plate, CqFields(result, analysis.method));
    }
  }

  FileArguments files_;
  AnalysisOptions shared_;
  CqOptions options_;
  std::string method_ = "threshold";
  std::optional<std::string> baseline_;
  bool hasSeveral_ = false;
  bool isFirst_ = true;
};

}  // namespace

std::unique_ptr<Command> MakeCqCommand() {
  return std::make_unique<CqCommand>();
}

}  // namespace vex2::tool
