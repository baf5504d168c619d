#include "lab/import/StoredRun.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>
#include <utility>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/RunLog.h"
#include "lab/record/FrameEncoder.h"
#include "lab/record/MeasuredRun.h"
#include "lab/record/PlanDocument.h"
#include "lab/record/PlanValues.h"
#include "lab/record/ScaleChoice.h"

namespace vex2::lab {

namespace {

constexpr double kMostTemperature = 655.35;

// The shortest decimal number that is stored as this 32-bit number.
double decimalOf(float number) {
  return NumberIn<double>(ValueText(Value(number))).value_or(number);
}

// Puts the values of a curve's points into a new order. `order` has the old index of each point.
template <typename Value>
void arrange(std::vector<Value>& values, const std::vector<std::size_t>& order) {
  if (values.empty()) return;
  std::vector<Value> arranged;
  arranged.reserve(order.size());
  for (const std::size_t place : order) arranged.push_back(values[place]);
  values = std::move(arranged);
}

// Sorts the points of an amplification by cycle. If a cycle is repeated, keeps only its first
// point.
void sortCycles(Curve& curve, const std::string& well, Losses& losses) {
  const auto& cycles = curve.cycles;
  if (std::adjacent_find(cycles.begin(), cycles.end(), std::greater_equal<>()) == cycles.end()) {
    return;
  }
  std::vector<std::size_t> order(cycles.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return cycles[a] < cycles[b]; });
  const auto last = std::unique(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return cycles[a] == cycles[b];
  });
  const auto repeated = static_cast<std::uint64_t>(order.end() - last);
  losses.Add("readings of a cycle that the curve has already", "well " + well, repeated);
  order.erase(last, order.end());
  arrange(curve.temperatures, order);
  arrange(curve.readings, order);
  arrange(curve.times, order);
  arrange(curve.cycles, order);
}

// Numbers the points of a melting curve. If the curve has fewer points than the longest one, the
// temperatures decide which numbers are skipped.
void numberMelting(Curve& curve, const std::vector<float>& longest) {
  const auto& own = curve.temperatures;
  curve.cycles.resize(own.size());
  std::size_t frame = 0;
  for (std::size_t i = 0; i < own.size(); ++i, ++frame) {
    const std::size_t left = own.size() - i;
    const auto distance = [&](std::size_t at) { return std::abs(longest[at] - own[i]); };
    while (frame + left < longest.size() && distance(frame + 1) < distance(frame)) ++frame;
    curve.cycles[i] = static_cast<std::uint16_t>(frame + 1);
  }
}

void numberMeltings(std::vector<Curve>& curves, const std::string& file) {
  const Curve* longest = nullptr;
  for (const Curve& curve : curves) {
    if (!curve.melting || !curve.cycles.empty()) continue;
    if (longest == nullptr || curve.readings.size() > longest->readings.size()) longest = &curve;
  }
  if (longest == nullptr) return;
  if (longest->readings.size() > std::numeric_limits<std::uint16_t>::max()) {
    throw Error(ErrorCode::kDocument, file,
                "a melting of more than 65535 readings does not fit into a document");
  }
  const std::vector<float> temperatures = longest->temperatures;
  for (Curve& curve : curves) {
    if (curve.melting && curve.cycles.empty()) numberMelting(curve, temperatures);
  }
}

/// Makes frames from curves, one after the other.
class FrameMaker {
 public:
  FrameMaker(const RunPlan& plan, const std::vector<Curve>& curves, Losses& losses)
      : plan_(plan), curves_(curves), losses_(losses), used_(curves.size()) {
    for (std::size_t i = 0; i < curves.size(); ++i) {
      const Curve& curve = curves[i];
      const auto well = std::lower_bound(plan.wells.begin(), plan.wells.end(), curve.well);
      places_.push_back(static_cast<std::size_t>(well - plan.wells.begin()));
      for (const std::uint16_t cycle : curve.cycles) keys_.insert({curve.melting, cycle});
    }
  }

  const std::set<FrameKey>& Keys() const { return keys_; }

