#include "lab/analysis/StageReadings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "lab/model/PlateLayout.h"
#include "lab/model/WellTemperature.h"

namespace vex2::lab {

namespace {

[[noreturn]] void refuse(const std::string& path, Stage stage, const std::string& why) {
  const std::string what = stage == Stage::kMelting ? "melting curves" : "quantification cycles";
  throw Error(ErrorCode::kDocument, path, "cannot determine " + what + ": " + why);
}

// The cycle or the temperature of a frame; NaN if it is not known.
double axisValue(const FramePosition& position) {
  if (position.stage == Stage::kMelting) {
    return position.temperature.value_or(std::numeric_limits<double>::quiet_NaN());
  }
  return position.cycle.value_or(0);
}

bool isOf(const FramePosition& position, Stage stage) {
  return position.stage == stage && std::isfinite(axisValue(position));
}

// If a program repeats its amplification stage, the cycles begin again. In that case, this replaces
// them by the numbers 1, 2, 3 and so on.
void countCycles(std::vector<double>& cycles) {
  if (std::is_sorted(cycles.begin(), cycles.end(), std::less_equal<>())) return;
  std::iota(cycles.begin(), cycles.end(), 1.0);
}

std::vector<std::string> channelsOf(const ReadingMeaning& meaning) {
  return meaning.channels.empty() ? std::vector<std::string>{""} : meaning.channels;
}

std::optional<std::size_t> channelFor(const std::string& reporter,
                                      const std::vector<std::string>& channels) {
  const auto found = std::find(channels.begin(), channels.end(), reporter);
  if (found != channels.end()) return static_cast<std::size_t>(found - channels.begin());
  if (channels.size() == 1) return 0;
  return std::nullopt;
}

AnalysedSource sourceOf(const Well& well, const Target& target) {
  AnalysedSource source;
  source.well = {.plate = {},
                 .number = well.number,
                 .name = well.name,
                 .sample = well.sample,
                 .detector = target.detector,
                 .task = target.task,
                 .quantity = std::nullopt};
  if (target.quantity && std::isfinite(*target.quantity)) source.well.quantity = *target.quantity;
  source.reporter = target.reporter;
  return source;
}

// One source for each channel of each well with readings.
std::vector<AnalysedSource> sourcesWithoutSetup(const RunReader& run, const Readings& readings,
                                                const std::vector<std::string>& channels) {
  std::vector<AnalysedSource> sources;
  for (std::size_t index = 0; index < readings.WellCount(); ++index) {
    const std::uint16_t number = readings.Wells()[index];
    const Well* known = run.Plate().Find(number);
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
      AnalysedSource& source = sources.emplace_back();
      source.well.number = number;
      source.well.name = WellName(number, run.Plate().columns);
      if (known != nullptr) source.well.sample = known->sample;
      source.well.detector = channels[channel];
      source.index = index;
      source.channel = channel;
    }
  }
  return sources;
}

// The well index for each well number.
std::vector<std::optional<std::size_t>> indexesOf(const Readings& readings) {
  std::vector<std::optional<std::size_t>> indexes(std::numeric_limits<std::uint16_t>::max() + 1U);
  for (std::size_t i = readings.WellCount(); i-- > 0;) indexes[readings.Wells()[i]] = i;
  return indexes;
}

}  // namespace

std::optional<std::string> WhyNotAnalysed(const Readings& readings, Stage stage) {
  if (readings.FrameCount() == 0) return "it has no frames of readings";
  if (!readings.Meaning()) {
    return "vex did not record its readings, so their meaning is not known";
  }
  if (std::any_of(readings.Axis().begin(), readings.Axis().end(),
                  [&](const FramePosition& position) { return isOf(position, stage); })) {
    return std::nullopt;
  }
  return stage == Stage::kMelting ? "the run has no melting stage" : "it has no amplification";
}

void RequireSomePlate(const RunReader& run, Stage stage, const std::vector<SkippedPlate>& skipped) {
  const std::size_t plates = run.PlateNames().size();
  if (skipped.size() < plates) return;
  refuse(run.Path().string(), stage,
         plates == 0 ? "the study has no plates"
                     : "no plate of the study has such readings; " + skipped.front().name + ": " +
                           skipped.front().why);
}

StageReadings StageReadingsOf(const std::string& path, const Readings& readings, Stage stage) {
  if (const auto why = WhyNotAnalysed(readings, stage)) refuse(path, stage, *why);
  StageReadings result;
  for (std::size_t frame = 0; frame < readings.FrameCount(); ++frame) {
    const FramePosition& position = readings.Axis()[frame];
    if (!isOf(position, stage)) continue;
    result.frames.push_back(frame);
    result.axis.push_back(axisValue(position));
  }
  if (stage == Stage::kAmplification) countCycles(result.axis);
  result.channels = channelsOf(*readings.Meaning());
  for (std::size_t i = 0; i < result.channels.size(); ++i) {
    result.fluorescence.push_back(readings.FluorescenceOf(i));
  }
  return result;
}

std::vector<AnalysedSource> SourcesOf(const RunReader& run, const Readings& readings,
                                      const std::vector<std::string>& channels) {
  const auto indexes = indexesOf(readings);
  std::vector<AnalysedSource> sources;
  for (const Well& well : run.Plate().wells) {
    for (const Target& target : well.targets) {
      AnalysedSource& source = sources.emplace_back(sourceOf(well, target));
      source.index = indexes[well.number];
      source.channel = channelFor(target.reporter, channels);
    }
  }
  return sources.empty() ? sourcesWithoutSetup(run, readings, channels) : sources;
}

std::vector<double> ReadingsOf(const AnalysedSource& source, const StageReadings& stage,
                               std::size_t wellCount) {
  std::vector<double> values;
  if (!source.index || !source.channel) return values;
  const std::vector<double>& all = stage.fluorescence[*source.channel];
  values.reserve(stage.frames.size());
  for (const std::size_t frame : stage.frames)
    values.push_back(all[frame * wellCount + *source.index]);
  return values;
}

std::vector<double> TemperaturesOf(const AnalysedSource& source, const StageReadings& stage,
                                   const Readings& readings) {
  std::vector<double> temperatures;
  if (!source.index || !source.channel) return temperatures;
  temperatures.reserve(stage.frames.size());
  for (const std::size_t frame : stage.frames) {
    temperatures.push_back(WellTemperature(readings, frame, *source.index)
                               .value_or(std::numeric_limits<double>::quiet_NaN()));
  }
  return temperatures;
}

}  // namespace vex2::lab
