#include <algorithm>
#include <iostream>
#include <iterator>
#include <new>

#include "lab/exchange/CsvWriter.h"
#include "lab/model/PlateLayout.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/text/Chart.h"
#include "tools/vex/text/JsonOutput.h"
#include "tools/vex/text/Paragraph.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/study/KestorSpectrum.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kRateCount = 4;
constexpr std::size_t kFirstRate = 24;  // their places in a converted spectrum

/// What one well of a plate gave in one frame.
struct Spectrum {
  std::string plate;  ///< of a study
  bool isEmbedded = false;
  std::uint32_t well = 0;  ///< its number
  std::string wellName;
  int frameCount = 0;
  Vex2WellRecord record = {};
  std::vector<std::uint32_t> rates = {};  ///< of a background document
};

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
        options.AddFlag("--json", json_, "For programs: an object; one a line for each plate");
    options.AddFlag("--csv", csv_, "For programs: a table, a row for each value").Exclude(json);
  }

  ExitCode Run() override {
    const Document document(file_);
    const std::vector<Spectrum> spectra = load(document);
    if (csv_) {
      printCsv(spectra, document.IsStudy() && !plate_.IsGiven());
    } else {
      for (const Spectrum& spectrum : spectra) json_ ? printJson(spectrum) : draw(spectrum);
    }
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  // Of a study, what the plates have; an error when none has it.
  std::vector<Spectrum> load(const Document& document) const {
    std::vector<Spectrum> spectra;
    std::optional<Error> refusal;
    for (const Document::Plate& plate : plate_.Choose(document)) {
      try {
        spectra.push_back(load(plate));
      } catch (const Error& error) {
        refusal = error;
      }
    }
    if (!spectra.empty() || !refusal) return spectra;
    document.RequireWhole("");
    throw *refusal;
  }

  Spectrum load(const Document::Plate& plate) const {
    const Vex2FileManager& content = *plate.content;
    const AcquisitionDataComp* block = FindBlock(plate, "RAWa");
    if (block == nullptr) refuse(ErrorCode::kDocument, "it has no data block \"RAWa\"");
    Spectrum spectrum{.plate = ToUtf8(plate.name),
                      .isEmbedded = plate.isEmbedded,
                      .wellName = well_,
                      .frameCount = block->GetFrameCount()};
    const auto well = WellNumber(well_, static_cast<std::uint32_t>(content.GetHeaderRows()),
                                 static_cast<std::uint32_t>(content.GetHeaderCols()));
    if (!well) {
      refuse(ErrorCode::kNoSuchWell, "there is no well '" + well_ + "' on its plate of " +
                                         std::to_string(content.GetHeaderRows()) + " x " +
                                         std::to_string(content.GetHeaderCols()) + " wells");
    }
    spectrum.well = *well;
    if (frame_ < 0 || frame_ >= spectrum.frameCount) {
      refuse(ErrorCode::kNoSuchFrame,
             "there is no frame " + std::to_string(frame_) + "; it has " +
                 Counted(static_cast<unsigned>(spectrum.frameCount), "frame"));
    }
    if (!content.GetAcqDataWellRecord(&spectrum.record, static_cast<int>(frame_),
                                      static_cast<int>(*well), DataRAWa)) {
      refuse(ErrorCode::kNoSuchWell, "the well " + well_ + " gave no readings");
    }
    if (content.IsBackground()) spectrum.rates = ratesOf(content, *well);
    return spectrum;
  }

  std::vector<std::uint32_t> ratesOf(const Vex2FileManager& content, std::uint32_t well) const {
    KestorSpectrum converted(static_cast<std::int32_t>(std::size(Vex2WellRecord().data)));
    converted.well = static_cast<std::int32_t>(well);
    converted.frameIndex = static_cast<std::int32_t>(frame_);
    if (!content.LoadSpectrum(&converted, nullptr)) throw std::bad_alloc();
    const std::uint32_t* rates = converted.values + kFirstRate;
    return {rates, rates + kRateCount};
  }

  [[noreturn]] void refuse(ErrorCode code, const std::string& why) const {
    throw Error(code, file_, why);
  }

  void draw(const Spectrum& spectrum) {
    constexpr std::size_t kMostPerLine = 12;
    constexpr std::size_t kIndexWidth = 4;
    constexpr std::size_t kValueWidth = 6;
    const Terminal& terminal = Terminal::Out();
    const std::size_t perLine =
        std::min(kMostPerLine, (terminal.TextWidth() - kIndexWidth) / kValueWidth);
    if (shown_++ > 0) std::cout << '\n';
    const std::string source =
        Printable(file_) + (spectrum.isEmbedded ? ", plate " + Printable(spectrum.plate) : "");
    const std::string what = ": well " + spectrum.wellName + ", frame " + std::to_string(frame_) +
                             " of " + std::to_string(spectrum.frameCount) + ", well value " +
                             std::to_string(spectrum.record.leading[0]);
    std::cout << Wrapped(source + what, 2) << '\n';
    const std::vector<double> readings = shownReadings(spectrum);
    constexpr int kHeight = 8;
    if (readings.size() > 1) std::cout << DrawBars(readings, kHeight, terminal, 0);
    for (std::size_t i = 0; i < readings.size(); ++i) {
      if (i % perLine == 0) {
        std::cout << terminal.Styled(PadLeft(std::to_string(i), kIndexWidth),
                                     Terminal::Style::kDim);
      }
      std::cout << PadLeft(std::to_string(spectrum.record.data[i]), kValueWidth)
                << ((i + 1) % perLine == 0 || i + 1 == readings.size() ? "\n" : "");
    }
    const std::size_t last = std::size(spectrum.record.data) - 1;
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

  // Up to the last that is not 0: a run of one channel has no others.
  static std::vector<double> shownReadings(const Spectrum& spectrum) {
    const auto& data = spectrum.record.data;
    std::size_t count = std::size(data);
    while (count > 1 && data[count - 1] == 0) --count;
    return {data, data + count};
  }

  void printJson(const Spectrum& spectrum) const {
    ordered_json object = {{"file", file_}};
    if (spectrum.isEmbedded) object["plate"] = spectrum.plate;
    object["well"] = spectrum.wellName;
    object["number"] = spectrum.well;
    object["frame"] = frame_;
    object["frames"] = spectrum.frameCount;
    object["wellValue"] = spectrum.record.leading[0];
    object["readings"] = spectrum.record.data;
    if (!spectrum.rates.empty()) object["rates"] = spectrum.rates;
    PrintJson(std::cout, object);
  }

  void printCsv(const std::vector<Spectrum>& spectra, bool ofPlates) const {
    std::cout << (ofPlates ? "plate," : "") << "well,frame,kind,index,value\n";
    for (const Spectrum& spectrum : spectra) {
      const std::string start = (ofPlates ? CsvField(spectrum.plate) + "," : "") +
                                spectrum.wellName + "," + std::to_string(frame_) + ",";
      std::size_t index = 0;
      for (const std::uint16_t value : spectrum.record.data) {
        std::cout << start << "reading," << index++ << ',' << value << '\n';
      }
      index = 0;
      for (const std::uint32_t rate : spectrum.rates) {
        std::cout << start << "rate," << index++ << ',' << rate << '\n';
      }
    }
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
