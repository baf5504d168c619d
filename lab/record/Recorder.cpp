#include "lab/record/Recorder.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "lab/Error.h"
#include "lab/model/RawFile.h"
#include "lab/record/PlanDocument.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

}  // namespace

Recorder::Recorder(const RunPlan& plan, RecordOptions options,
                   std::function<void(const RecordState&)> report)
    : plan_(plan),
      options_(std::move(options)),
      report_(std::move(report)),
      document_(ResolveDocument(options_.path)) {
  state_.framesTotal = FrameTotal(plan);
}

Recorder::Outcome Recorder::Run() {
  Interrupts interrupts;
  if (!Begin()) return Outcome::kWasDone;
  const std::size_t total = plan_.frames.size();
  while (state_.framesDone < total) {
    if (interrupts.Pending()) return Outcome::kInterrupted;
    Append();
    if (state_.framesDone < total && options_.pace > 0) {
      interrupts.Wait(options_.pace - state_.lastCommit);
    }
  }
  Finish();
  return Outcome::kDone;
}

bool Recorder::Begin() {
  if (lock_ == nullptr) Claim();
  if (!goOn()) return false;
  report_(state_);
  return true;
}

void Recorder::Append() {
  const auto begun = Clock::now();
  commit(state_.framesDone);
  state_.lastCommit = secondsSince(begun);
  ++state_.framesDone;
  report_(state_);
}

void Recorder::Claim() {
  lock_ = std::make_unique<DocumentLock>(options_.path, DocumentLock::Holder::kRecorder);
  struct stat info {};
  const bool exists = ::stat(document_.c_str(), &info) == 0;
  // Under another name the file could be recorded to by someone who sees another lock.
  if (exists && info.st_nlink > 1) {
    throw Error(
        ErrorCode::kUsage, options_.path,
        "has other names as well (hard links), under which others could change it; record to "
        "a name of its own");
  }
  if (exists && !options_.resume && !options_.force) {
    throw Error(ErrorCode::kExists, options_.path,
                "already exists; use --resume to continue it or --force to overwrite it");
  }
  if (!exists || options_.force) return;
  interrupted_.emplace(document_.string());
  interrupted_->Check(plan_);
}

// Brings document and manager to where the next frame is to be committed. False when there is
// nothing left to do; the manager holds the frames then, to compare others with.
bool Recorder::goOn() {
  if (!interrupted_) {
    begin();
    return true;
  }
  if (!interrupted_->IsDone()) interrupted_->Repair();
  check(manager_.ReadFromFile(document_.c_str()));
  state_.framesDone = interrupted_->FrameCount();
  if (interrupted_->IsDone()) return false;
  check(manager_.SetAcquisitionStatus(document_.c_str(), RunStatus::kInProgress.data()));
  if (!interrupted_->HasBlock()) openBlock();
  return true;
}

std::vector<RunReading> Recorder::RecordedFrame(std::size_t index) const {
  std::vector<RunReading> readings;
  for (const unsigned short well : plan_.wells) {
    Vex2WellRecord record;
    static_cast<void>(
        manager_.GetAcqDataWellRecord(&record, static_cast<int>(index), well, DataRAWa));
    readings.push_back(DecodeReading(record));
  }
  return readings;
}

// The document is complete but for its data block, which is to be its last record.
void Recorder::begin() {
  StorePlan(manager_, plan_);
  check(manager_.SaveToFile(document_.c_str()));
  check(manager_.SetAcquisitionStatus(document_.c_str(), RunStatus::kInProgress.data()));
  openBlock();
}

void Recorder::openBlock() {
  manager_.InitAcqDataWellNumberArray(plan_.wells.data(),
                                      static_cast<unsigned short>(plan_.wells.size()), DataRAWa);
  if (!plan_.started) return;
  TimeStamp start = plan_.started->Stamp();
  manager_.SetAcqDataStartTime(start, DataRAWa);
}

void Recorder::commit(std::size_t frame) {
  const auto index = static_cast<int>(frame);
  const std::vector<Vex2WellRecord> records = FrameRecords(plan_, frame);
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (!manager_.SetAcqDataWellRecord(&records[i], index, plan_.wells[i], DataRAWa)) {
      throw Error(ErrorCode::kSystem, options_.path, "the data block cannot grow further");
    }
  }
  check(manager_.CommitAcqDataFrame(document_.c_str(), index, DataRAWa));
}

void Recorder::Finish() {
  if (plan_.isLive) {
    manager_.KeepingRawDataLast([&] { StoreWhatIsKnownLast(manager_, plan_); });
  }
  if (plan_.started) {
    TimeStamp end = plan_.started->StampAfter(LastTime(plan_));
    manager_.SetAcqDataEndTime(end, DataRAWa);
  }
  check(manager_.SetAcquisitionStatus(RunStatus::kDone.data()));
  check(manager_.SaveToFile(document_.c_str()));
}

void Recorder::check(int status) const {
  if (status != kSuccess) throw FileFailure(options_.path, manager_.GetLastFileError());
}

}  // namespace vex2::lab
