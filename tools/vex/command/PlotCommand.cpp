#include "tools/vex/command/PlotCommand.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "lab/picture/CellPicture.h"
#include "lab/picture/PlotScene.h"
#include "tools/vex/Lab.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

// Lines of the terminal; 24 where nothing says otherwise.
std::size_t terminalHeight() {
  constexpr std::size_t kUsual = 24;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) return kUsual;
  return size.ws_row;
}

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

// The nearest that a terminal of eight colours has to the palette of the pictures.
Style styleOf(const CellRun& run) {
  constexpr std::array<Style, 8> kGroups = {Style::kBlue,    Style::kRed,    Style::kGreen,
                                            Style::kMagenta, Style::kYellow, Style::kCyan,
                                            Style::kBold,    Style::kPlain};
  constexpr std::array<Style, 4> kScale = {Style::kBlue, Style::kCyan, Style::kGreen,
                                           Style::kYellow};
  if (run.isSoft) return Style::kDim;
  if (run.look.group) return kGroups[*run.look.group % kGroups.size()];
  if (!run.look.share) return Style::kPlain;
  const double place = std::clamp(*run.look.share, 0.0, 1.0) * kScale.size();
  return kScale[std::min(static_cast<std::size_t>(place), kScale.size() - 1)];
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
    options.Add("--wells", plot_.wells, "Only these wells, as A1:C6,D4").Show("WELLS");
    options.AddFlag("--log", plot_.isLog, "A logarithmic axis of readings");
    options.Add("--colour-by,--color-by", colour_, "What colours mean; detector by default")
        .AllowOnly(wordsOf(colourings()))
        .Show("WHAT");
    options.Add("-o,--output", target_, "A .svg, .png or .pdf; the terminal if none").Show("OUT");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
  }

  ExitCode Run() override {
    plot_.kind = valueOf(kinds(), kind_);
    plot_.colourBy = valueOf(colourings(), colour_);
    const std::string format = formatOfTarget();
    const RunReader run(file_);
    if (target_.empty()) {
      draw(run);
    } else {
      save(run, format);
    }
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
    const Terminal& terminal = Terminal::Out();
    // The last line of a screen is the shell's.
    const CellSize size{
        .width = terminal.Width(), .height = terminalHeight() - 1, .isAscii = terminal.IsAscii()};
    for (const auto& line : CellsOf(SceneOf(run, plot_), size)) {
      std::string text;
      for (const CellRun& part : line) text += terminal.Styled(part.text, styleOf(part));
      std::cout << text << '\n';
    }
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
