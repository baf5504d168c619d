// The dyes that a run requires.

#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/setup/CRequiredDyesComp.h"

using vex2::Kind;
using vex2::kNotFound;
using vex2::kSuccess;
using vex2::TagOf;

namespace {

constexpr std::string_view kDyesTag = TagOf(Kind::kRequiredDyes);

}  // namespace

// Sic: the name lacks a letter, but it is part of the interface.
bool Vex2FileManager::AppendRequiredDyenfo(const CString& dye) {
  const int status = guarded(vex2::kWriteFailed, [&] {
    auto* dyes = find<CRequiredDyesComp>(kDyesTag);
    if (dyes == nullptr) return UpdateRequiredDyeList(&dye, 1);
    if (dyes->Find(dye) >= 0) return static_cast<int>(kNotFound);
    dyes->Add(dye);
    return static_cast<int>(kSuccess);
  });
  return status == kSuccess;
}

int Vex2FileManager::UpdateRequiredDyeList(const CString* dyes, int count) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(std::make_unique<CRequiredDyesComp>(dyes, count));
    return kSuccess;
  });
}

bool Vex2FileManager::RemoveRequiredDyeInfo(const CString& dye) {
  auto* dyes = find<CRequiredDyesComp>(kDyesTag);
  if (dyes == nullptr) return false;
  const bool removed = dyes->RemoveChild(dyes->Find(dye));
  if (dyes->GetChildCount() == 0) RemoveComponent(dyes);
  return removed;
}

int Vex2FileManager::AppendRequiredDyeListToFile(const char* path) {
  const vex2::Operation operation(state_->store);
  auto* dyes = find<CRequiredDyesComp>(kDyesTag);
  if (dyes == nullptr) return kNotFound;
  return appendRecord(path, *dyes);
}

int Vex2FileManager::GetNumberOfRequiredDyes(int& count) const {
  const auto* dyes = find<CRequiredDyesComp>(kDyesTag);
  count = dyes != nullptr ? dyes->GetChildCount() : 0;
  return dyes != nullptr ? kSuccess : kNotFound;
}

int Vex2FileManager::GetRequiredDyeListInfo(CString*& dyes) const {
  const auto* list = find<CRequiredDyesComp>(kDyesTag);
  if (list == nullptr) return kNotFound;
  const int count = list->GetChildCount();
  if (count == 0) return kSuccess;
  return guarded(vex2::kReadFailed, [&] {
    auto filled = std::make_unique<CString[]>(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
      filled[static_cast<std::size_t>(index)] = CString(list->GetName(index));
    }
    delete[] dyes;
    dyes = filled.release();
    return kSuccess;
  });
}
