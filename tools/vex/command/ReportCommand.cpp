#include <algorithm>

#include "lab/picture/Report.h"
#include "lab/picture/ReportHead.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/VersionText.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/FileArguments.h"

namespace vex2::tool {

namespace {

class ReportCommand final : public Command {
 public:
  ReportCommand()
      : Command({"report", "Write a page that shows documents in any browser.",
                 "vex report run.vex -o run.html\nvex report study.vex -o study.html\n"
                 "vex report -j 4 week/*.vex -o week.html --force"}) {}

  void AddOptions(Options& options) override {
    files_.AddTo(options);
    options.Add("-o,--output", target_, "The page to write; - is standard output")
        .Require()
        .Show("FILE.html");
    options.AddFlag("--force", force_, "Overwrite the page if it exists");
  }

  ExitCode Run() override {
    const std::vector<std::string> files = files_.List();
    OutputFiles outputs(force_);
    for (const std::string& file : files) outputs.Read(file);
    outputs.Write(target_, OutputFiles::Kind::kTable).Claim();
    std::vector<std::string> entries;
    std::size_t failed = 0;
    const ExitCode worst =
        files_.ForEach(files, [&](const std::string& file) -> FileArguments::Shown {
          std::vector<Error> errors;
          ReportSettings settings;
          settings.onError = [&](const Error& error) { errors.push_back(error); };
          std::string entry = ReportEntry(file, settings);
          return [&, entry = std::move(entry), errors = std::move(errors)] {
            entries.push_back(entry);
            ExitCode code = ExitCode::kDone;
            for (const Error& error : errors) {
              PrintError(error);
              code = std::max(code, ExitCodeOf(error));
              // A damaged document gets an entry in the report. Other errors, such as a missing
              // file, leave nothing to report on.
              if (error.Class() != ErrorClass::kDocument) ++failed;
            }
            return code;
          };
        });
    if (failed >= files.size()) return worst;
    Output output(target_);
    output.Stream() << ReportPage(ReportDataOf(entries, ReportHead(ProgramText())));
    output.Finish();
    return worst;
  }

 private:
  FileArguments files_;
  std::string target_;
  bool force_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeReportCommand() {
  return std::make_unique<ReportCommand>();
}

}  // namespace vex2::tool
