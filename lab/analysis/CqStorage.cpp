#include "lab/analysis/CqStorage.h"

#include <algorithm>
#include <memory>

#include "lab/Text.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/study/CCtEntry.h"
#include "vex2/study/TAGPROBE.h"

namespace vex2::lab {

namespace {

std::string stored(const std::string& text) {
  return ToLatin1(text).value_or(text);
}

// The plate's name as the manager expects it: null for the document itself.
const char* orNull(const std::string& plate) {
  return plate.empty() ? nullptr : plate.c_str();
}

TAGPROBE probeOf(const CqResult& result) {
  TAGPROBE probe;
  const std::string name = stored(result.curve.well.detector);
  std::copy_n(name.data(), std::min(name.size(), sizeof probe.name - 1), probe.name);
  if (result.baseline) {
    probe.parameters.parameter1 = static_cast<std::int32_t>(result.baseline->first);
    probe.parameters.parameter2 = static_cast<std::int32_t>(result.baseline->last);
  }
  if (result.threshold) probe.parameters.parameter3 = static_cast<float>(*result.threshold);
  return probe;
}

void addPlate(Vex2FileManager& document, const char* plate) {
  if (document.GetAnalysisSettingsMap(plate) != nullptr) return;
  auto map = std::make_unique<CAnalysisSettingsMap>();
  document.AddAnalysisSettingsMap(plate, map.get());
  if (document.GetAnalysisSettingsMap(plate) == map.get()) static_cast<void>(map.release());
}

}  // namespace

void StoreCq(const CqAnalysis& analysis, Vex2FileManager& document) {
  for (const CqResult& result : analysis.wells) {
    const AnalysedWell& well = result.curve.well;
    const std::string plate = stored(well.plate);
    addPlate(document, orNull(plate));
    const std::string detector = stored(well.detector);
    if (!document.IsAnalysisAvailableFor(orNull(plate), detector.c_str())) {
      document.AddDetectorToAnalysisSettingsMap(probeOf(result), orNull(plate));
    }
    const float cq = result.cq ? static_cast<float>(*result.cq) : CCtEntry::kNoCt;
    document.SetCtAt(orNull(plate), detector.c_str(), cq, well.number);
  }
}

std::optional<double> StoredCq(const Vex2FileManager& document, const AnalysedWell& well) {
  const std::string plate = stored(well.plate);
  const float cq = document.GetCtAt(orNull(plate), stored(well.detector).c_str(), well.number);
  if (cq == CCtEntry::kNoCt) return std::nullopt;
  return cq;
}

}  // namespace vex2::lab
