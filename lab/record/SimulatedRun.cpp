#include "lab/record/SimulatedRun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <ostream>

#include "lab/Text.h"
#include "lab/csv/ReadingsWriter.h"
#include "lab/model/RunLog.h"

namespace vex2::lab {

namespace {

constexpr std::uint32_t kScale = 1000;
constexpr unsigned kLevels = 6;  // five dilutions and the control without template
constexpr double kMostCopies = 1e6;
constexpr double kPlateauCopies = 3e11;
constexpr double kReadingsTop = 65.535;  // the highest reading that fits with the scale

constexpr const char* kReporter = "green";

constexpr std::uint32_t kFirstCycleAt = 20'000;  // in milliseconds
constexpr std::uint32_t kCycleTime = 39'500;
constexpr std::uint32_t kMeltStepTime = 1'350;
constexpr std::uint16_t kReadingTemperature = 6000;  // in hundredths of a degree Celsius
constexpr std::uint32_t kMeltRange = 3500;

struct Parameter {
  std::string_view key;
  std::uint32_t SimulationParameters::*member;
  std::uint32_t most;
};
constexpr std::array<Parameter, 4> kParameters = {
    {{"wells=", &SimulationParameters::wells, 384},
     {"cycles=", &SimulationParameters::cycles, kMostSteps},
     {"melt=", &SimulationParameters::meltSteps, kMostSteps},
     {"seed=", &SimulationParameters::seed, std::numeric_limits<std::uint32_t>::max()}}};

// Random numbers that are the same on every machine. They are made with integer arithmetic, and
// with no floating-point operations except those with exactly one correct result. The
// distributions and logarithms of the standard library do not have that property.
class Random {
 public:
  Random(std::uint32_t seed, std::uint32_t stream) : state_(std::uint64_t{seed} << 32U | stream) {
    Next();
  }

  /// A number from 0 to below 1.
  double Uniform() { return static_cast<double>(Next() >> 11U) * 0x1p-53; }
  /// A number around 0 with standard deviation 1: nearly normal, and never beyond 6.
  double Noise() {
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += Uniform();
    return sum;
  }

 private:
  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }

  std::uint64_t state_;
};

// The properties of a target, which all wells of a row share.
struct SimulatedTarget {
  double efficiency;
  double brightness;
  double meltsAt;

  SimulatedTarget(std::uint32_t seed, unsigned row) {
    Random random(seed, 0x10000U + row);
    efficiency = 0.86 + 0.12 * random.Uniform();
    brightness = 6 + 4 * random.Uniform();
    meltsAt = 78 + 10 * random.Uniform();
  }
};

unsigned levelOf(const PlateLayout& plate, unsigned well) {
  return (well - 1) % plate.columns / (plate.columns / kLevels);
}

double copiesAt(unsigned level) {
  if (level == kLevels - 1) return 0;
  double copies = kMostCopies;
  for (unsigned step = 0; step < level; ++step) copies /= 10;
  return copies;
}

// The state of one well during the run.
class SimulatedWell {
 public:
  SimulatedWell(const SimulatedTarget& target, double copies, Random random)
      : target_(target), random_(random) {
    copies_ = copies * (1 + 0.05 * random_.Noise());
    baseline_ = 0.3 + 0.2 * random_.Uniform();
    drift_ = 0.002 * random_.Uniform();
  }

  std::uint16_t Cycle() {
    copies_ += copies_ * target_.efficiency * (1 - copies_ / kPlateauCopies);
    baseline_ += drift_;
    return reading(target_.brightness * copies_ / kPlateauCopies);
  }

  std::uint16_t Melt(double temperature) {
    // A step function. It does not use the exponential function, whose results differ between
    // machines.
    const double distance = (temperature - target_.meltsAt) / 1.2;
    const double bound = 0.5 * (1 - distance / std::sqrt(1 + distance * distance));
    const double dimmed = 1 - 0.004 * (temperature - 60);
    return reading(target_.brightness * copies_ / kPlateauCopies * bound * dimmed);
  }

 private:
  std::uint16_t reading(double light) {
    const double noise = random_.Noise() * (0.008 + 0.003 * light);
    const double value = std::clamp(baseline_ + light + noise, 0.0, kReadingsTop);
    return static_cast<std::uint16_t>(value * kScale + 0.5);
  }

