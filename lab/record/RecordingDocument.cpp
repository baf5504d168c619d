#include "lab/record/RecordingDocument.h"

#include <sys/stat.h>

#include <utility>

#include "lab/Error.h"
#include "lab/model/RawFile.h"
#include "lab/record/PlanDocument.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

RecordingDocument::RecordingDocument(Options options)
    : options_(std::move(options)), document_(ResolveDocument(options_.path)) {}

void RecordingDocument::Claim(const RunPlan& plan) {
  auto lock = std::make_unique<DocumentLock>(options_.path, DocumentLock::Holder::kRecorder);
  struct stat info {};
  const bool exists = ::stat(document_.c_str(), &info) == 0;
  // Under another name the file could be recorded to by someone who sees another lock.
  if (exists && info.st_nlink > 1) {
    throw Error(
        ErrorCode::kUsage, options_.path,
        "has other names as well (hard links), under which others could change it; record to "
        "a name of its own");
  }
  if (exists && !options_.resume && !options_.replace) {
    throw Error(ErrorCode::kExists, options_.path, "already exists", std::nullopt,
                ErrorRemedy::kResumeOrReplace);
  }
  if (exists && !options_.replace) {
    interrupted_.emplace(document_.string());
    interrupted_->Check(plan);
  }
  lock_ = std::move(lock);
}

bool RecordingDocument::Begin(const RunPlan& plan) {
  if (!interrupted_) {
    make(plan);
    return true;
  }
  if (!WasDone()) interrupted_->Repair();
  check(manager_.ReadFromFile(document_.c_str()));
  frameCount_ = interrupted_->FrameCount();
  // The frames of a complete run are read so that others can be compared with them.
  if (WasDone()) return false;
  check(manager_.SetAcquisitionStatus(document_.c_str(), RunStatus::kInProgress.data()));
  if (!interrupted_->HasBlock()) openBlock(plan);
  return true;
}

// The document is complete but for its data block, which is to be its last record: after a save of
// the whole document with a block, the header does not hold the offset that a commit needs.
void RecordingDocument::make(const RunPlan& plan) {
  StorePlan(manager_, plan);
  // In the same save: a status that is patched in place could be cut off between two of its
  // letters.
  check(manager_.SetAcquisitionStatus(RunStatus::kInProgress.data()));
  check(manager_.SaveToFile(document_.c_str()));
  openBlock(plan);
}

void RecordingDocument::openBlock(const RunPlan& plan) {
  manager_.InitAcqDataWellNumberArray(plan.wells.data(),
                                      static_cast<unsigned short>(plan.wells.size()), DataRAWa);
  if (!plan.started) return;
  TimeStamp start = plan.started->Stamp();
  manager_.SetAcqDataStartTime(start, DataRAWa);
}

void RecordingDocument::Commit(const RunPlan& plan, std::span<const Vex2WellRecord> records) {
  RequireSynced();
  const auto index = static_cast<int>(frameCount_);
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (!manager_.SetAcqDataWellRecord(&records[i], index, plan.wells[i], DataRAWa)) {
      throw Error(ErrorCode::kSystem, options_.path, "the data block cannot grow further");
    }
  }
  const int status = manager_.CommitAcqDataFrame(document_.c_str(), index, DataRAWa);
  const FileError& failure = manager_.GetLastFileError();
  // What the system could not store it may have dropped, so that no later sync would tell.
  hasFailedSync_ =
      hasFailedSync_ || (status != kSuccess && failure.operation == FileOperation::kSync);
  check(status);
  ++frameCount_;
}

void RecordingDocument::RequireSynced() const {
  if (!hasFailedSync_) return;
  throw Error(ErrorCode::kSystem, options_.path,
              "cannot record further: the disk failed to store an earlier change, so what the file "
              "holds is uncertain; check the disk and resume with a new recorder");
}

void RecordingDocument::Finish(const RunPlan& plan) {
  RequireSynced();
  if (plan.isLive) {
    manager_.KeepingRawDataLast([&] { StoreWhatIsKnownLast(manager_, plan); });
  }
  if (plan.started) {
    TimeStamp end = plan.started->StampAfter(LastTime(plan));
    manager_.SetAcqDataEndTime(end, DataRAWa);
  }
  check(manager_.SetAcquisitionStatus(RunStatus::kDone.data()));
  check(manager_.SaveToFile(document_.c_str()));
}

std::vector<RunReading> RecordingDocument::RecordedFrame(
    std::size_t index, std::span<const unsigned short> wells) const {
  std::vector<RunReading> readings;
  readings.reserve(wells.size());
  for (const unsigned short well : wells) {
    Vex2WellRecord record;
    static_cast<void>(
        manager_.GetAcqDataWellRecord(&record, static_cast<int>(index), well, DataRAWa));
    readings.push_back(DecodeReading(record));
  }
  return readings;
}

void RecordingDocument::check(int status) const {
  if (status != kSuccess) throw FileFailure(options_.path, manager_.GetLastFileError());
}

}  // namespace vex2::lab
