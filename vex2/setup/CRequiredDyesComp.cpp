#include "vex2/setup/CRequiredDyesComp.h"

#include "vex2/format/RecordKinds.h"
#include "vex2/setup/Parts.h"

using vex2::Kind;
using vex2::TagOf;

CRequiredDyesComp::CRequiredDyesComp() : CContainerComp(TagOf(Kind::kRequiredDyes)) {}

CRequiredDyesComp::CRequiredDyesComp(const CString* dyes, int count) : CRequiredDyesComp() {
  for (int index = 0; dyes != nullptr && index < count; ++index) Add(dyes[index]);
}

void CRequiredDyesComp::Add(const CString& dye) {
  if (!dye.IsEmpty()) vex2::AddPart<CBlockValueComp>(*this, TagOf(Kind::kRequiredDye), dye);
}

int CRequiredDyesComp::Find(const CString& dye) const {
  for (int index = 0; !dye.IsEmpty() && index < GetChildCount(); ++index) {
    if (GetName(index) == dye.View()) return index;
  }
  return -1;
}

std::string_view CRequiredDyesComp::GetName(int index) const {
  const CComponent* child = GetChild(index);
  const auto* block = child != nullptr ? vex2::PartAs<CBlockValueComp>(*child) : nullptr;
  return block != nullptr ? vex2::PartText(*block) : std::string_view();
}
