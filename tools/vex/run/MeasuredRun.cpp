#include "tools/vex/run/MeasuredRun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <tuple>
#include <vector>

#include "tools/vex/Errors.h"
#include "tools/vex/document/RunLog.h"
#include "tools/vex/setup/WellsFile.h"
#include "tools/vex/text/CsvReader.h"

namespace vex2::tool {

namespace {

constexpr unsigned kMostCycles = 65535;
constexpr double kMostSeconds = 4294967;     // 32 bits of milliseconds, some fifty days
constexpr double kMostTemperature = 655.35;  // 16 bits of hundredths
constexpr double kMostStored = 65535;
constexpr std::array<std::uint32_t, 4> kScales = {1000, 100, 10, 1};

// A row of the readings file.
struct Row {
  std::size_t number = 0;
  unsigned short well = 0;
  double value = 0;
  RunReading reading;
};

bool isSameFrame(const Row& left, const Row& right) {
  return left.reading.melting == right.reading.melting && left.reading.cycle == right.reading.cycle;
}

std::string placeName(const Row& row) {
  return (row.reading.melting ? "melt cycle " : "amplification cycle ") +
         std::to_string(row.reading.cycle);
}

bool isMelting(const CsvRow& row, std::size_t column) {
  const std::string_view stage = row.Text(column);
  if (stage != "amplification" && stage != "melt") {
    row.RefuseField(column, "is neither 'amplification' nor 'melt'");
  }
  return stage == "melt";
}

std::vector<Row> loadReadings(const MeasuredRunFiles& files, const RunPlan& plan) {
  enum Column : std::size_t { kWell, kStage, kCycle, kTime, kTemperature, kFluorescence };
  std::vector<Row> rows;
  ReadCsv(files.readings, {"well", "stage", "cycle", "time_s", "temperature_c", "fluorescence"},
          [&](const CsvRow& row) {
            const auto well = plan.plate.FindAsWritten(row.Text(kWell));
            if (!well || !std::binary_search(plan.wells.begin(), plan.wells.end(), *well)) {
              row.RefuseField(kWell, "is not in the wells file");
            }
            Row& added = rows.emplace_back();
            added.number = row.Number();
            added.well = *well;
            added.value = row.Decimal(kFluorescence, std::numeric_limits<double>::max());
            const double seconds = row.Decimal(kTime, kMostSeconds);
            const double temperature = row.Decimal(kTemperature, kMostTemperature);
            added.reading.melting = isMelting(row, kStage);
            added.reading.cycle = static_cast<std::uint16_t>(row.Whole(kCycle, 1, kMostCycles));
            added.reading.time = static_cast<std::uint32_t>(std::llround(seconds * 1000));
            added.reading.temperature = static_cast<std::uint16_t>(std::llround(temperature * 100));
          },
          {.format = files.readingsFormat});
  if (rows.empty()) throw Error(ExitCode::kDocument, CsvName(files.readings), "holds no readings");
  return rows;
}

bool fits(double value, std::uint32_t scale) {
  return std::round(value * scale) <= kMostStored;
}

std::uint32_t chooseScale(const std::vector<Row>& rows) {
  for (const std::uint32_t scale : kScales) {
    if (std::all_of(rows.begin(), rows.end(),
                    [=](const Row& row) { return fits(row.value, scale); })) {
      return scale;
    }
  }
  return kScales.back();
}

void applyScale(std::vector<Row>& rows, std::uint32_t scale, const std::string& file) {
  for (Row& row : rows) {
    if (!fits(row.value, scale)) {
      throw Error(ExitCode::kDocument, file,
                  "row " + std::to_string(row.number) +
                      ": the reading does not fit in 16 bits with the scale " +
                      std::to_string(scale));
    }
    row.reading.value = static_cast<std::uint16_t>(std::round(row.value * scale));
  }
}

// Brings the rows into frames, in each by wells, and refuses what is there twice.
void sortIntoFrames(std::vector<Row>& rows, const std::string& file, PlateLayout plate) {
  const auto key = [](const Row& row) {
    return std::tuple(row.reading.melting, row.reading.cycle, row.well, row.number);
  };
  std::sort(rows.begin(), rows.end(),
            [&](const Row& left, const Row& right) { return key(left) < key(right); });
  const auto twice =
      std::adjacent_find(rows.begin(), rows.end(), [](const Row& left, const Row& right) {
        return isSameFrame(left, right) && left.well == right.well;
      });
  if (twice == rows.end()) return;
  const Row& second = *(twice + 1);
  throw Error(ExitCode::kDocument, file,
              "row " + std::to_string(second.number) + ": well " + plate.NameOf(second.well) +
                  " has a second reading in " + placeName(second) + ", the first is in row " +
                  std::to_string(twice->number));
}

// The readings of one frame: from every well of the plan one.
std::vector<RunReading> frameOf(std::span<const Row> rows, const RunPlan& plan,
                                const std::string& file) {
  std::vector<RunReading> frame;
  frame.reserve(plan.wells.size());
  for (const unsigned short well : plan.wells) {
    if (frame.size() == rows.size() || rows[frame.size()].well != well) {
      throw Error(
          ExitCode::kDocument, file,
          "well " + plan.plate.NameOf(well) + " has no reading in " + placeName(rows.front()));
    }
    frame.push_back(rows[frame.size()].reading);
  }
  return frame;
}

std::uint32_t timeOf(const std::vector<RunReading>& frame) {
  return std::min_element(
             frame.begin(), frame.end(),
             [](const RunReading& left, const RunReading& right) { return left.time < right.time; })
      ->time;
}

void cutIntoFrames(std::span<const Row> rows, const std::string& file, RunPlan& plan) {
  while (!rows.empty()) {
    const auto end = std::find_if(rows.begin(), rows.end(),
                                  [&](const Row& row) { return !isSameFrame(row, rows.front()); });
    const auto count = static_cast<std::size_t>(end - rows.begin());
    plan.frames.push_back(frameOf(rows.first(count), plan, file));
    rows = rows.subspan(count);
  }
  std::stable_sort(plan.frames.begin(), plan.frames.end(), [](const auto& left, const auto& right) {
    return timeOf(left) < timeOf(right);
  });
}

}  // namespace

const std::vector<std::string_view>& ReadingsFileColumns() {
  static const std::vector<std::string_view> columns = {"well",   "stage",         "cycle",
                                                        "time_s", "temperature_c", "fluorescence"};
  return columns;
}

RunPlan LoadMeasuredRun(const MeasuredRunFiles& files) {
  const std::string name = CsvName(files.readings);
  RunPlan plan;
  plan.contents = LoadWells(files.wells, files.wellsFormat);
  plan.plate = plan.contents.plate;
  plan.wells = plan.contents.Wells();
  std::vector<Row> rows = loadReadings(files, plan);
  plan.scale = files.scale ? *files.scale : chooseScale(rows);
  applyScale(rows, plan.scale, name);
  sortIntoFrames(rows, name, plan.plate);
  cutIntoFrames(rows, name, plan);
  plan.comment = "Played back from measured readings";
  plan.origin = std::string(kMeasuredSource) + "\n";
  return plan;
}

}  // namespace vex2::tool
