// What the last reading left out, and what becomes of the file when it is replaced.

#include <string>
#include <string_view>

#include "vex2/framework/Backup.h"
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
  const vex2::LocatedFile file = vex2::LocateFile(path.GetString());
  partlyRead_.identity = {file.device, file.number};
  partlyRead_.path = CString(std::string_view(file.path));
}

int Vex2FileManager::keepPartlyRead(const char* path) {
  if (path == nullptr || IsWhole() || partlyRead_.isKept) return kSuccess;
  return guarded(vex2::kWriteFailed, [&] {
    const vex2::LocatedFile file = vex2::LocateFile(path);
    const bool isSameFile = partlyRead_.identity == Identity(file.device, file.number);
    if (!isSameFile && partlyRead_.path.View() != file.path) return kSuccess;
    if (!file.exists || !file.isRegular) return kSuccess;
    vex2::BackUpFile(file.path);
    partlyRead_.isKept = true;
    return kSuccess;
  });
}
