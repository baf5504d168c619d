#include "tools/vex/command/PlotCommand.h"

#include <algorithm>
#include <iostream>

#include "lab/picture/PlotScene.h"
#include "tools/vex/Lab.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/AnalysisOptions.h"
#include "tools/vex/screen/SceneLines.h"

namespace vex2::tool {

namespace {

template <typename Value>
using Names = std::vector<std::pair<std::string, Value>>;

const Names<PlotKind>& kinds() {
  static const Names<PlotKind> names = {{"amplification", PlotKind::kAmplification},
                                        {"melt", PlotKind::kMelt},
                                        {"spectrum", PlotKind::kSpectrum},
                                        {"plate", PlotKind::kPlate},
                                        {"standard", PlotKind::kStandard}};
  return names;
}

const Names<ColourBy>& colourings() {
  static const Names<ColourBy> names = {{"detector", ColourBy::kDetector},
                                        {"sample", ColourBy::kSample},
                                        {"task", ColourBy::kTask},
                                        {"cq", ColourBy::kCq}};
  return names;
}

template <typename Value>
std::vector<std::string> wordsOf(const Names<Value>& names) {
  std::vector<std::string> words;
  for (const auto& [word, value] : names) words.push_back(word);
  return words;
}

template <typename Value>
Value valueOf(const Names<Value>& names, const std::string& word) {
  const auto isWord = [&](const auto& entry) { return entry.first == word; };
  return std::find_if(names.begin(), names.end(), isWord)->second;
}

class PlotCommand final : public Command {
 public:
  PlotCommand()
      : Command({"plot", "Draw a run, in the terminal or as a picture.",
                 "vex plot run.vex\nvex plot run.vex --wells A1:C6,D4 --log\n"
                 "vex plot run.vex --kind plate --colour-by cq -o plate.png"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("--kind", kind_, "What to draw; amplification by default")
        .AllowOnly(wordsOf(kinds()))
        .Show("KIND");
    options.Add("--wells", plot_.wells, "Only these wells, such as A1:C6,D4").Show("WELLS");
    options.AddFlag("--log", plot_.isLog, "A logarithmic axis of readings");
    options.Add("--colour-by,--color-by", colour_, "What the colours show; detector by default")
        .AllowOnly(wordsOf(colourings()))
        .Show("WHAT");
    options.Add("-o,--output", target_, "A .svg, .png or .pdf file; default: the terminal")
        .Show("OUT");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
  }

  ExitCode Run() override {
    plot_.kind = valueOf(kinds(), kind_);
    plot_.colourBy = valueOf(colourings(), colour_);
    const std::string format = formatOfTarget();
    const RunReader run(file_);
    OrDamage(run, [&] { target_.empty() ? draw(run) : save(run, format); });
    if (run.IsWhole()) return ExitCode::kDone;
    const FileFault& fault = run.Faults().front();
    throw Error(ErrorCode::kDocument, file_, "is shown in part: " + fault.what, fault.offset);
  }

 private:
  std::string formatOfTarget() const {
    if (target_.empty()) return {};
    for (const std::string format : {"svg", "png", "pdf"}) {
      if (target_.ends_with("." + format)) return format;
    }
    throw Error(ErrorCode::kInvalidValue, target_,
                "is no name of a picture; end it in .svg, .png or .pdf");
  }

  void draw(const RunReader& run) const {
    const Scene scene = SceneOf(run, plot_);
    for (const std::string& line : LinesOf(scene, ScreenSize())) std::cout << line << '\n';
  }

  void save(const RunReader& run, const std::string& format) const {
    OutputFiles files(force_);
    files.Read(file_).Write(target_, OutputFiles::Kind::kTable).Claim();
    std::string picture = PlotSvg(run, plot_);
    if (format != "svg") {
      picture = ImageOf(picture, format == "png" ? ImageFormat::kPng : ImageFormat::kPdf);
    }
    Output output(target_);
    output.Stream() << picture;
    output.Finish();
  }

  std::string file_;
  std::string kind_ = "amplification";
  std::string colour_ = "detector";
  std::string target_;
  PlotOptions plot_;
  bool force_ = false;
};

}  // namespace

std::unique_ptr<Command> MakePlotCommand() {
  return std::make_unique<PlotCommand>();
}

}  // namespace vex2::tool