  /// Makes the frame with this key. Must be called in the order of the keys.
  CollectedFrame Make(FrameKey key) {
    const std::size_t channels = ChannelCount(plan_);
    std::vector<ReadingRow> rows(plan_.wells.size() * channels);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      rows[i].number = 1;
      rows[i].melting = key.first;
      rows[i].cycle = key.second;
      rows[i].well = plan_.wells[i / channels];
      rows[i].channel = i % channels;
    }
    std::vector<bool> hasTemperature(plan_.wells.size());
    for (std::size_t i = 0; i < curves_.size(); ++i) {
      const Curve& curve = curves_[i];
      std::size_t& at = used_[i];
      if (curve.melting != key.first || at == curve.cycles.size() ||
          curve.cycles[at] != key.second) {
        continue;
      }
      fill(curve, at, &rows[places_[i] * channels], hasTemperature[places_[i]]);
      ++at;
    }
    CollectedFrame frame(key, rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) frame.Put(i, rows[i]);
    return frame;
  }

 private:
  // Copies one point of a curve into the rows of its well. `rows` has one row for each channel;
  // they share temperature and time.
  void fill(const Curve& curve, std::size_t at, ReadingRow* rows,
            std::vector<bool>::reference hasTemperature) {
    ReadingRow& row = rows[curve.channel];
    if (!std::isnan(curve.readings[at])) row.fluorescence = curve.readings[at] + 0.0;
    if (!curve.times.empty()) row.seconds = curve.times[at];
    const std::size_t channels = ChannelCount(plan_);
    for (std::size_t channel = 0; channel < channels && !curve.times.empty(); ++channel) {
      rows[channel].seconds = row.seconds;
    }
    if (curve.temperatures.empty() || std::isnan(curve.temperatures[at])) return;
    // The shortest text of the 32-bit number is the text in the file.
    const double temperature = decimalOf(curve.temperatures[at]);
    const std::string where = plan_.plate.NameOf(curve.well);
    if (!(temperature >= 0 && temperature <= kMostTemperature)) {
      losses_.Add("temperatures that are not from 0 to 655.35", where);
      return;
    }
    if (hasTemperature && rows[0].temperature != temperature) {
      losses_.Add("temperatures of a well's further targets", where);
      return;
    }
    hasTemperature = true;
    for (std::size_t channel = 0; channel < channels; ++channel) {
      rows[channel].temperature = temperature;
    }
  }

  const RunPlan& plan_;
  const std::vector<Curve>& curves_;
  Losses& losses_;
  std::set<FrameKey> keys_;
  std::vector<std::size_t> places_;  ///< index of each curve's well in the plan
  std::vector<std::size_t> used_;    ///< number of points of each curve that are in frames already
};

// The scale of the exported run if it still keeps all readings exactly; otherwise a newly chosen
// scale.
ReadingScale scaleFor(const ExchangedRun& run) {
  std::vector<double> readings;
  for (const Curve& curve : run.curves) {
    for (const double reading : curve.readings) {
      if (!std::isnan(reading)) readings.push_back(reading + 0.0);
    }
  }
  if (run.plan.scale) {
    const ReadingScale& given = *run.plan.scale;
    const bool isExact = std::all_of(readings.begin(), readings.end(), [&](double reading) {
      const auto stored = given.Store(reading);
      return stored && given.Measured(*stored) == reading;
    });
    if (isExact) return given;
  }
  return ChooseScale(std::move(readings), std::nullopt);
}

// The wells with readings. If there are none, those in the setup, and if there are none either, all
// wells of the plate.
std::vector<std::uint16_t> wellsOf(const ExchangedRun& run) {
  std::set<std::uint16_t> wells;
  for (const Curve& curve : run.curves) wells.insert(curve.well);
  if (wells.empty()) {
    for (const Well& well : run.plan.plate.wells) wells.insert(well.number);
  }
  if (wells.empty()) {
    const std::uint32_t count = run.plan.plate.rows * run.plan.plate.columns;
    for (std::uint32_t well = 1; well <= count; ++well) {
      wells.insert(static_cast<std::uint16_t>(well));
    }
  }
  return {wells.begin(), wells.end()};
}

void listRounding(const Rounding& rounding, const ReadingScale& scale, Losses& losses) {
  const auto list = [&](const RoundedNumbers& rounded, const char* what, const std::string& step) {
    losses.AddChanged(what,
                      "by up to " + PlainText(rounded.largestChange) + ", in steps of " + step,
                      rounded.count);
  };
  list(rounding.readings, "readings, rounded to 16 bits", PlainText(scale.Step()));
  list(rounding.temperatures, "temperatures, rounded", "0.01");
  list(rounding.times, "times, rounded", "0.001");
}

// A log states the source of the readings first, and then their meaning. Keeps the source of the
// exported log if the meaning is still the same.
void keepOrigin(const std::string& log, RunPlan& plan, Losses& losses) {
  const std::string imported = std::exchange(plan.origin, {});
  const std::string meaning = LogText(plan);
  if (log.ends_with(meaning)) {
    plan.origin = log.substr(0, log.size() - meaning.size());
  } else {
    plan.origin = imported;
    losses.Add("logs of runs", ToUtf8(log));
  }
}

}  // namespace

void StoreRun(ExchangedRun run, const std::string& file, Losses& losses, DocumentFile& document) {
  run.plan.wells = wellsOf(run);
  run.plan.scale = scaleFor(run);
  RunPlan plan = InternalPlan(run.plan);
  plan.isLive = false;
  plan.statesReadings = !run.curves.empty();
  if (run.curves.empty()) plan.origin.clear();
  plan.hasSettings = run.hasSettings;
  plan.hasSetup = run.hasSetup;
  for (Curve& curve : run.curves) {
    if (!curve.cycles.empty()) sortCycles(curve, plan.plate.NameOf(curve.well), losses);
  }
  numberMeltings(run.curves, file);
  FrameMaker maker(plan, run.curves, losses);
  FrameEncoder encoder(plan, file, false);
  for (const FrameKey& key : maker.Keys()) plan.frames.push_back(encoder.Encode(maker.Make(key)));
  SortFrames(plan);
  listRounding(encoder.Rounded(), plan.scale, losses);
  run.curves.clear();
  run.curves.shrink_to_fit();
  if (run.log) keepOrigin(*run.log, plan, losses);
  StoreWholeRun(document, plan);
}

}  // namespace vex2::lab
