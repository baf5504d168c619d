#include "lab/model/WellDetails.h"

#include "lab/Text.h"
#include "lab/model/PlateContents.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/setup/CPlateSetupComp.h"

namespace vex2::lab {

std::vector<WellDetails> WellDetailsOf(const Vex2FileManager& document) {
  std::vector<WellDetails> details;
  const CPlateSetupComp* component = document.GetPlateSetupComp();
  Vex2PlateSetup setup;
  if (component == nullptr || document.GetPlateSetupInfo(&setup) != kSuccess) return details;
  const PlateLayout plate = LayoutOf(document);
  for (unsigned index = 0; index < setup.count; ++index) {
    const Vex2WellSetup& well = setup.cells[index];
    WellDetails& one = details.emplace_back();
    one.name = WellName(well.coord1 * plate.columns + well.coord2 + 1U, plate.columns);
    one.flag = well.flag;
    one.isSetUp = well.nameLength > 0 || !well.detectors.IsEmpty();
    for (POSITION at = well.detectors.GetHeadPosition(); at != nullptr;) {
      one.detectorFlags.push_back(well.detectors.GetNext(at)->used);
    }
    // The library has no operation that returns a description, so read it from the record itself.
    const auto* cell = dynamic_cast<CContainerComp*>(component->GetChild(static_cast<int>(index)));
    auto* text = cell != nullptr ? cell->FindChild(TagOf(Kind::kCellDescription)) : nullptr;
    if (text != nullptr) one.description = ToUtf8(text->GetValueString().View());
  }
  return details;
}

}  // namespace vex2::lab
