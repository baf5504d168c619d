// What analysis applications query about the raw data of a document or of the plates of a study.

#include <algorithm>
#include <map>

#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

using vex2::OrNothing;

namespace {

// Whether a first reading is one of the two markers, 0 and 65000, of the first frame of a melting
// stage. No well gives these readings.
bool isMeltingMark(std::uint16_t reading) {
  return reading == 0 || reading == 65000;
}

int findMeltingStart(const Vex2FileManager& plate) {
  Vex2FrameData frame;
  const int frames = plate.GetDataFrameCount(DataRAWa);
  for (int index = 0; index < frames; ++index) {
    if (plate.ReadDataFrame(index, &frame, DataRAWa) != vex2::kSuccess) break;
    const bool marked =
        std::any_of(frame.records, frame.records + frame.wellCount,
                    [](const Vex2WellRecord& record) { return isMeltingMark(record.leading[4]); });
    if (marked) return index;
  }
  return -1;
}

// The plates of a study, in order; for any other document, the document itself.
std::vector<const Vex2FileManager*> platesToAsk(const Vex2FileManager& document,
                                                const vex2::ComponentList& components) {
  return OrNothing([&] {
    std::vector<const Vex2FileManager*> plates;
    if (!document.IsRQS()) plates.push_back(&document);
    const auto* list = document.IsRQS()
                           ? components.Find<CMultiPlateComp>(vex2::TagOf(vex2::Kind::kPlates))
                           : nullptr;
    // Plates are found by name: of several plates with the same name, always the first one.
    std::map<CString, const Vex2FileManager*> byName;
    for (int index = 0; list != nullptr && index < list->GetChildCount(); ++index) {
      const CRQPlateComp* plate = list->GetPlateAt(index);
      if (plate == nullptr || plate->GetPlate() == nullptr) continue;
      plates.push_back(byName.emplace(plate->GetPlateName(), plate->GetPlate()).first->second);
    }
    return plates;
  });
}

}  // namespace

void Vex2FileManager::GetPlateDataInfo(int& wellsWithData, int& largestCount) const {
  wellsWithData = 0;
  largestCount = 0;
  for (const Vex2FileManager* plate : platesToAsk(*this, state_->components)) {
    for (int well = 1; well <= plate->GetPlateSize(); ++well) {
      const int count = plate->GetDataCntInWell(well, DataRAWa);
      largestCount = std::max(largestCount, count);
      if (count != 0) ++wellsWithData;
    }
    if (largestCount != 0) return;
  }
}

long Vex2FileManager::GetPlateInfo(long& plateSize) const {
  plateSize = 0;
  for (const Vex2FileManager* plate : platesToAsk(*this, state_->components)) {
    plateSize = plate->GetPlateSize();
    if (const int frames = plate->GetDataFrameCount(DataRAWa); frames != 0) return frames;
  }
  return 0;
}

void Vex2FileManager::FindPCRMeltingParams(const char* plateName, int& pcrFrameCount,
                                           int& meltingStart) const {
  meltingStart = -1;
  pcrFrameCount = 0;
  const Vex2FileManager* plate = nullptr;
  if (plateName != nullptr) {
    plate = OrNothing([&] { return GetSinglePlatePtrByName(plateName); });
  } else if (const auto plates = platesToAsk(*this, state_->components); !plates.empty()) {
    plate = plates.front();
  }
  if (plate == nullptr) return;
  meltingStart = findMeltingStart(*plate);
  pcrFrameCount = meltingStart >= 0 ? meltingStart : plate->GetDataFrameCount(DataRAWa);
}
