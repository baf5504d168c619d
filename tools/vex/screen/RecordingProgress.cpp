#include "tools/vex/screen/RecordingProgress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "lab/text/Columns.h"
#include "tools/vex/Errors.h"
#include "tools/vex/Terminal.h"

namespace vex2::tool {

namespace {

constexpr auto kBetweenDrawings = std::chrono::milliseconds(50);  // between two drawings
constexpr std::size_t kLongestBar = 40;
constexpr std::size_t kShortestBar = 5;

std::string duration(double seconds) {
  const auto whole = static_cast<long>(std::ceil(seconds));
  char text[32];
  if (whole < 60) {
    std::snprintf(text, sizeof text, "%ld s", whole);
  } else if (whole < 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld min", whole / 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld h", whole / 3600, whole / 60 % 60);
  }
  return text;
}

std::string milliseconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f ms", seconds * 1000);
  return text;
}

}  // namespace

RecordingProgress::RecordingProgress(std::string name)
    : name_(Printable(name)),
      line_(std::chrono::milliseconds::zero(), ProgressLine::AtEnd::kKeep) {}

void RecordingProgress::Show(const RecordState& state) {
  if (!line_.IsShown()) return;
  const auto now = Clock::now();
  if (!hasBegun_) {
    begun_ = now;
    framesAtStart_ = state.framesDone;
  } else if (now - lastDrawn_ < kBetweenDrawings && state.framesDone != state.framesTotal) {
    return;
  }
  hasBegun_ = true;
  lastDrawn_ = now;
  line_.Show(text(state));
}

std::string RecordingProgress::text(const RecordState& state) const {
  const std::size_t total = state.framesTotal.value_or(state.framesDone);
  std::string text = std::to_string(state.framesDone);
  if (state.framesTotal) text += "/" + std::to_string(total);
  text += " frames";
  const std::size_t done = state.framesDone - framesAtStart_;
  if (done > 0) {
    const std::chrono::duration<double> taken = lastDrawn_ - begun_;
    const auto left = static_cast<double>(total - state.framesDone);
    if (left > 0)
      text += ", " + duration(taken.count() / static_cast<double>(done) * left) + " left";
    if (state.lastCommit) text += ", last commit " + milliseconds(*state.lastCommit);
  }
  const std::size_t used = Columns(name_) + text.size() + 5;
  const std::size_t room = Terminal::Error().Width() - std::min(Terminal::Error().Width(), used);
  if (room < kShortestBar || !state.framesTotal) return text;
  const std::size_t width = std::min(room, kLongestBar);
  const std::size_t filled = width * state.framesDone / std::max<std::size_t>(total, 1);
  std::string bar(width, '.');
  bar.replace(0, filled, filled, '#');
  return name_ + " [" + bar + "] " + text;
}

}  // namespace vex2::tool
