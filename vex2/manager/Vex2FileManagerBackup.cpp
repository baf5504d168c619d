// Whether the last reading left anything out, and the backup of the file before it is replaced.

#include <string>
#include <string_view>

#include "vex2/format/RecordKinds.h"
#include "vex2/framework/Backup.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

using vex2::kSuccess;

bool Vex2FileManager::IsWhole() const {
  return state_->partlyRead.IsWhole();
}

const vex2::ReadFault& Vex2FileManager::GetReadFault() const {
  return state_->partlyRead.Fault();
}

void Vex2FileManager::noteFault(std::uint64_t offset, const char* reason) {
  state_->partlyRead.Note(offset, reason);
}

void Vex2FileManager::State::NotePlates() {
  const auto* plates = components.Find<CMultiPlateComp>(vex2::TagOf(vex2::Kind::kPlates));
  if (plates == nullptr) return;
  for (int index = 0; index < plates->GetChildCount(); ++index) {
    const auto* record = plates->GetPlateAt(index);
    if (record == nullptr || record->GetPlate() == nullptr) continue;
    const vex2::ReadFault& fault = record->GetPlate()->GetReadFault();
    if (!record->GetPlate()->IsWhole()) partlyRead.Note(fault.offset, fault.reason);
  }
}

int Vex2FileManager::State::BackUpPartlyRead(const char* path) {
  return store.Attempt(vex2::kWriteFailed, [&] {
    partlyRead.BackUp(path, store.File());
    return kSuccess;
  });
}

namespace vex2 {

void PartlyReadFile::Note(std::uint64_t offset, const char* reason) {
  if (IsWhole()) fault_ = {offset, reason};
}

void PartlyReadFile::SetSource(const CString& path) {
  const LocatedFile file = LocateFile(path.GetString());
  identity_ = {file.device, file.number};
  path_ = CString(std::string_view(file.path));
}

void PartlyReadFile::BackUp(const char* path, CFile& own) {
  if (path == nullptr || IsWhole() || isKept_) return;
  const LocatedFile file = LocateFile(path);
  const bool isSameFile = identity_ == std::pair(file.device, file.number);
  if (!isSameFile && path_.View() != file.path) return;
  if (!file.exists || !file.isRegular) return;
  own.Close();
  BackUpFile(file.path);
  isKept_ = true;
}

}  // namespace vex2
