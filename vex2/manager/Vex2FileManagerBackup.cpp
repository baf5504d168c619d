// What the last reading left out, and what becomes of the file when it is replaced.

#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "vex2/framework/Backup.h"
#include "vex2/framework/FileSystem.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

using vex2::kSuccess;

bool Vex2FileManager::IsWhole() const {
  return *partlyRead_.fault.reason == '\0';
}

void Vex2FileManager::noteFault(std::uint64_t offset, const char* reason) {
  if (IsWhole()) partlyRead_.fault = {offset, reason};
}

void Vex2FileManager::notePlates() {
  const CMultiPlateComp* plates = findPlates();
  if (plates == nullptr) return;
  for (int index = 0; index < plates->GetChildCount(); ++index) {
    const auto* record = plates->GetPlateAt(index);
    if (record == nullptr || record->GetPlate() == nullptr) continue;
    const vex2::ReadFault& fault = record->GetPlate()->GetReadFault();
    if (!record->GetPlate()->IsWhole()) noteFault(fault.offset, fault.reason);
  }
}

void Vex2FileManager::noteSource(const CString& path) {
  struct stat info {};
  if (vex2::CurrentFileSystem().StatPath(path.GetString(), info) >= 0) {
    partlyRead_.identity = {info.st_dev, info.st_ino};
  }
  partlyRead_.path = CString(std::string_view(vex2::ResolvedPath(path.GetString())));
}

int Vex2FileManager::keepPartlyRead(const char* path) {
  if (path == nullptr || IsWhole() || partlyRead_.isKept) return kSuccess;
  struct stat info {};
  const int found = vex2::CurrentFileSystem().StatPath(path, info);
  if (found == -ENOENT || found == -ENOTDIR) return kSuccess;
  if (found < 0) return vex2::kWriteFailed;
  if (!S_ISREG(info.st_mode)) return kSuccess;
  return guarded(vex2::kWriteFailed, [&] {
    const std::string resolved = vex2::ResolvedPath(path);
    const bool isSameFile = partlyRead_.identity == Identity(info.st_dev, info.st_ino);
    if (!isSameFile && partlyRead_.path.View() != resolved) return kSuccess;
    vex2::BackUpFile(resolved);
    partlyRead_.isKept = true;
    return kSuccess;
  });
}
