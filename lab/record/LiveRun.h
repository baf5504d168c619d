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

/// How a live run is brought to its document.
struct LiveOptions {
  std::optional<std::size_t> frames;  ///< of the whole run; nothing: it ends when its input does
  /// Called when something is rounded for the first time.
  std::function<void(const Rounding&, const ReadingScale&)> onRounded;
};

/// Records readings as they arrive, each frame as soon as its last reading has. The frames must
/// become complete in the order in which they began, and in that of their times; the rows of one
/// may come in any order. A run that is resumed may send the frames that the document holds again,
/// which are compared, or leave them out.
class LiveRun {
 public:
  LiveRun(const MeasuredRunFiles& files, LiveOptions live, RecordOptions options,
          std::function<void(const RecordState&)> report);

  /// Records until the input, the run or `wait` ends it. If it throws, the document holds every
  /// frame that was reported, and the run can be resumed. It also throws if the input ends within a
  /// frame or before the given number of frames.
  Recorder::Outcome Record();

  /// As far as it is known by now.
  const RunPlan& Plan() const { return plan_; }
  const Rounding& Rounded() const { return encoder_->Rounded(); }
  /// What was rounded of the quantities in the wells.
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
  std::string input_;  ///< what messages call it
  WaitOrEnd wait_;
  RoundedNumbers quantities_;
  RunPlan plan_;
  Recorder recorder_;
  FrameCollector collector_;
  std::optional<FrameEncoder> encoder_;       ///< once the scale is known
  std::deque<FrameKey> pending_;              ///< frames that have begun, in this order
  std::map<FrameKey, std::size_t> recorded_;  ///< by their indexes in the document
  std::set<FrameKey> received_;               ///< recorded frames whose rows have come
  bool isDone_ = false;
};

}  // namespace vex2::lab
