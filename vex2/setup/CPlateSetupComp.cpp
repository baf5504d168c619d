#include "vex2/setup/CPlateSetupComp.h"

#include "vex2/container/Status.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/setup/Parts.h"

using vex2::Kind;
using vex2::TagOf;

CPlateSetupComp::CPlateSetupComp() : CContainerComp(TagOf(Kind::kPlateSetup)) {}

CPlateSetupComp::CPlateSetupComp(const Vex2PlateSetup& setup) : CPlateSetupComp() {
  if (setup.cells == nullptr) return;
  for (std::uint16_t index = 0; index < setup.count; ++index) {
    vex2::AddPart<CCellComp>(*this, setup.cells[index]);
  }
}

void CPlateSetupComp::CopyTo(Vex2PlateSetup& setup) const {
  setup.Clear();
  setup.Resize(GetCount());
  for (int index = 0; index < setup.count; ++index) {
    const CComponent* child = GetChild(index);
    const auto* cell = child != nullptr ? vex2::PartAs<CCellComp>(*child) : nullptr;
    if (cell != nullptr) cell->CopyTo(setup.cells[index]);
  }
}

void CPlateSetupComp::AllocateBody() {
  FreeBody();
  for (int index = 0; index < GetCount(); ++index) keepChild(std::make_unique<CCellComp>());
}

int CPlateSetupComp::ReadChildren(CFile* file) {
  // Cells are created one by one as they are read, because the count comes from the file.
  for (int index = 0; index < GetCount(); ++index) {
    auto cell = std::make_unique<CCellComp>();
    if (const int status = cell->Read(file); status != vex2::kSuccess) return status;
    keepChild(std::move(cell));
  }
  return vex2::kSuccess;
}
