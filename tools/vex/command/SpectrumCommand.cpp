#include <iostream>

#include "lab/csv/ReadingsExport.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/SpectrumJson.h"
#include "lab/model/WellSpectrum.h"
#include "lab/text/SpectrumText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

class SpectrumCommand final : public Command {
 public:
  SpectrumCommand()
      : Command({"spectrum", "Show the 36 readings of one well in one frame.",
                 "vex spectrum run.vex --well A1 --frame 0\n"
                 "vex spectrum background.vex --well B3 --frame 0 --json | jq .rates"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("--well", well_, "The well, such as A1").Require().Show("WELL");
    options.Add("--frame", frame_, "The frame, from 0").Require().Show("N");
    plate_.AddTo(options);
    const Option json =
        options.AddFlag("--json", json_, "Print JSON: one object per plate, one per line");
    options.AddFlag("--csv", csv_, "Print CSV: one row per value").Exclude(json);
  }

  ExitCode Run() override {
    const Document document(file_);
    const auto spectra = SpectraOf(document, plate_.Choose(document), well_, frame_);
    if (csv_) {
      WriteSpectra(std::cout, spectra, well_, frame_, document.IsStudy() && !plate_.IsGiven());
    } else {
      for (const WellSpectrum& spectrum : spectra) show(spectrum);
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  void show(const WellSpectrum& spectrum) {
    if (json_) return PrintJson(std::cout, DescribeSpectrum(spectrum, file_, well_, frame_));
    if (shown_++ > 0) std::cout << '\n';
    std::cout << SpectrumText(spectrum, file_, well_, frame_, Terminal::Out());
  }

  std::string file_;
  std::string well_;
  std::int64_t frame_ = 0;
  PlateOption plate_;
  bool json_ = false;
  bool csv_ = false;
  int shown_ = 0;
};

}  // namespace

std::unique_ptr<Command> MakeSpectrumCommand() {
  return std::make_unique<SpectrumCommand>();
}

}  // namespace vex2::tool
