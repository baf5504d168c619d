#include "vex2/setup/CCalibrationComp.h"

#include "vex2/format/RecordKinds.h"
#include "vex2/setup/Parts.h"

using vex2::Kind;
using vex2::TagOf;

CCalibrationComp::CCalibrationComp(const Vex2PureDye* pureDye, const Vex2BGC* background)
    : CContainerComp(TagOf(Kind::kCalibration)) {
  if (pureDye != nullptr) vex2::AddPart<CPureDyeComp>(*this, *pureDye);
  if (background != nullptr) vex2::AddPart<CBackgroundComp>(*this, *background);
}

int CCalibrationComp::FindIndex(std::string_view tag) const {
  for (int index = 0; index < GetChildCount(); ++index) {
    if (GetChild(index)->GetTag() == tag) return index;
  }
  return -1;
}

bool CCalibrationComp::Remove(std::string_view tag) {
  return RemoveChild(FindIndex(tag));
}
