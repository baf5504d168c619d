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
  // Each name of a file has its own lock, so under another name a second recorder could write to
  // the file.
  if (exists && info.st_nlink > 1) {
    throw Error(ErrorCode::kUsage, options_.path,
                "has other names as well (hard links), under which others could change it; record "
                "to another file");
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
    noteFile();
    return true;
  }
  if (!WasDone()) interrupted_->Repair();
  check(manager_.ReadFromFile(document_.c_str()));
  frameCount_ = interrupted_->FrameCount();
  // A complete run is read too, so that its frames can be compared with others.
  if (WasDone()) return false;
  check(manager_.SetAcquisitionStatus(document_.c_str(), RunStatus::kInProgress.data()));
  if (!interrupted_->HasBlock()) openBlock(plan);
  noteFile();
  return true;
}

// Makes the document without a data block; the first commit appends the block as the last record.
// If the block were in the document when it is saved, the header would not have the offset that a
// commit needs.
void RecordingDocument::make(const RunPlan& plan) {
  StorePlan(manager_, plan);
  // Store the status in the same save. If it were patched in place, an interruption could leave
  // half of it.
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
  requireOwnFile();
  readAnew(plan);
  const auto index = static_cast<int>(frameCount_);
  if (manager_.GetDataFrameCount(DataRAWa) > index) {
    // The failed commit could not undo what it wrote, so its frame is a frame of the document.
    if (!holdsFrame(index, plan, records)) refuseOtherFrames();
    ++frameCount_;
    return;
  }
  hasFailedCommit_ = true;  // until the commit has succeeded
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (!manager_.SetAcqDataWellRecord(&records[i], index, plan.wells[i], DataRAWa)) {
      throw Error(ErrorCode::kSystem, options_.path, "the data block cannot grow further");
    }
  }
  const int status = manager_.CommitAcqDataFrame(document_.c_str(), index, DataRAWa);
  const FileError& failure = manager_.GetLastFileError();
  // The system may have dropped the bytes that it could not store. A later sync could then succeed
  // although they are lost.
  hasFailedSync_ =
      hasFailedSync_ || (status != kSuccess && failure.operation == FileOperation::kSync);
  check(status);
  hasFailedCommit_ = false;
  noteFile();
  ++frameCount_;
}

void RecordingDocument::noteFile() {
  struct stat info {};
  if (::stat(document_.c_str(), &info) != 0) return;
  identity_ = {info.st_dev, info.st_ino};
  size_ = static_cast<std::uint64_t>(info.st_size);
}

// Throws an error if another program has replaced or changed the file since the last commit. After
// a failed commit the size is not checked, since the commit may have left bytes that it could not
// cut off. If the file is missing, the next operation on it fails with the system's reason.
void RecordingDocument::requireOwnFile() const {
  struct stat info {};
  if (::stat(document_.c_str(), &info) != 0) return;
  const bool isSame = identity_ == FileIdentity{info.st_dev, info.st_ino} &&
                      (hasFailedCommit_ || size_ == static_cast<std::uint64_t>(info.st_size));
  if (isSame) return;
  throw Error(ErrorCode::kDocument, options_.path,
              "cannot record further: another program has changed or replaced the file since the "
              "last frame; check the file, then record or resume again");
}

// After a failed commit, reads the document again, because the manager still holds the frame of
// that commit. Another save must not write the frame, and setting the only well of a frame again
// would count the frame twice.
void RecordingDocument::readAnew(const RunPlan& plan) {
  if (!hasFailedCommit_) return;
  check(manager_.ReadFromFile(document_.c_str()));
  if (manager_.GetDataFrameCount(DataRAWa) == 0) {
    if (frameCount_ > 0) refuseOtherFrames();
    openBlock(plan);
  }
  const auto frames = static_cast<std::size_t>(manager_.GetDataFrameCount(DataRAWa));
  if (frames != frameCount_ && frames != frameCount_ + 1) refuseOtherFrames();
  hasFailedCommit_ = false;
  noteFile();
}

bool RecordingDocument::holdsFrame(int index, const RunPlan& plan,
                                   std::span<const Vex2WellRecord> records) const {
  for (std::size_t i = 0; i < records.size(); ++i) {
    Vex2WellRecord stored;
    if (!manager_.GetAcqDataWellRecord(&stored, index, plan.wells[i], DataRAWa) ||
        stored != records[i]) {
      return false;
    }
  }
  return true;
}

void RecordingDocument::refuseOtherFrames() const {
  throw Error(ErrorCode::kDocument, options_.path,
              "cannot record further: after a failed commit it holds other frames than were "
              "recorded; resume with a new recorder");
}

void RecordingDocument::RequireSynced() const {
  if (!hasFailedSync_) return;
  throw Error(ErrorCode::kSystem, options_.path,
              "cannot record further: the disk failed to store an earlier change, so what the file "
              "holds is uncertain; check the disk and resume with a new recorder");
}

void RecordingDocument::Finish(const RunPlan& plan) {
  RequireSynced();
  requireOwnFile();
  readAnew(plan);
  if (static_cast<std::size_t>(manager_.GetDataFrameCount(DataRAWa)) != frameCount_) {
    refuseOtherFrames();
  }
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
