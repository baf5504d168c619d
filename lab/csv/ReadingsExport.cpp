#include "lab/csv/ReadingsExport.h"

#include <algorithm>
#include <array>

#include "lab/Text.h"
#include "lab/csv/ReadingsWriter.h"
#include "lab/csv/StoredValues.h"
#include "lab/model/PlateLayout.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

// Calls `take` for each record of the block: well by well, and for each well in the order of the
// frames.
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

// Calls `take` for each record of the wells with the indexes from `first` to below `last`, in the
// order of the records in memory.
template <typename Take>
void forEachInMemory(const ExportedBlock& block, std::size_t first, std::size_t last,
                     const Take& take) {
  static const Vex2WellRecord kEmpty;
  const int frames = block.records->GetFrameCount();
  for (int frame = 0; frame < frames; ++frame) {
    const Vex2WellRecord* records = block.records->GetFrame(frame);
    for (std::size_t position = first; position < last; ++position) {
      take(position, static_cast<std::uint64_t>(frame),
           records != nullptr ? records[position] : kEmpty);
    }
  }
}

ExportCounts countRecords(const std::vector<ExportedBlock>& blocks) {
  ExportCounts counts;
  for (const ExportedBlock& block : blocks) {
    forEachInMemory(block, 0, block.records->GetWellNumbers().size(),
                    [&](std::size_t, std::uint64_t frame, const Vex2WellRecord& record) {
                      ++counts.all;
                      const bool isEmpty = record == Vex2WellRecord();
                      if (!isEmpty && !block.readings.Read(record, frame)) ++counts.unknown;
                    });
  }
  return counts;
}

// Writes several wells at the same time. The table is sorted by well, but the records are in memory
// by frame, and going through all frames for each well would be slow.
void writeBlock(ReadingsWriter& writer, const ExportedBlock& block, bool isKnown) {
  constexpr std::size_t kWellsAtOnce = 16;
  const auto columns = static_cast<std::uint32_t>(block.plate.content->GetHeaderCols());
  std::vector<std::string> names;
  for (const std::uint16_t number : block.records->GetWellNumbers()) {
    names.push_back(WellName(number, columns));
  }
  std::array<std::string, kWellsAtOnce> rows;
  for (std::size_t first = 0; first < names.size(); first += kWellsAtOnce) {
    const std::size_t last = std::min(first + kWellsAtOnce, names.size());
    forEachInMemory(block, first, last,
                    [&](std::size_t position, std::uint64_t frame, const Vex2WellRecord& record) {
                      writer.Append(rows[position - first], names[position], frame,
                                    isKnown ? RecordedReadings::ReadKnown(record)
                                            : block.readings.Read(record, frame));
                    });
    for (std::string& ofWell : rows) {
      writer.WriteRows(ofWell);
      ofWell.clear();
    }
  }
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
    writeBlock(writer, block, counts.unknown == 0);
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
