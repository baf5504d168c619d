#include "lab/exchange/WideReadings.h"

#include "lab/Text.h"
#include "lab/csv/CsvWriter.h"
#include "lab/csv/ReadingFields.h"
#include "lab/model/PlateLayout.h"

namespace vex2::lab {

namespace {

std::vector<std::string> columnsOf(const PlateSource& source) {
  std::vector<std::string> columns = {"stage", "cycle", "time_s", "temperature_c"};
  for (const std::uint16_t well : source.raw->GetWellNumbers()) {
    for (const std::string& channel : source.Channels()) {
      columns.push_back(WellName(well, source.plate.columns) + (channel.empty() ? "" : " ") +
                        channel);
    }
  }
  return columns;
}

}  // namespace

void WriteWideReadings(std::ostream& out, const PlateSource& source, Losses& losses) {
  if (source.raw == nullptr) return;
  CsvWriter csv(out, false);
  csv.Row("", columnsOf(source));
  const std::size_t channels = source.Channels().size();
  const auto wells = source.raw->GetWellNumbers();
  for (int frame = 0; frame < source.raw->GetFrameCount(); ++frame) {
    const Vex2WellRecord* records = source.raw->GetFrame(frame);
    std::vector<std::string> shared(4);
    std::vector<std::string> row(shared);
    for (std::size_t i = 0; i < wells.size(); ++i) {
      const auto reading =
          records != nullptr && source.Log() != nullptr
              ? source.recorded->Read(records[i], static_cast<std::uint64_t>(frame))
              : std::nullopt;
      if (!reading) {
        row.insert(row.end(), channels, "");
        losses.Add("records of readings whose meaning is not known",
                   WellName(wells[i], source.plate.columns) + " frame " + std::to_string(frame));
        continue;
      }
      const std::vector<std::string> fields = ReadingFields(*reading, *source.Log());
      const std::vector<std::string> own(fields.begin(), fields.begin() + 4);
      if (shared[0].empty()) {
        shared = own;
        std::copy(own.begin(), own.end(), row.begin());
      } else if (own != shared) {
        losses.AddChanged("times and temperatures that differ from those of a frame's first well",
                          ReadingName(source, wells[i], *reading));
      }
      row.insert(row.end(), fields.begin() + 4, fields.end());
    }
    csv.Row("", row);
  }
}

}  // namespace vex2::lab
