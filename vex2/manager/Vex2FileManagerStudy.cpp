// The plates of a study, and the name and date that a plate has in its study.

#include <cstring>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/manager/SplitPath.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

using vex2::Kind;
using vex2::kSuccess;
using vex2::OrNothing;
using vex2::TagOf;

namespace {

// Other programs read these texts into buffers of 1024 bytes, one more than this.
constexpr int kMaxPlateText = 1023;

CMultiPlateComp* findPlates(const vex2::ComponentList& components) {
  return components.Find<CMultiPlateComp>(TagOf(Kind::kPlates));
}

bool addPlate(vex2::ComponentList& components, vex2::PlateResults& results, int wells,
              const CString& name, const Vex2FileManager& plate, const CString& lastModified) {
  // Allocate all memory before changing the study, so that a failure leaves it unchanged.
  auto added = std::make_unique<CRQPlateComp>();
  added->SetPlate(name, plate, lastModified);
  return results.Add(name, wells, [&] {
    CMultiPlateComp* plates = findPlates(components);
    if (plates == nullptr) plates = components.Replace(std::make_unique<CMultiPlateComp>());
    return plates->AddPlate(std::move(added));
  });
}

int setPlateText(vex2::ComponentList& components, std::string_view tag, const CString& text) {
  return vex2::StatusOf(vex2::kWriteFailed, [&] {
    components.Replace(std::make_unique<CBlockValueComp>(tag, text.Left(kMaxPlateText)));
    return kSuccess;
  });
}

int getPlateText(const vex2::ComponentList& components, std::string_view tag, CString& text) {
  CComponent* component = components.Find(tag);
  if (component == nullptr) return kSuccess;
  return vex2::StatusOf(vex2::kReadFailed, [&] {
    text = component->GetValueString();
    return kSuccess;
  });
}

}  // namespace

bool Vex2FileManager::InitMultiplate() {
  return OrNothing([this] {
    replaceComponent(std::make_unique<CMultiPlateComp>());
    return true;
  });
}

bool Vex2FileManager::AddRQPlate(const Vex2FileManager* plate, const CString& lastModified) {
  if (plate == nullptr) return false;
  return OrNothing([&] {
    CString folder;
    CString name;
    CString extension;
    SplitPath(plate->state_->store.Path(), folder, name, extension);
    // A name is taken if there is analysis storage under it, and only then.
    return !state_->plateResults.Has(name) && addPlate(state_->components, state_->plateResults,
                                                       GetPlateSize(), name, *plate, lastModified);
  });
}

bool Vex2FileManager::RemoveRQPlate(const CString& name) {
  return OrNothing([&] {
    // `name` may be the name inside the plate that is removed, so copy it.
    const CString kept = name;
    const bool hadAnalysis = state_->plateResults.Remove(kept);
    CMultiPlateComp* plates = findPlates(state_->components);
    if (plates == nullptr) return hadAnalysis;
    plates->RemovePlate(kept);
    return true;
  });
}

bool Vex2FileManager::GetMultiPlateList(CStringList& names, CStringList& dates) const {
  const CMultiPlateComp* plates = findPlates(state_->components);
  if (plates == nullptr) return false;
  return OrNothing([&] {
    plates->GetPlateLists(names, dates);
    return true;
  });
}

int Vex2FileManager::GetRQPlateCount() const {
  const CMultiPlateComp* plates = findPlates(state_->components);
  return plates != nullptr ? plates->GetChildCount() : 0;
}

int Vex2FileManager::GetNumPlates() const {
  CStringList names;
  CStringList dates;
  GetMultiPlateList(names, dates);
  return names.GetCount();
}

Vex2FileManagerComponent* Vex2FileManager::GetSinglePlatePtrByName(const CString& name) const {
  const CMultiPlateComp* plates = findPlates(state_->components);
  const int index = plates != nullptr ? plates->FindPlate(name) : -1;
  return index >= 0 ? plates->GetPlateAt(index)->GetPlate() : nullptr;
}

int Vex2FileManager::AppendPlateName(const CString& name) {
  return setPlateText(state_->components, TagOf(Kind::kPlateName), name);
}
int Vex2FileManager::GetPlateName(CString& name) const {
  return getPlateText(state_->components, TagOf(Kind::kPlateName), name);
}
int Vex2FileManager::AppendLastModifiedDate(const CString& date) {
  return setPlateText(state_->components, TagOf(Kind::kPlateDate), date);
}
int Vex2FileManager::GetLastModifiedDate(CString& date) const {
  return getPlateText(state_->components, TagOf(Kind::kPlateDate), date);
}

void Vex2FileManager::ConvertAQ2RQ() {
  std::memcpy(header_.assayCode, vex2::Assay::kRelativePlate.code.data(), sizeof header_.assayCode);
}
