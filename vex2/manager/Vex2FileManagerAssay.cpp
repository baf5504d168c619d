// Queries of the kind of run, and the list of the dyes that an instrument was calibrated with.

#include <algorithm>
#include <array>

#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/setup/CCalibrationComp.h"

using vex2::Assay;
using vex2::Kind;
using vex2::TagOf;

namespace {

CString upperNameOf(const Vex2DyeSpectrum& dye) {
  const std::string_view name(dye.name, dye.name != nullptr ? dye.nameLength : 0);
  CString upper(name.substr(0, name.find('\0')));
  upper.MakeUpper();
  return upper;
}

// Appends an element for the dye, unless its name means that there is no dye.
void appendDye(CObList& list, const Vex2DyeSpectrum& dye) {
  const CString name = upperNameOf(dye);
  if (name.IsEmpty() || name == "<NONE>" || name == "(NONE)") return;
  auto info = std::make_unique<Vex2DyeInfo>();
  info->name = name;
  info->index = dye.dyeIndex;
  constexpr std::size_t kValues = std::size(decltype(info->values){});
  if (dye.values != nullptr) {
    std::copy_n(dye.values, std::min<std::size_t>(dye.valueCount, kValues), info->values);
  }
  list.AddTail(info.get());
  static_cast<void>(info.release());
}

}  // namespace

bool Vex2FileManager::IsAssayType(int type) const {
  const std::string_view code(header_.assayCode, sizeof header_.assayCode);
  for (const vex2::AssayCode& assay : Assay::kAll) {
    if (assay.code == code) return assay.number == type;
  }
  return type == 0;
}

bool Vex2FileManager::IsBackground() const {
  return IsAssayType(Assay::kBackground.number);
}
bool Vex2FileManager::IsPureSpectra() const {
  return IsAssayType(Assay::kPureSpectra.number);
}
bool Vex2FileManager::IsAQ() const {
  return IsAssayType(Assay::kAbsolute.number);
}
bool Vex2FileManager::IsRQP() const {
  return IsAssayType(Assay::kRelativePlate.number);
}
bool Vex2FileManager::IsRQS() const {
  return IsAssayType(Assay::kRelativeStudy.number);
}
bool Vex2FileManager::IsAD() const {
  return IsAssayType(Assay::kAllelic.number);
}
bool Vex2FileManager::IsPM() const {
  return IsAssayType(Assay::kPlusMinus.number);
}
bool Vex2FileManager::IsRealTime() const {
  return IsAQ() || IsRQP() || IsRQS();
}
bool Vex2FileManager::IsPlateRead() const {
  return IsPM() || IsAD();
}

bool Vex2FileManager::LoadDyeList(CObList* list) const {
  const auto* calibration = find<CCalibrationComp>(TagOf(Kind::kCalibration));
  if (list == nullptr || calibration == nullptr) return false;
  const auto* pureDye = calibration->Find<CPureDyeComp>();
  if (pureDye == nullptr) return true;
  const int before = list->GetCount();
  const int status = guarded(vex2::kReadFailed, [&] {
    const Vex2PureDye& dyes = pureDye->GetRecord();
    for (int index = 0; index < dyes.entryCount; ++index) appendDye(*list, dyes.entries[index]);
    return vex2::kSuccess;
  });
  if (status == vex2::kSuccess) return true;
  while (list->GetCount() > before) delete list->RemoveTail();
  return false;
}

bool Vex2FileManager::LoadDyeListByName(CObList* list, const char* plateName) const {
  if (plateName == nullptr) return LoadDyeList(list);
  return vex2::OrNothing([&] {
    const Vex2FileManagerComponent* plate = GetSinglePlatePtrByName(plateName);
    return plate != nullptr && plate->LoadDyeList(list);
  });
}
