#include "lab/record/LiveRun.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/csv/CsvReader.h"
#include "lab/record/ScaleChoice.h"

namespace vex2::lab {

namespace {

std::uint32_t earliest(const std::vector<RunReading>& frame) {
  std::uint32_t time = frame.front().time;
  for (const RunReading& reading : frame) time = std::min(time, reading.time);
  return time;
}

RunPlan planOf(const MeasuredRunFiles& files, const LiveOptions& live, RoundedNumbers& quantities) {
  RunPlan plan = PlanMeasuredRun(files, quantities);
  plan.isLive = true;
  plan.liveFrames = live.frames;
  plan.comment = "Recorded live from measured readings";
  if (const auto scale = GivenScale(files)) plan.scale = *scale;
  return plan;
}

}  // namespace

LiveRun::LiveRun(const MeasuredRunFiles& files, LiveOptions live, RecordOptions options,
                 std::function<void(const RecordState&)> report)
    : files_(files),
      live_(std::move(live)),
      document_(options.path),
      input_(CsvName(files.readings)),
      wait_(options.wait),
      plan_(planOf(files, live_, quantities_)),
      recorder_(plan_, std::move(options), std::move(report)),
      collector_(plan_, input_) {}

Recorder::Outcome LiveRun::Record() {
  recorder_.Claim();
  const bool wasRead = ReadReadingRows({.path = files_.readings,
                                        .format = files_.readingsFormat,
                                        .findsChannels = false,
                                        .keepsWaiting = [&] { return !isDone_ && !wait_(0); }},
                                       plan_, [&](const ReadingRow& row) { take(row); });
  if (isDone_) return outcome();
  if (!wasRead) return Recorder::Outcome::kInterrupted;
  if (!encoder_ && !recorder_.IsNew()) goOn();
  if (!pending_.empty() || !isWhole()) refuseEnd();
  if (plan_.frames.empty()) throw Error(ErrorCode::kDocument, input_, "holds no readings");
  finish();
  return outcome();
}

// Whether the input may end here. If the run was already complete, the input may repeat all of its
// frames or none. If it repeats only the first ones, it belongs to another run.
bool LiveRun::isWhole() const {
  if (!recorder_.WasDone()) return !live_.frames || isFull();
  return received_.empty() ||
         std::any_of(received_.begin(), received_.end(), [&](FrameKey key) { return isLast(key); });
}

Recorder::Outcome LiveRun::outcome() const {
  return recorder_.WasDone() ? Recorder::Outcome::kWasDone : Recorder::Outcome::kDone;
}

void LiveRun::take(const ReadingRow& row) {
  const FrameKey key{row.melting, row.cycle};
  const std::string name = FrameName(row.melting, row.cycle);
  if (received_.count(key) != 0) {
    throw Error(ErrorCode::kDocument, input_,
                fmt::format("row {}: {} is complete already", row.number, name));
  }
  if (isDone_ || (isFull() && !isRecorded(key))) {
    throw Error(ErrorCode::kDocument, input_,
                fmt::format("row {}: {} follows the last of {}", row.number, name,
                            Counted(plan_.frames.size(), "frame")));
  }
  CollectedFrame& frame = collector_.Add(row);
  if (std::find(pending_.begin(), pending_.end(), key) == pending_.end()) pending_.push_back(key);
  if (!frame.IsComplete()) return;
  requireInOrder(frame);
  if (!encoder_) begin(frame);
  record(frame);
  pending_.pop_front();
  received_.insert(key);
  collector_.Remove(key);
  if (isFull() && isLast(key) && pending_.empty()) finish();
}

// Throws an error unless the frame is the next one: frames must become complete in the order in
// which they began. Otherwise a complete frame would have to wait in memory for one that may never
// become complete.
void LiveRun::requireInOrder(const CollectedFrame& frame) const {
  if (pending_.front() == frame.Key()) return;
  const CollectedFrame& first = collector_.Frames().at(pending_.front());
  throw Error(
      ErrorCode::kDocument, input_,
      fmt::format("{} is complete before {}, of which {}; a row with NA stands for a "
                  "reading that is missing",
                  FrameName(frame.Key().first, frame.Key().second),
                  FrameName(first.Key().first, first.Key().second), collector_.MissingText(first)));
}

// Chooses the scale, which must be known before the document is made.
void LiveRun::begin(const CollectedFrame& first) {
  if (!files_.scale) {
    std::vector<double> readings;
    for (const ReadingRow& row : first.Cells()) {
      if (row.fluorescence) readings.push_back(*row.fluorescence);
    }
    plan_.scale = ChooseScaleAhead(readings, files_.offset);
  }
  encoder_.emplace(plan_, input_, files_.isExact);
  // Check the frame first: no document is made for a frame that cannot be recorded.
  if (recorder_.IsNew())
    static_cast<void>(FrameEncoder(plan_, input_, files_.isExact).Encode(first));
  goOn();
}

// Makes or resumes the document, and reads the frames that it already has. If the run is complete,
// the frames are only for comparison.
void LiveRun::goOn() {
  static_cast<void>(recorder_.Begin());
  for (std::size_t i = 0; i < recorder_.FramesDone(); ++i) {
    plan_.frames.push_back(recorder_.RecordedFrame(i));
    const RunReading& reading = plan_.frames.back().front();
    recorded_.emplace(FrameKey(reading.melting, reading.cycle), i);
  }
}

void LiveRun::record(const CollectedFrame& frame) {
  requireRoom(frame);
  const bool wasExact = encoder_->Rounded().IsExact();
  std::vector<RunReading> readings = encoder_->Encode(frame);
  if (wasExact && !encoder_->Rounded().IsExact() && live_.onRounded) {
    live_.onRounded(encoder_->Rounded(), plan_.scale);
  }
  if (isRecorded(frame.Key())) return compare(frame.Key(), readings);
  if (recorder_.WasDone()) {
    throw Error(ErrorCode::kDocument, document_,
                fmt::format("is complete with {}, but {} is not one of them",
                            Counted(plan_.frames.size(), "frame"),
                            FrameName(frame.Key().first, frame.Key().second)));
  }
  if (!plan_.frames.empty() && earliest(readings) < earliest(plan_.frames.back())) {
    throw Error(
        ErrorCode::kDocument, input_,
        fmt::format(
            "{} is earlier than the frame before it; frames come in the order of their times",
            FrameName(frame.Key().first, frame.Key().second)));
  }
  plan_.frames.push_back(std::move(readings));
  recorded_.emplace(frame.Key(), plan_.frames.size() - 1);
  recorder_.Append();
}

// Throws an error if a reading of the frame does not fit with the scale and offset of the document,
// which cannot change any more.
void LiveRun::requireRoom(const CollectedFrame& frame) const {
  if (plan_.frames.empty() || isRecorded(frame.Key())) return;
  for (const ReadingRow& row : frame.Cells()) {
    const auto why = encoder_->WhyUnfit(row);
    if (!why) continue;
    const bool isBelow = *row.fluorescence < plan_.scale.Offset().Value();
    throw Error(ErrorCode::kDocument, input_,
                fmt::format("{}; {} safe in the document, but the run cannot be resumed past "
                            "this reading",
                            *why, Counted(plan_.frames.size(), "frame is", "frames are")),
                std::nullopt,
                isBelow ? ErrorRemedy::kNewRunWithOffset : ErrorRemedy::kNewRunWithScale);
  }
}

void LiveRun::compare(FrameKey key, const std::vector<RunReading>& frame) const {
  const std::size_t index = recorded_.at(key);
  const auto& recorded = plan_.frames[index];
  const auto differs = std::mismatch(recorded.begin(), recorded.end(), frame.begin()).first;
  if (differs == recorded.end()) return;
  const auto well = static_cast<std::size_t>(differs - recorded.begin());
  throw Error(ErrorCode::kDocument, document_,
              fmt::format("frame {} holds another reading of well {}", index,
                          plan_.plate.NameOf(plan_.wells[well])));
}

void LiveRun::finish() {
  plan_.liveFrames = plan_.frames.size();
  if (!recorder_.WasDone()) recorder_.Finish();
  isDone_ = true;
}

void LiveRun::refuseEnd() const {
  const bool wasDone = recorder_.WasDone();
  const std::size_t count = wasDone ? received_.size() : plan_.frames.size();
  const std::string frames = live_.frames
                                 ? fmt::format("{} of {}", count, Counted(*live_.frames, "frame"))
                                 : Counted(count, "frame");
  const std::string why =
      pending_.empty()
          ? fmt::format("ended after {}", frames)
          : fmt::format("ended after {} and a part of another, which is not recorded: {}", frames,
                        collector_.MissingText(collector_.Frames().at(pending_.front())));
  const bool canResume = !plan_.frames.empty() && !wasDone;
  throw Error(ErrorCode::kDocument, input_, why, std::nullopt,
              canResume ? ErrorRemedy::kResume : ErrorRemedy::kNone);
}

}  // namespace vex2::lab
