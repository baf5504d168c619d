#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "lab/record/FrameCollector.h"
#include "lab/record/FrameEncoder.h"
#include "lab/record/MeasuredRun.h"
#include "lab/record/Recorder.h"

namespace vex2::lab {

/// How a live run is recorded.
struct LiveOptions {
  /// The number of frames of the whole run. If it is not given, the run ends with its input.
  std::optional<std::size_t> frames;
  /// Called when a number is rounded for the first time.
  std::function<void(const Rounding&, const ReadingScale&)> onRounded;
};

/// Records readings as they arrive, each frame as soon as its last reading has arrived. Frames must
/// become complete in the order in which they began, which must also be the order of their times.
/// The rows of one frame may arrive in any order. After a resume, the input may repeat frames that
/// are in the document, or leave them out. Frames that it repeats are compared.
class LiveRun {
 public:
  LiveRun(const MeasuredRunFiles& files, LiveOptions live, RecordOptions options,
          std::function<void(const RecordState&)> report);

  /// Records until the run is complete, the input ends, or `wait` ends the work. If it throws, the
  /// document holds every frame that was reported, and the run can be resumed. It also throws if
  /// the input ends within a frame or before the given number of frames.
  Recorder::Outcome Record();

  /// The plan, as far as it is known yet.
  const RunPlan& Plan() const { return plan_; }
  const Rounding& Rounded() const { return encoder_->Rounded(); }
  /// How many quantities in the wells were rounded.
  const RoundedNumbers& RoundedQuantities() const { return quantities_; }
  bool HasBegun() const { return encoder_.has_value(); }

 private:
  void take(const ReadingRow& row);
  void requireInOrder(const CollectedFrame& frame) const;
  void requireRoom(const CollectedFrame& frame) const;
  void begin(const CollectedFrame& first);
  void goOn();
  void record(const CollectedFrame& frame);
  bool isRecorded(FrameKey key) const { return recorded_.count(key) != 0; }
  void compare(FrameKey key, const std::vector<RunReading>& frame) const;
  bool isLast(FrameKey key) const { return recorded_.at(key) + 1 == plan_.frames.size(); }
  bool isFull() const { return live_.frames && plan_.frames.size() >= *live_.frames; }
  void finish();
  bool isWhole() const;
  Recorder::Outcome outcome() const;
  [[noreturn]] void refuseEnd() const;

  MeasuredRunFiles files_;
  LiveOptions live_;
  std::string document_;
  std::string input_;  ///< the name of the input in messages
  WaitOrEnd wait_;
  RoundedNumbers quantities_;
  RunPlan plan_;
  Recorder recorder_;
  FrameCollector collector_;
  std::optional<FrameEncoder> encoder_;  ///< nothing until the scale is known
  std::deque<FrameKey> pending_;  ///< frames that have begun, in the order of their first rows
  std::map<FrameKey, std::size_t> recorded_;  ///< the index of each recorded frame in the document
  std::set<FrameKey> received_;               ///< recorded frames that were also in the input
  bool isDone_ = false;
};

}  // namespace vex2::lab
