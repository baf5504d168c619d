#include "lab/exchange/ReadingsExport.h"

#include <algorithm>

#include "lab/Text.h"
#include "lab/exchange/ReadingsWriter.h"
#include "lab/exchange/StoredValues.h"
#include "lab/model/PlateLayout.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

// Calls `take` with each record of the block: well by well, in each by frames.
template <typename Take>
void forEachRecord(const ExportedBlock& block, const Take& take) {
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

ExportCounts countRecords(const std::vector<ExportedBlock>& blocks) {
  ExportCounts counts;
  for (const ExportedBlock& block : blocks) {
    forEachRecord(block, [&](const StoredRecord& stored) {
      ++counts.all;
      const bool isEmpty = stored.record == Vex2WellRecord();
      if (!isEmpty && !block.readings.Read(stored.record, stored.frame)) ++counts.unknown;
    });
  }
  return counts;
}

bool haveChannels(const std::vector<ExportedBlock>& blocks) {
  return std::any_of(blocks.begin(), blocks.end(), [](const ExportedBlock& block) {
    return !block.readings.Log().value_or(RunLog()).channels.empty();
  });
}

}  // namespace

ExportCounts WriteReadings(std::ostream& out, const std::vector<ExportedBlock>& blocks,
                           bool ofPlates) {
  const ExportCounts counts = countRecords(blocks);
  ReadingsWriter writer(
      out, {.plate = ofPlates, .frame = counts.unknown > 0, .channel = haveChannels(blocks)});
  for (const ExportedBlock& block : blocks) {
    const RunLog log = block.readings.Log().value_or(RunLog());
    writer.BeginPlate(ToUtf8(block.plate.name), log.scale, log.channels);
    forEachRecord(block, [&](const StoredRecord& stored) {
      writer.Write(stored.well, stored.frame, block.readings.Read(stored.record, stored.frame));
    });
  }
  return counts;
}

void WriteStored(std::ostream& out, const std::vector<ExportedBlock>& blocks, bool ofPlates) {
  CsvWriter csv(out, ofPlates);
  WriteStoredColumns(csv);
  for (const ExportedBlock& block : blocks) {
    const std::string plate = ToUtf8(block.plate.name);
    forEachRecord(block,
                  [&](const StoredRecord& stored) { WriteStoredRecord(csv, plate, stored); });
  }
}

void WriteSpectra(std::ostream& out, const std::vector<WellSpectrum>& spectra,
                  const std::string& well, std::int64_t frame, bool ofPlates) {
  out << (ofPlates ? "plate," : "") << "well,frame,kind,index,value\n";
  for (const WellSpectrum& spectrum : spectra) {
    const std::string start =
        (ofPlates ? CsvField(spectrum.plate) + "," : "") + well + "," + std::to_string(frame) + ",";
    std::size_t index = 0;
    for (const std::uint16_t value : spectrum.record.data) {
      out << start << "reading," << index++ << ',' << value << '\n';
    }
    index = 0;
    for (const std::uint32_t rate : spectrum.rates) {
      out << start << "rate," << index++ << ',' << rate << '\n';
    }
  }
}

}  // namespace vex2::lab
