#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>

#include "lab/picture/Report.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/OutputFiles.h"

namespace vex2::tool {

namespace {

// Of now, in UTC: a report is read where the clock may be another.
std::string nowText() {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm utc{};
  gmtime_r(&now, &utc);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

class ReportCommand final : public Command {
 public:
  ReportCommand()
      : Command({"report", "Write a page that shows documents in any browser.",
                 "vex report run.vex -o run.html\nvex report study.vex -o study.html\n"
                 "vex report monday.vex tuesday.vex -o week.html --force"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", files_, "The documents").Require().Show("");
    options.Add("-o,--output", target_, "The page to write; standard output for -")
        .Require()
        .Show("FILE.html");
    options.AddFlag("--force", force_, "Overwrite the page if it exists");
  }

  ExitCode Run() override {
    OutputFiles outputs(force_);
    for (const std::string& file : files_) outputs.Read(file);
    outputs.Write(target_, OutputFiles::Kind::kTable).Claim();
    const std::vector<std::filesystem::path> paths(files_.begin(), files_.end());
    ExitCode worst = ExitCode::kDone;
    std::size_t failed = 0;
    ReportSettings settings;
    settings.program = std::string("vex ") + VEX2_VERSION;
    settings.made = nowText();
    settings.onError = [&](const Error& error) {
      PrintError(error);
      worst = std::max(worst, ExitCodeOf(error));
      // A document that leads nowhere is no document to report on.
      if (error.Class() != ErrorClass::kDocument) ++failed;
    };
    const std::string data = ReportData(paths, settings);
    if (failed == files_.size()) return worst;
    Output output(target_);
    output.Stream() << ReportPage(data);
    output.Finish();
    return worst;
  }

 private:
  std::vector<std::string> files_;
  std::string target_;
  bool force_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeReportCommand() {
  return std::make_unique<ReportCommand>();
}

}  // namespace vex2::tool
