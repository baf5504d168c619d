// The list of detectors.

#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/setup/CDetectorListComp.h"

using vex2::Kind;
using vex2::kNotFound;
using vex2::kSuccess;
using vex2::TagOf;

namespace {

constexpr std::string_view kDetectorsTag = TagOf(Kind::kDetectorList);

}  // namespace

int Vex2FileManager::UpdateDetectorList(const Vex2Detector* list, int count) {
  return guarded(vex2::kWriteFailed, [&] {
    auto detectors = std::make_unique<CDetectorListComp>();
    for (int index = 0; list != nullptr && index < count; ++index) {
      detectors->Add(list[index], false);
    }
    replaceComponent(std::move(detectors));
    return kSuccess;
  });
}

int Vex2FileManager::AppendDetectorInfo(const Vex2Detector* detector) {
  if (detector == nullptr) return kSuccess;
  return guarded(vex2::kWriteFailed, [&] {
    if (auto* detectors = find<CDetectorListComp>(kDetectorsTag)) {
      detectors->Add(*detector, true);
      return kSuccess;
    }
    auto detectors = std::make_unique<CDetectorListComp>();
    detectors->Add(*detector, false);
    replaceComponent(std::move(detectors));
    return kSuccess;
  });
}

bool Vex2FileManager::RemoveDetectorInfo(const CString& name) {
  auto* detectors = find<CDetectorListComp>(kDetectorsTag);
  if (detectors == nullptr) return false;
  const bool removed = detectors->RemoveChild(detectors->Find(name));
  // Unlike UpdateDetectorList, this does not keep an empty list.
  if (detectors->GetChildCount() == 0) RemoveComponent(detectors);
  return removed;
}

int Vex2FileManager::AppendDetectorListToFile(const char* path) {
  const vex2::Operation operation(state_->store);
  auto* detectors = find<CDetectorListComp>(kDetectorsTag);
  if (detectors == nullptr) return kNotFound;
  return appendRecord(path, *detectors);
}

int Vex2FileManager::GetNumberOfDetectors(int& count) const {
  const auto* detectors = find<CDetectorListComp>(kDetectorsTag);
  count = detectors != nullptr ? detectors->GetChildCount() : 0;
  return detectors != nullptr ? kSuccess : kNotFound;
}

int Vex2FileManager::GetDetectorListInfo(Vex2Detector*& list) const {
  const auto* detectors = find<CDetectorListComp>(kDetectorsTag);
  if (detectors == nullptr) return kNotFound;
  const int count = detectors->GetChildCount();
  if (count == 0) return kSuccess;
  return guarded(vex2::kReadFailed, [&] {
    auto filled = std::make_unique<Vex2Detector[]>(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
      detectors->CopyTo(index, filled[static_cast<std::size_t>(index)]);
    }
    delete[] list;
    list = filled.release();
    return kSuccess;
  });
}
