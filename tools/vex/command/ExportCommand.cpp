#include <ostream>

#include "tools/vex/command/Command.h"
#include "tools/vex/document/DataBlock.h"
#include "tools/vex/document/DocumentPlates.h"
#include "tools/vex/document/Rewriting.h"
#include "tools/vex/document/RunReading.h"
#include "tools/vex/document/Settings.h"
#include "tools/vex/run/ReadingsWriter.h"
#include "tools/vex/setup/PlateLayout.h"
#include "tools/vex/text/Output.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

namespace {

void writePlate(ReadingsWriter& writer, const Document::Plate& plate,
                const AcquisitionDataComp& block) {
  writer.BeginPlate(ToUtf8(plate.name), ScaleInLog(LogText(*plate.content)));
  const auto columns = static_cast<std::uint32_t>(plate.content->GetHeaderCols());
  const Vex2WellRecord unfilled;
  const int frames = block.GetFrameCount();
  std::size_t position = 0;
  for (const std::uint16_t number : block.GetWellNumbers()) {
    const std::string well = WellName(number, columns);
    for (int frame = 0; frame < frames; ++frame) {
      const Vex2WellRecord* records = block.GetFrame(frame);
      writer.Write(well, records != nullptr ? records[position] : unfilled);
    }
    ++position;
  }
}

class ExportCommand final : public Command {
 public:
  ExportCommand()
      : Command({"export", "Write the readings as a table, a row for each well and frame.",
                 "vex export run.vex --format csv\nvex export run.vex -o run.csv\n"
                 "vex export study.vex --plate plate1"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("--format", format_, "csv, the only one").AllowOnly({"csv"}).Show("NAME");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    options.Add("-o,--output", target_, "The file to write; standard output if none").Show("OUT");
  }

  ExitCode Run() override {
    const Document document(file_);
    const auto plates = platesWithBlock(document);
    if (IsSameFile(file_, target_)) {
      throw Error(ExitCode::kUsage, file_, "the table would take the place of its own document");
    }
    Output output(target_);
    ReadingsWriter writer(output.Stream(), document.IsStudy() && !plate_.IsGiven());
    for (const Document::Plate& plate : plates) {
      writePlate(writer, plate, *FindBlock(plate, block_));
    }
    output.Finish();
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  std::vector<Document::Plate> platesWithBlock(const Document& document) const {
    auto plates = plate_.Choose(document);
    std::erase_if(plates, [&](const auto& plate) { return FindBlock(plate, block_) == nullptr; });
    if (!plates.empty()) return plates;
    document.RequireWhole("");
    throw Error(ExitCode::kDocument, file_, "it has no data block \"" + block_ + "\"");
  }

  std::string file_;
  std::string format_ = "csv";
  std::string block_;
  std::string target_;
  PlateOption plate_;
};

}  // namespace

std::unique_ptr<Command> MakeExportCommand() {
  return std::make_unique<ExportCommand>();
}

}  // namespace vex2::tool
