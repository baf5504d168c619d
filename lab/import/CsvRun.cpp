#include "lab/import/CsvRun.h"

#include <limits>
#include <map>
#include <numeric>
#include <tuple>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/record/ReadingRows.h"

namespace vex2::lab {

namespace {

// Converts a well number of a 384-well plate to that of the well with the same name on a 96-well
// plate. Returns nothing if the smaller plate has no such well.
std::optional<std::uint16_t> wellOf96(std::uint16_t well) {
  const unsigned row = (well - 1U) / kPlate384.columns;
  const unsigned column = (well - 1U) % kPlate384.columns;
  if (row >= kPlate96.rows || column >= kPlate96.columns) return std::nullopt;
  return static_cast<std::uint16_t>(row * kPlate96.columns + column + 1);
}

void fitPlate(ExchangedRun& run) {
  PlateLayout plate = kPlate96;
  for (const Curve& curve : run.curves) {
    if (!wellOf96(curve.well)) plate = kPlate384;
  }
  run.plan.plate.rows = plate.rows;
  run.plan.plate.columns = plate.columns;
  if (plate.rows == kPlate384.rows) return;
  for (Curve& curve : run.curves) curve.well = *wellOf96(curve.well);
}

}  // namespace

ExchangedRun ReadCsvRun(const std::string& path, const std::string& file) {
  RunPlan plan;
  plan.plate = kPlate384;
  plan.wells.resize(kPlate384.WellCount());
  std::iota(plan.wells.begin(), plan.wells.end(), static_cast<unsigned short>(1));
  ExchangedRun run;
  std::map<std::tuple<std::uint16_t, std::size_t, bool>, std::size_t> places;
  CsvFormat format;
  format.namesOption.clear();  // an import has no option for column names
  ReadReadingRows({.path = path, .format = format, .findsChannels = true, .keepsWaiting = {}}, plan,
                  [&](const ReadingRow& row) {
                    const auto [entry, isNew] = places.emplace(
                        std::tuple(row.well, row.channel, row.melting), run.curves.size());
                    if (isNew) {
                      Curve& added = run.curves.emplace_back();
                      added.well = row.well;
                      added.channel = row.channel;
                      added.melting = row.melting;
                    }
                    Curve& curve = run.curves[entry->second];
                    curve.cycles.push_back(row.cycle);
                    curve.times.push_back(row.seconds);
                    curve.temperatures.push_back(static_cast<float>(row.temperature));
                    curve.readings.push_back(
                        row.fluorescence.value_or(std::numeric_limits<double>::quiet_NaN()));
                  });
  if (run.curves.empty()) throw Error(ErrorCode::kDocument, file, "holds no readings");
  for (const std::string& channel : plan.channels) run.plan.channels.push_back(ToUtf8(channel));
  fitPlate(run);
  return run;
}

}  // namespace vex2::lab
