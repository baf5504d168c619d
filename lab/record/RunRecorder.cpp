#include "lab/record/RunRecorder.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "lab/Error.h"
#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/model/RunLog.h"
#include "lab/model/ValuesToDocument.h"
#include "lab/record/PlanValues.h"
#include "lab/record/ReadingRows.h"
#include "lab/record/RecordingDocument.h"

namespace vex2::lab {

class RunRecorder::Impl {
 public:
  Impl(const std::filesystem::path& path, const RecordingPlan& plan, RecorderOptions options)
      : plan_(InternalPlan(plan)),
        isMeasured_(plan.scale.has_value()),
        document_({.path = path.string(), .resume = options.resume, .replace = options.replace}) {
    if (options.resume && options.replace) {
      throw Error(ErrorCode::kConflictingOptions, document_.Path(),
                  "cannot be recorded: resume and replace exclude each other");
    }
    document_.Claim(plan_);
    isFinished_ = !document_.Begin(plan_);
    recorded_ = document_.FrameCount();
    if (isMeasured_) takeRecordedFrames();
  }

  const std::string& Path() const { return document_.Path(); }
  std::size_t RecordedFrames() const { return recorded_; }
  std::size_t FrameCount() const { return document_.FrameCount(); }
  bool IsFinished() const { return isFinished_; }
  std::span<const std::uint16_t> Wells() const { return plan_.wells; }

  void Append(const MeasuredFrame& frame) {
    requireRoom(true);
    requireNewCycle(frame);
    plan_.frames.push_back(EncodedFrame(plan_, frame, frameName()));
    try {
      document_.Commit(plan_, FrameRecords(plan_, plan_.frames.size() - 1));
    } catch (...) {
      plan_.frames.pop_back();
      throw;
    }
    lastCycleOf(frame.stage == Stage::kMelting) = frame.cycle;
  }

  void Append(std::span<const RawRecord> frame) {
    requireRoom(false);
    document_.Commit(plan_, OrderedRecords(plan_, frame, frameName()));
  }

  void Finish() {
    if (isFinished_) return;
    document_.RequireSynced();
    if (plan_.liveFrames && FrameCount() < *plan_.liveFrames) {
      refuse(fmt::format("cannot finish: {} of {} are recorded", FrameCount(),
                         Counted(*plan_.liveFrames, "frame")));
    }
    const auto planned = std::exchange(plan_.liveFrames, FrameCount());
    try {
      document_.Finish(plan_);
    } catch (...) {
      plan_.liveFrames = planned;
      throw;
    }
    isFinished_ = true;
  }

 private:
  // Adds the frames in the document to the plan, since end time and program are made from all
  // frames.
  void takeRecordedFrames() {
    for (std::size_t i = 0; i < recorded_; ++i) {
      plan_.frames.push_back(document_.RecordedFrame(i, plan_.wells));
      const RunReading& reading = plan_.frames.back().front();
      std::uint16_t& last = lastCycleOf(reading.melting);
      last = std::max(last, reading.cycle);
    }
  }

  std::uint16_t& lastCycleOf(bool isMelting) { return lastCycles_.at(isMelting ? 1 : 0); }

  // A program that was interrupted and starts again at the first cycle must not append frames that
  // the document already has.
  void requireNewCycle(const MeasuredFrame& frame) {
    const bool isMelting = frame.stage == Stage::kMelting;
    const unsigned last = lastCycleOf(isMelting);
    if (frame.cycle > last) return;
    const std::string name = FrameName(isMelting, frame.cycle);
    if (frame.cycle == 0) {
      refuse(fmt::format("cannot append {} as {}: cycles count from 1", frameName(), name));
    }
    refuse(
        fmt::format("cannot append {} as {}: cycle {} of that stage is recorded already; continue "
                    "with cycle {}",
                    frameName(), name, last, last + 1));
  }

  std::string frameName() const { return fmt::format("frame {}", FrameCount()); }

  void requireRoom(bool isMeasured) const {
    if (isFinished_) {
      refuse(fmt::format("cannot append {}: the run is complete (status DONE)", frameName()));
    }
    if (plan_.liveFrames && FrameCount() >= *plan_.liveFrames) {
      refuse(fmt::format("cannot append {}: the plan has {}", frameName(),
                         Counted(*plan_.liveFrames, "frame")));
    }
    if (isMeasured == isMeasured_) return;
    refuse(isMeasured_
               ? fmt::format("cannot append {}: the plan has a scale, so frames are given in real "
                             "units",
                             frameName())
               : fmt::format("cannot append {}: the plan has no scale, so frames are given as raw "
                             "records",
                             frameName()));
  }

  [[noreturn]] void refuse(const std::string& why) const {
    throw Error(ErrorCode::kUsage, Path(), why);
  }

  RunPlan plan_;
  // Last cycles of amplification and melting; 0 if none is recorded.
  std::array<std::uint16_t, 2> lastCycles_{};
  bool isMeasured_;
  RecordingDocument document_;
  std::size_t recorded_ = 0;
  bool isFinished_ = false;
};

RunRecorder::RunRecorder(const std::filesystem::path& path, const RecordingPlan& plan,
                         RecorderOptions options) {
  Guarded(path.string(), [&] { impl_ = std::make_unique<Impl>(path, plan, options); });
}

RunRecorder::~RunRecorder() = default;
RunRecorder::RunRecorder(RunRecorder&&) noexcept = default;
RunRecorder& RunRecorder::operator=(RunRecorder&&) noexcept = default;

std::size_t RunRecorder::RecordedFrames() const {
  return impl_->RecordedFrames();
}

std::size_t RunRecorder::FrameCount() const {
  return impl_->FrameCount();
}

bool RunRecorder::IsFinished() const {
  return impl_->IsFinished();
}

std::span<const std::uint16_t> RunRecorder::Wells() const {
  return impl_->Wells();
}

void RunRecorder::Append(const MeasuredFrame& frame) {
  Guarded(impl_->Path(), [&] { impl_->Append(frame); });
}

void RunRecorder::Append(std::span<const RawRecord> frame) {
  Guarded(impl_->Path(), [&] { impl_->Append(frame); });
}

void RunRecorder::Finish() {
  Guarded(impl_->Path(), [&] { impl_->Finish(); });
}

}  // namespace vex2::lab
