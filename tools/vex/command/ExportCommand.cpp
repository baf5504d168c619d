#include <fmt/core.h>

#include "lab/Text.h"
#include "lab/exchange/ReadingsExport.h"
#include "lab/model/DataBlock.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"

namespace vex2::tool {

namespace {

class ExportCommand final : public Command {
 public:
  ExportCommand()
      : Command({"export", "Write the readings as a table, a row for each well and frame.",
                 "vex export run.vex --format csv\nvex export run.vex -o run.csv\n"
                 "vex export study.vex --plate plate1\nvex export run.vex --raw"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("--format", format_, "Format of the output: csv").AllowOnly({"csv"}).Show("NAME");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    options.AddFlag("--raw", raw_, "Write the stored values, whichever program wrote them");
    options.Add("-o,--output", target_, "File to write; standard output by default").Show("OUT");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
  }

  ExitCode Run() override {
    const Document document(file_);
    const std::vector<ExportedBlock> blocks = findBlocks(document);
    OutputFiles files(force_);
    files.Read(file_).Write(target_, OutputFiles::Kind::kTable).Claim();
    const bool ofPlates = document.IsStudy() && !plate_.IsGiven();
    Output output(target_);
    if (raw_) {
      WriteStored(output.Stream(), blocks, ofPlates);
    } else {
      tellUnknown(WriteReadings(output.Stream(), blocks, ofPlates));
    }
    output.Finish();
    if (document.Content().IsAcquisitionProg()) PrintLine(RunInProgressText(file_, "the table"));
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  std::vector<ExportedBlock> findBlocks(const Document& document) const {
    std::vector<ExportedBlock> blocks;
    for (const Document::Plate& plate : plate_.Choose(document)) {
      const AcquisitionDataComp* records = FindBlock(plate, block_);
      if (records != nullptr) blocks.push_back({plate, records, {*plate.content, block_}});
    }
    if (!blocks.empty()) return blocks;
    document.RequireWhole("");
    throw Error(ErrorCode::kDocument, file_, fmt::format("it has no data block \"{}\"", block_));
  }

  void tellUnknown(const ExportCounts& counts) const {
    if (counts.unknown == 0) return;
    PrintLine(
        fmt::format("{}: leaves {} of {} empty: vex did not record them and does not know "
                    "their meaning; use --raw for the stored values",
                    Printable(file_), counts.unknown, Counted(counts.all, "reading")));
  }

  std::string file_;
  std::string format_ = "csv";
  std::string block_;
  std::string target_;
  bool force_ = false;
  PlateOption plate_;
  bool raw_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeExportCommand() {
  return std::make_unique<ExportCommand>();
}

}  // namespace vex2::tool
