#include "vex2/setup/CCalibrationComp.h"

#include "vex2/setup/Parts.h"

CCalibrationComp::CCalibrationComp(const Vex2PureDye* pureDye, const Vex2BGC* background)
    : CContainerComp("CALI") {
  if (pureDye != nullptr) vex2::AddPart<CPureDyeComp>(*this, *pureDye);
  if (background != nullptr) vex2::AddPart<CBackgroundComp>(*this, *background);
}

bool CCalibrationComp::Remove(std::string_view tag) {
  for (int index = 0; index < GetChildCount(); ++index) {
    if (GetChild(index)->GetTag() == tag) return RemoveChild(index);
  }
  return false;
}
