#include "lab/record/ReadingRows.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/csv/CsvReader.h"

namespace vex2::lab {

namespace {

enum Column : std::size_t { kWell, kStage, kCycle, kTime, kTemperature, kFluorescence, kChannel };

constexpr unsigned kMostCycles = 65535;
constexpr double kMostSeconds = 4294967;     // 32 bits of milliseconds, 49 days
constexpr double kMostTemperature = 655.35;  // 16 bits of hundredths of a degree

bool isMeltingRow(const CsvRow& row) {
  const std::string_view stage = row.Text(kStage);
  if (stage != "amplification" && stage != "melt") {
    row.RefuseField(kStage, "is neither 'amplification' nor 'melt'");
  }
  return stage == "melt";
}

unsigned short wellOf(const CsvRow& row, const RunPlan& plan) {
  const auto well = plan.plate.FindAsWritten(row.Text(kWell));
  if (!well) row.RefuseField(kWell, "is no well of the plate");
  if (!std::binary_search(plan.wells.begin(), plan.wells.end(), *well)) {
    row.RefuseField(kWell, "is not in the wells file");
  }
  return *well;
}

std::optional<double> fluorescenceOf(const CsvRow& row) {
  const std::string_view text = row.Text(kFluorescence);
  if (text.empty() || text == "NA") return std::nullopt;
  const double value = row.AnyDecimal(kFluorescence);
  if (std::abs(value) > ReadingScale::kLargestReading) {
    row.RefuseField(kFluorescence, "does not fit: readings go from -1e12 to 1e12");
  }
  return value == 0 ? 0 : value;  // minus zero becomes zero
}

std::string channelName(const CsvRow& row) {
  const auto name = ToLatin1(row.Text(kChannel));
  if (!name) row.RefuseField(kChannel, "has a character that documents cannot hold (Latin-1 only)");
  if (name->empty()) row.RefuseField(kChannel, "has no channel name");
  if (name->find_first_of(",\n\r") != std::string::npos) {
    row.RefuseField(kChannel, "has a comma or a line end in it");
  }
  return *name;
}

std::size_t channelOf(const CsvRow& row, RunPlan& plan, bool findsChannels) {
  if (!row.Has(kChannel)) {
    if (!plan.channels.empty()) row.Refuse("has no channel, but the run's channels are named");
    return 0;
  }
  const std::string name = channelName(row);
  auto& names = plan.channels;
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    if (!findsChannels && names.empty()) {
      row.RefuseField(kChannel, "was not named before the recording", ErrorRemedy::kNameChannels);
    }
    if (!findsChannels) row.RefuseField(kChannel, "is not one of the run's channels");
    if (names.size() == kMostChannels) {
      row.RefuseField(kChannel, fmt::format("is one channel too many: a document holds {} channels",
                                            kMostChannels));
    }
    names.push_back(name);
    return names.size() - 1;
  }
  return static_cast<std::size_t>(found - names.begin());
}

}  // namespace

std::string FrameName(bool melting, unsigned cycle) {
  return (melting ? "melt cycle " : "amplification cycle ") + std::to_string(cycle);
}

const std::vector<std::string_view>& ReadingsFileColumns() {
  static const std::vector<std::string_view> columns = {
      "well", "stage", "cycle", "time_s", "temperature_c", "fluorescence", "channel"};
  return columns;
}

bool ReadReadingRows(const ReadingsSource& source, RunPlan& plan,
                     const std::function<void(const ReadingRow&)>& take) {
  const auto& columns = ReadingsFileColumns();
  return ReadCsv(source.path, {columns.begin(), columns.begin() + kChannel},
                 [&](const CsvRow& row) {
                   ReadingRow reading;
                   reading.number = row.Number();
                   reading.well = wellOf(row, plan);
                   reading.channel = channelOf(row, plan, source.findsChannels);
                   reading.fluorescence = fluorescenceOf(row);
                   reading.seconds = row.Decimal(kTime, kMostSeconds);
                   reading.temperature = row.Decimal(kTemperature, kMostTemperature);
                   reading.melting = isMeltingRow(row);
                   reading.cycle = static_cast<std::uint16_t>(row.Whole(kCycle, 1, kMostCycles));
                   take(reading);
                 },
                 {.optionalColumns = {columns[kChannel]},
                  .keepsWaiting = source.keepsWaiting,
                  .format = source.format});
}

}  // namespace vex2::lab
