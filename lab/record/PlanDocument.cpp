#include "lab/record/PlanDocument.h"

#include <algorithm>
#include <new>
#include <vector>

#include "lab/Error.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/ValuesToDocument.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

Vex2HeaderData headerFor(const RunPlan& plan) {
  Vex2HeaderData header;
  std::copy_n(plan.plate.TypeCode(), sizeof header.plateTypeCode, header.plateTypeCode);
  header.SetRows(static_cast<std::uint16_t>(plan.plate.rows));
  header.columns = static_cast<std::uint16_t>(plan.plate.columns);
  if (!plan.assay.empty()) plan.assay.copy(header.assayCode, sizeof header.assayCode);
  std::fill_n(header.usage, plan.plate.rows, 0U);
  for (const unsigned well : plan.wells) {
    header.usage[(well - 1) / plan.plate.columns] |= 1U << ((well - 1) % plan.plate.columns);
  }
  return header;
}

// These operations on a document in memory fail only if memory runs out.
void require(int status) {
  if (status != kSuccess) throw std::bad_alloc();
}

void setSettings(Vex2FileManager& document, const RunPlan& plan) {
  Vex2GlobalComplex settings;
  const std::string log = LogText(plan);
  settings.SetComment(plan.comment.data(), static_cast<std::uint32_t>(plan.comment.size()));
  settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  require(document.ReplaceGlobalComplexComp(&settings));
}

void setProgram(Vex2FileManager& document, const RunPlan& plan) {
  const std::string text = ProgramText(plan);
  const std::vector<std::uint8_t> described(text.begin(), text.end());
  // Without frames the program cannot be described.
  if (plan.program.empty() && described.empty()) return;
  StoreProgram(document, plan.program.empty() ? described : plan.program);
}

void setDetectors(Vex2FileManager& document, const RunPlan& plan) {
  for (const Vex2Detector& detector : plan.detectors) {
    require(document.AppendDetectorInfo(&detector));
  }
}

}  // namespace

void StorePlan(Vex2FileManager& document, const RunPlan& plan) {
  document.SetHeaderData(headerFor(plan));
  if (plan.hasSettings || !LogText(plan).empty()) setSettings(document, plan);
  for (const SettingValue& setting : plan.settings) StoreSetting(document, setting);
  if (!plan.isLive || !plan.program.empty()) setProgram(document, plan);
  // Store the detectors before the wells, since storing the wells adds the detectors that are
  // missing, without details.
  setDetectors(document, plan);
  if (plan.hasSetup || !plan.contents.rows.empty()) StoreContents(document, plan.contents);
  for (const std::string& dye : plan.requiredDyes) {
    document.AppendRequiredDyenfo(CString(dye));
  }
  StoreCalibration(document, plan.calibration);
}

void StoreWhatIsKnownLast(Vex2FileManager& document, const RunPlan& plan) {
  if (!plan.statesReadings) return;
  Vex2GlobalComplex settings;
  static_cast<void>(document.GetGlobalComplexInfo(&settings));
  const std::string log = LogText(plan);
  settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  require(document.ReplaceGlobalComplexComp(&settings));
  if (plan.program.empty()) setProgram(document, plan);
}

void StoreWholeRun(Vex2FileManager& document, RunPlan& plan) {
  StorePlan(document, plan);
  if (plan.frames.empty()) return;
  document.InitAcqDataWellNumberArray(plan.wells.data(),
                                      static_cast<unsigned short>(plan.wells.size()), DataRAWa);
  if (plan.started) {
    TimeStamp start = plan.started->Stamp();
    TimeStamp end = plan.started->StampAfter(LastTime(plan));
    document.SetAcqDataStartTime(start, DataRAWa);
    document.SetAcqDataEndTime(end, DataRAWa);
  }
  const std::size_t firstMelting = FirstMelting(plan);
  for (std::size_t index = 0; index < plan.frames.size(); ++index) {
    const std::vector<RunReading> frame = std::move(plan.frames[index]);
    for (std::size_t i = 0; i < frame.size(); ++i) {
      const Vex2WellRecord record = EncodeReading(frame[i], index == firstMelting);
      if (document.SetAcqDataWellRecord(&record, static_cast<int>(index), plan.wells[i],
                                        DataRAWa)) {
        continue;
      }
      throw Error(ErrorCode::kSystem, "the data block cannot grow further");
    }
  }
  require(document.SetAcquisitionStatus(RunStatus::kDone.data()));
}

}  // namespace vex2::lab
