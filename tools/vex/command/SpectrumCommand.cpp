#include <fmt/core.h>

#include <algorithm>
#include <iostream>
#include <iterator>

#include "lab/exchange/DocumentJson.h"
#include "lab/exchange/Json.h"
#include "lab/exchange/JsonOutput.h"
#include "lab/exchange/ReadingsExport.h"
#include "lab/model/WellSpectrum.h"
#include "lab/text/Columns.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/text/Chart.h"
#include "tools/vex/text/Terminal.h"

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
    if (!json_) return draw(spectrum);
    PrintJson(std::cout, DescribeSpectrum(spectrum, file_, well_, frame_));
  }

  void draw(const WellSpectrum& spectrum) {
    constexpr std::size_t kMostPerLine = 12;
    constexpr std::size_t kIndexWidth = 4;
    constexpr std::size_t kValueWidth = 6;
    const Terminal& terminal = Terminal::Out();
    const std::size_t perLine =
        std::min(kMostPerLine, (terminal.TextWidth() - kIndexWidth) / kValueWidth);
    if (shown_++ > 0) std::cout << '\n';
    const std::string source = spectrum.isEmbedded ? fmt::format("{}, plate {}", Printable(file_),
                                                                 Printable(spectrum.plate))
                                                   : Printable(file_);
    std::cout << terminal.Wrapped(
                     fmt::format("{}: well {}, frame {} of {}, well value {}", source, well_,
                                 frame_, spectrum.frameCount, spectrum.record.leading[0]),
                     2)
              << '\n';
    const auto& data = spectrum.record.data;
    const std::vector<double> readings(data, data + spectrum.UsedReadings());
    constexpr int kHeight = 8;
    if (readings.size() > 1) std::cout << DrawBars(readings, kHeight, terminal, 0);
    for (std::size_t i = 0; i < readings.size(); ++i) {
      if (i % perLine == 0) {
        std::cout << terminal.Styled(PadLeft(std::to_string(i), kIndexWidth),
                                     Terminal::Style::kDim);
      }
      std::cout << PadLeft(std::to_string(data[i]), kValueWidth)
                << ((i + 1) % perLine == 0 || i + 1 == readings.size() ? "\n" : "");
    }
    const std::size_t last = std::size(data) - 1;
    if (readings.size() < last) {
      std::cout << "readings " << readings.size() << " to " << last << " are 0\n";
    } else if (readings.size() == last) {
      std::cout << "reading " << last << " is 0\n";
    }
    if (spectrum.rates.empty()) return;
    std::cout << "background rates:";
    for (const std::uint32_t rate : spectrum.rates) std::cout << ' ' << rate;
    std::cout << '\n';
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
