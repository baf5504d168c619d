#include "tools/vex/options/LossOptions.h"

#include <fmt/core.h>

#include "lab/json/LossReport.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

void LossOptions::AddOptions(Options& options) {
  options.Add("--report", report_, "Write what is lost or changed to this file, as JSON")
      .Show("FILE.json");
  options.AddFlag("--strict", isStrict_, "Exit with code 1 if anything is lost or changed");
}

void LossOptions::Claim(OutputFiles& files) const {
  if (!report_.empty()) files.Write(report_, OutputFiles::Kind::kTable);
}

ExitCode LossOptions::Tell(const Losses& losses, const std::string& about,
                           const std::string& source, const std::string& target) const {
  std::vector<std::string> lines;
  const ExitCode code = Write(losses, about, source, target, lines);
  for (const std::string& line : lines) PrintLine(line);
  return code;
}

ExitCode LossOptions::Write(const Losses& losses, const std::string& about,
                            const std::string& source, const std::string& target,
                            std::vector<std::string>& lines) const {
  for (const Loss& loss : losses.List()) {
    lines.push_back(fmt::format("{}: {}", about, TextOf(loss, losses.hasDocument)));
  }
  if (losses.hasDocument && !losses.IsEmpty()) {
    lines.push_back(
        fmt::format("{}: nothing is lost for 'vex import', which restores the document in it",
                    IsStandardStream(target) ? "standard output" : target));
  }
  return Report(losses, source, target);
}

ExitCode LossOptions::Report(const Losses& losses, const std::string& source,
                             const std::string& target) const {
  if (!report_.empty()) {
    Output output(report_);
    output.Stream() << LossReportJson(losses, source, target);
    output.Finish();
  }
  return isStrict_ && !losses.IsEmpty() ? ExitCode::kDocument : ExitCode::kDone;
}

}  // namespace vex2::tool
