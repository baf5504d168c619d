#include "lab/record/Recorder.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace vex2::lab {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

}  // namespace

bool JustWait(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(std::max(seconds, 0.0)));
  return false;
}

Recorder::Recorder(const RunPlan& plan, RecordOptions options,
                   std::function<void(const RecordState&)> report)
    : plan_(plan),
      options_(std::move(options)),
      report_(std::move(report)),
      document_({.path = options_.path, .resume = options_.resume, .replace = options_.force}) {
  state_.framesTotal = FrameTotal(plan);
}

Recorder::Outcome Recorder::Run() {
  if (!Begin()) return Outcome::kWasDone;
  const std::size_t total = plan_.frames.size();
  while (state_.framesDone < total) {
    if (options_.wait(0)) return Outcome::kInterrupted;
    Append();
    if (state_.framesDone < total && options_.pace > 0) {
      if (options_.wait(options_.pace - state_.lastCommit.value_or(0)))
        return Outcome::kInterrupted;
    }
  }
  Finish();
  return Outcome::kDone;
}

bool Recorder::Begin() {
  if (!document_.IsClaimed()) Claim();
  const bool isOpen = document_.Begin(plan_);
  state_.framesDone = document_.FrameCount();
  if (isOpen) report_(state_);
  return isOpen;
}

void Recorder::Append() {
  const auto begun = Clock::now();
  document_.Commit(plan_, FrameRecords(plan_, state_.framesDone));
  state_.lastCommit = secondsSince(begun);
  state_.framesDone = document_.FrameCount();
  report_(state_);
}

}  // namespace vex2::lab
