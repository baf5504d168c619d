#include "lab/record/RunPlan.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/model/RunLog.h"

namespace vex2::lab {

namespace {

bool isMelting(const std::vector<RunReading>& frame) {
  return frame.front().melting;
}

std::string degrees(const std::vector<RunReading>& frame) {
  return ShortestQuotient(frame.front().temperature, 100) + " C";
}

}  // namespace

std::optional<std::size_t> FrameTotal(const RunPlan& plan) {
  return plan.isLive ? plan.liveFrames : plan.frames.size();
}

std::size_t ChannelCount(const RunPlan& plan) {
  return std::max<std::size_t>(plan.channels.size(), 1);
}

std::uint32_t LastTime(const RunPlan& plan) {
  std::uint32_t last = 0;
  for (const auto& frame : plan.frames) {
    for (const RunReading& reading : frame) last = std::max(last, reading.time);
  }
  return last;
}

std::size_t FirstMelting(const RunPlan& plan) {
  const auto first = std::find_if(plan.frames.begin(), plan.frames.end(), isMelting);
  return static_cast<std::size_t>(first - plan.frames.begin());
}

std::vector<Vex2WellRecord> FrameRecords(const RunPlan& plan, std::size_t index) {
  const auto& frame = plan.frames[index];
  const bool beginsMelting = index == FirstMelting(plan);
  std::vector<Vex2WellRecord> records;
  records.reserve(frame.size());
  for (const RunReading& reading : frame) {
    records.push_back(EncodeReading(reading, beginsMelting));
  }
  return records;
}

std::string LogText(const RunPlan& plan) {
  if (!plan.statesReadings) return plan.origin;
  return plan.origin + RunLog{.frames = FrameTotal(plan),
                              .scale = plan.scale,
                              .channels = plan.channels,
                              .started = plan.started}
                           .Text();
}

std::string ProgramText(const RunPlan& plan) {
  const std::vector<RunReading>* amplification = nullptr;
  const std::vector<RunReading>* firstMelting = nullptr;
  const std::vector<RunReading>* lastMelting = nullptr;
  for (const auto& frame : plan.frames) {
    if (!isMelting(frame)) {
      amplification = &frame;
    } else {
      if (firstMelting == nullptr) firstMelting = &frame;
      lastMelting = &frame;
    }
  }
  const auto melting = std::count_if(plan.frames.begin(), plan.frames.end(), isMelting);
  std::string text;
  if (amplification != nullptr) {
    const auto cycles = static_cast<std::ptrdiff_t>(plan.frames.size()) - melting;
    text += fmt::format("amplification: {} cycles, read at {}\n", cycles, degrees(*amplification));
  }
  if (firstMelting != nullptr) {
    text += fmt::format("melt: {} readings from {} to {}\n", melting, degrees(*firstMelting),
                        degrees(*lastMelting));
  }
  return text;
}

}  // namespace vex2::lab
