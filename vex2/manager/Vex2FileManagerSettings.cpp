// The run-wide settings: those that are stored together in "GLBL", and five that have a record
// each.

#include <string>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/run/CGlobalComp.h"

using vex2::Kind;
using vex2::kNotFound;
using vex2::kSuccess;
using vex2::TagOf;

namespace {

constexpr int kDefaultMaxDyesPerWell = 4;

int getText(const vex2::ComponentList& components, std::string_view tag, CString& text) {
  text.Empty();
  CComponent* component = components.Find(tag);
  if (component == nullptr) return kNotFound;
  return vex2::StatusOf(vex2::kReadFailed, [&] {
    text = component->GetValueString();
    return kSuccess;
  });
}

int setText(vex2::ComponentList& components, std::string_view tag, const CString& text) {
  if (text.IsEmpty()) {
    components.Remove(components.Find(tag));
    return kSuccess;
  }
  return vex2::StatusOf(vex2::kWriteFailed, [&] {
    components.Replace(std::make_unique<CBlockValueComp>(tag, text));
    return kSuccess;
  });
}

void changeSettings(Vex2FileManager& manager, vex2::FunctionRef<void(Vex2GlobalComplex&)> change) {
  static_cast<void>(vex2::StatusOf(vex2::kWriteFailed, [&] {
    Vex2GlobalComplex info;
    // If memory runs out while the settings are copied, do not replace them by an incomplete copy.
    if (const int status = manager.GetGlobalComplexInfo(&info); status == vex2::kReadFailed)
      return status;
    change(info);
    return manager.ReplaceGlobalComplexComp(&info);
  }));
}

}  // namespace

int Vex2FileManager::GetGlobalComplexInfo(Vex2GlobalComplex* info) const {
  const auto* settings = find<CGlobalComp>(TagOf(Kind::kGlobal));
  if (settings == nullptr) return kNotFound;
  return guarded(vex2::kReadFailed, [&] {
    if (info != nullptr) settings->CopyTo(*info);
    return kSuccess;
  });
}

int Vex2FileManager::ReplaceGlobalComplexComp(const Vex2GlobalComplex* info) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(info != nullptr ? std::make_unique<CGlobalComp>(*info)
                                     : std::make_unique<CGlobalComp>());
    return kSuccess;
  });
}

int Vex2FileManager::AppendGlobalComplexComp(const char* path, const Vex2GlobalComplex* info) {
  const vex2::Operation operation(state_->store);
  if (const int status = ReplaceGlobalComplexComp(info); status != kSuccess) {
    state_->store.Errors().NoteNoMemory();
    return status;
  }
  return appendRecord(path, *includesComponent(TagOf(Kind::kGlobal)));
}

int Vex2FileManager::GetMaxDyesPerWell(int& count) const {
  count = kDefaultMaxDyesPerWell;
  const auto* value = find<CShortValueComp>(TagOf(Kind::kMaxDyesPerWell));
  if (value == nullptr) return kNotFound;
  count = value->GetValue();
  return kSuccess;
}

int Vex2FileManager::GetConfidencePercent(float& percent) const {
  const auto* value = find<CFloatValueComp>(TagOf(Kind::kConfidence));
  if (value == nullptr) return kNotFound;
  percent = value->GetValue();
  return kSuccess;
}

int Vex2FileManager::UpdateConfidencePercent(float percent) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(std::make_unique<CFloatValueComp>(TagOf(Kind::kConfidence), percent));
    return kSuccess;
  });
}

int Vex2FileManager::GetCalibrator(CString& name) const {
  return getText(state_->components, TagOf(Kind::kCalibrator), name);
}
int Vex2FileManager::SetCalibrator(const CString& name) {
  return setText(state_->components, TagOf(Kind::kCalibrator), name);
}
int Vex2FileManager::GetEndoControl(CString& name) const {
  return getText(state_->components, TagOf(Kind::kEndoControl), name);
}
int Vex2FileManager::SetEndoControl(const CString& name) {
  return setText(state_->components, TagOf(Kind::kEndoControl), name);
}

int Vex2FileManager::GetRQAnalysisType(unsigned short& type) const {
  const auto* value = find<CShortValueComp>(TagOf(Kind::kAnalysisType));
  if (value == nullptr) return kNotFound;
  type = value->GetValue();
  return kSuccess;
}

int Vex2FileManager::SetRQAnalysisType(unsigned short type) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(std::make_unique<CShortValueComp>(TagOf(Kind::kAnalysisType), type));
    return kSuccess;
  });
}

void Vex2FileManager::GetPassiveReference(CString& name) const {
  name.Empty();
  static_cast<void>(guarded(vex2::kReadFailed, [&] {
    Vex2GlobalComplex info;
    static_cast<void>(GetGlobalComplexInfo(&info));
    const std::string bytes(reinterpret_cast<const char*>(info.passiveReferenceData),
                            info.passiveReferenceData != nullptr ? info.passiveReferenceLength : 0);
    name = CString(bytes.c_str());
    return kSuccess;
  }));
}

void Vex2FileManager::SetPassiveReference(const CString& name) {
  changeSettings(*this, [&](Vex2GlobalComplex& info) { info.SetPassiveReference(name); });
}

int Vex2FileManager::GetSampleVolume() const {
  Vex2GlobalComplex info;
  static_cast<void>(GetGlobalComplexInfo(&info));
  return info.sampleVolume;
}

void Vex2FileManager::SetSampleVolume(unsigned short volume) {
  changeSettings(*this, [volume](Vex2GlobalComplex& info) { info.sampleVolume = volume; });
}

void Vex2FileManager::GetPrePostFlags(int& pre, int& post) const {
  Vex2GlobalComplex info;
  static_cast<void>(GetGlobalComplexInfo(&info));
  pre = info.preFlag;
  post = info.postFlag;
}

void Vex2FileManager::SetPrePostFlags(int pre, int post) {
  changeSettings(*this, [pre, post](Vex2GlobalComplex& info) {
    info.preFlag = pre;
    info.postFlag = post;
  });
}