  SimulatedTarget target_;
  Random random_;
  double copies_;
  double baseline_;
  double drift_;
};

std::vector<SimulatedWell> wellsOf(const RunPlan& plan, std::uint32_t seed) {
  std::vector<SimulatedWell> wells;
  for (const unsigned well : plan.wells) {
    const SimulatedTarget target(seed, (well - 1) / plan.plate.columns);
    wells.emplace_back(target, copiesAt(levelOf(plan.plate, well)), Random(seed, well));
  }
  return wells;
}

PlateContents contentsOf(const PlateLayout& plate) {
  PlateContents contents;
  contents.plate = plate;
  for (unsigned short well = 1; well <= plate.WellCount(); ++well) {
    const unsigned level = levelOf(plate, well);
    const bool isControl = level == kLevels - 1;
    WellRow& row = contents.rows.emplace_back();
    row.well = well;
    row.sample = isControl ? "no template" : "dilution " + std::to_string(level + 1);
    row.target = std::string("target ") + static_cast<char>('A' + (well - 1U) / plate.columns);
    row.task = isControl ? "NTC" : "STND";
    row.quantity = static_cast<float>(copiesAt(level));
    row.reporter = kReporter;
  }
  return contents;
}

void addFrame(RunPlan& plan, std::vector<SimulatedWell>& wells, const RunReading& common,
              const std::function<std::uint16_t(SimulatedWell&)>& read) {
  auto& frame = plan.frames.emplace_back(wells.size(), common);
  std::transform(wells.begin(), wells.end(), frame.begin(), [&](SimulatedWell& well) {
    RunReading reading = common;
    reading.values[0] = read(well);
    return reading;
  });
}

}  // namespace

RunPlan SimulateRun(const SimulationParameters& parameters) {
  RunPlan plan;
  plan.plate = parameters.wells == kPlate384.WellCount() ? kPlate384 : kPlate96;
  plan.contents = contentsOf(plan.plate);
  plan.calibration = SimulatedCalibration();
  plan.wells.resize(plan.plate.WellCount());
  std::iota(plan.wells.begin(), plan.wells.end(), static_cast<unsigned short>(1));
  plan.scale = ReadingScale(kScale);
  plan.comment = "Simulated dilution series";
  plan.origin = std::string(kSimulatedSource) + "\n";
  for (const auto& [key, member, most] : kParameters) {
    plan.origin.append(key).append(std::to_string(parameters.*member)).append("\n");
  }
  std::vector<SimulatedWell> wells = wellsOf(plan, parameters.seed);
  RunReading common;
  common.time = kFirstCycleAt;
  common.temperature = kReadingTemperature;
  for (std::uint32_t cycle = 1; cycle <= parameters.cycles; ++cycle) {
    common.cycle = static_cast<std::uint16_t>(cycle);
    addFrame(plan, wells, common, [](SimulatedWell& well) { return well.Cycle(); });
    common.time += kCycleTime;
  }
  common.melting = true;
  for (std::uint32_t step = 0; step < parameters.meltSteps; ++step) {
    const std::uint32_t steps = std::max(parameters.meltSteps - 1, 1U);
    common.cycle = static_cast<std::uint16_t>(step + 1);
    common.temperature =
        static_cast<std::uint16_t>(kReadingTemperature + kMeltRange * step / steps);
    addFrame(plan, wells, common,
             [&](SimulatedWell& well) { return well.Melt(common.temperature / 100.0); });
    common.time += kMeltStepTime;
  }
  return plan;
}

void ReadParameters(std::string_view log, SimulationParameters& parameters) {
  while (!log.empty()) {
    const std::string_view line = log.substr(0, log.find('\n'));
    log.remove_prefix(std::min(log.size(), line.size() + 1));
    for (const auto& [key, member, most] : kParameters) {
      if (!line.starts_with(key)) continue;
      const auto value = NumberIn<std::uint32_t>(line.substr(key.size()));
      if (value && *value <= most) parameters.*member = *value;
    }
  }
}

void WriteReadings(const RunPlan& plan, std::ostream& out) {
  ReadingsWriter writer(out, {});
  writer.BeginPlate({}, plan.scale, plan.channels);
  std::string rows;
  for (std::size_t i = 0; i < plan.wells.size(); ++i) {
    const std::string well = plan.plate.NameOf(plan.wells[i]);
    for (std::size_t frame = 0; frame < plan.frames.size(); ++frame) {
      writer.Append(rows, well, frame, plan.frames[frame][i]);
    }
    writer.WriteRows(rows);
    rows.clear();
  }
}

}  // namespace vex2::lab
