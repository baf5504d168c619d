// What keeps a document whole when a disk or a process fails: barriers, files whose sync failed,
// the end of committed data, and changes that replace a document as a whole.

#include <algorithm>

#include "vex2/framework/Host.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/storage/FailedSyncs.h"
#include "vex2/storage/FrameLog.h"

using vex2::kSuccess;

void Vex2FileManager::barrier() {
  // Reserve first, so that recording a failed sync cannot itself run out of memory.
  failedSyncs_->Reserve();
  Flush();  // a refused write is not a failed sync: the caller is told and can try again
  try {
    SyncData();
  } catch (const CFileException&) {
    failedSyncs_->Add(GetIdentity());
    throw;
  }
}

void Vex2FileManager::finishReplacement() {
  failedSyncs_->Remove(CloseReplacement());
  failedSyncs_->Remove(GetIdentity());
}

bool Vex2FileManager::refusesChanges() {
  if (!failedSyncs_->Contains(GetIdentity())) return false;
  Abort();
  static_cast<void>(guarded(vex2::kWriteFailed, [this] {
    const std::string text = "The disk failed to store a change to " +
                             std::string(filePath_.View()) +
                             ". Nothing more is written into that file. Please save the document "
                             "under another name.";
    // Shown once: a run that goes on would show it with every frame.
    if (failedSyncs_->ExchangeTold(GetIdentity())) {
      vex2::GetHost()->Trace(text + "\n");
    } else {
      vex2::GetHost()->ShowMessage(text);
    }
    return kSuccess;
  }));
  return true;
}

std::uint64_t Vex2FileManager::committedEnd(const AcquisitionDataComp& block,
                                            std::uint32_t offset) {
  // A host may commit more than the length counts; what this manager committed counts too.
  if (GetIdentity() == committedFile_ && GetLength() == committedLength_) return GetLength();
  const auto isFrame = [&block](CFile& file, std::uint64_t frame) {
    return block.IsStoredFrame(file, static_cast<int>(frame));
  };
  return vex2::CommittedEnd(*this, offset,
                            {block.GetTag(), block.GetWellCount(),
                             static_cast<std::uint64_t>(block.GetFrameCount()), isFrame});
}

int Vex2FileManager::rewrite(std::uint64_t kept, vex2::FunctionRef<int()> write) {
  const bool replaces = ReplaceOpenFile();
  if (replaces) CopyReplaced(kept);
  const int status = write();
  if (status != kSuccess) return status;
  if (replaces) {
    finishReplacement();
  } else {
    barrier();
  }
  return kSuccess;
}
