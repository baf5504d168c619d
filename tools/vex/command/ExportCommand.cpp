#include <algorithm>
#include <ostream>

#include "lab/exchange/ReadingsWriter.h"
#include "lab/exchange/StoredValues.h"
#include "lab/model/DataBlock.h"
#include "lab/model/PlateLayout.h"
#include "lab/model/RunLog.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

namespace {

/// A data block that is exported, and what is known of its readings.
struct Block {
  Document::Plate plate;
  const AcquisitionDataComp* records = nullptr;
  RecordedReadings readings;
};

// Calls `take` with each record of the block: well by well, in each by frames.
template <typename Take>
void forEachRecord(const Block& block, const Take& take) {
  const auto columns = static_cast<std::uint32_t>(block.plate.content->GetHeaderCols());
  const int frames = block.records->GetFrameCount();
  StoredRecord stored;
  std::size_t position = 0;
  for (const std::uint16_t number : block.records->GetWellNumbers()) {
    stored.well = WellName(number, columns);
    stored.number = number;
    for (int frame = 0; frame < frames; ++frame) {
      const Vex2WellRecord* records = block.records->GetFrame(frame);
      stored.frame = static_cast<std::uint64_t>(frame);
      stored.record = records != nullptr ? records[position] : Vex2WellRecord();
      take(stored);
    }
    ++position;
  }
}

/// How many records there are in all, and in how many stands something that is not known.
struct Counts {
  std::size_t all = 0;
  std::size_t unknown = 0;
};

Counts countRecords(const std::vector<Block>& blocks) {
  Counts counts;
  for (const Block& block : blocks) {
    forEachRecord(block, [&](const StoredRecord& stored) {
      ++counts.all;
      const bool isEmpty = stored.record == Vex2WellRecord();
      if (!isEmpty && !block.readings.Read(stored.record, stored.frame)) ++counts.unknown;
    });
  }
  return counts;
}

bool haveChannels(const std::vector<Block>& blocks) {
  return std::any_of(blocks.begin(), blocks.end(), [](const Block& block) {
    return !block.readings.Log().value_or(RunLog()).channels.empty();
  });
}

void writeReadings(std::ostream& out, const std::vector<Block>& blocks,
                   ReadingsWriter::Columns columns) {
  ReadingsWriter writer(out, columns);
  for (const Block& block : blocks) {
    const RunLog log = block.readings.Log().value_or(RunLog());
    writer.BeginPlate(ToUtf8(block.plate.name), log.scale, log.channels);
    forEachRecord(block, [&](const StoredRecord& stored) {
      writer.Write(stored.well, stored.frame, block.readings.Read(stored.record, stored.frame));
    });
  }
}

void writeStored(std::ostream& out, const std::vector<Block>& blocks, bool ofPlates) {
  CsvWriter csv(out, ofPlates);
  WriteStoredColumns(csv);
  for (const Block& block : blocks) {
    const std::string plate = ToUtf8(block.plate.name);
    forEachRecord(block,
                  [&](const StoredRecord& stored) { WriteStoredRecord(csv, plate, stored); });
  }
}

class ExportCommand final : public Command {
 public:
  ExportCommand()
      : Command({"export", "Write the readings as a table, a row for each well and frame.",
                 "vex export run.vex --format csv\nvex export run.vex -o run.csv\n"
                 "vex export study.vex --plate plate1\nvex export run.vex --raw"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("--format", format_, "csv, the only one").AllowOnly({"csv"}).Show("NAME");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    options.AddFlag("--raw", raw_, "The values as they are stored, whoever wrote them");
    options.Add("-o,--output", target_, "The file to write; standard output if none").Show("OUT");
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
  }

  ExitCode Run() override {
    const Document document(file_);
    const std::vector<Block> blocks = findBlocks(document);
    OutputFiles files(force_);
    files.Read(file_).Write(target_, OutputFiles::Kind::kTable).Claim();
    const bool ofPlates = document.IsStudy() && !plate_.IsGiven();
    Output output(target_);
    if (raw_) {
      writeStored(output.Stream(), blocks, ofPlates);
    } else {
      const Counts counts = countRecords(blocks);
      writeReadings(
          output.Stream(), blocks,
          {.plate = ofPlates, .frame = counts.unknown > 0, .channel = haveChannels(blocks)});
      tellUnknown(counts);
    }
    output.Finish();
    if (document.Content().IsAcquisitionProg()) PrintLine(RunInProgressText(file_, "the table"));
    document.RequireWhole("");
    return ExitCode::kDone;
  }

 private:
  std::vector<Block> findBlocks(const Document& document) const {
    std::vector<Block> blocks;
    for (const Document::Plate& plate : plate_.Choose(document)) {
      const AcquisitionDataComp* records = FindBlock(plate, block_);
      if (records != nullptr) blocks.push_back({plate, records, {*plate.content, block_}});
    }
    if (!blocks.empty()) return blocks;
    document.RequireWhole("");
    throw Error(ErrorCode::kDocument, file_, "it has no data block \"" + block_ + "\"");
  }

  void tellUnknown(const Counts& counts) const {
    if (counts.unknown == 0) return;
    PrintLine(Printable(file_) + ": leaves " + std::to_string(counts.unknown) + " of " +
              Counted(counts.all, "reading") +
              " empty: vex did not record them and does not know their meaning; use --raw "
              "for the stored values");
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
