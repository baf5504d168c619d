#include "lab/check/Repair.h"

#include "lab/Guarded.h"
#include "lab/check/RepairFile.h"
#include "lab/check/RepairPlan.h"
#include "lab/model/DocumentLock.h"

namespace vex2::lab {

namespace {

RepairReport repair(const std::string& path, const RepairOptions& options) {
  RepairReport report;
  if (options.dryRun) {
    report.plan = PlanRepair(path);
    return report;
  }
  const DocumentLock lock(path, DocumentLock::Holder::kCommand);
  report.plan = PlanRepair(path);
  if (report.plan.IsEmpty() || (options.confirm && !options.confirm(report.plan))) return report;
  const std::string document = lock.Document().string();
  const std::string backup = BackUp(document);
  if (PlanRepair(backup) != report.plan) {
    throw Error(ErrorCode::kSystem, path,
                "another program changed it meanwhile; it is left alone, try again");
  }
  ApplyRepair(report.plan, backup, document);
  report.backup = backup;
  report.isRepaired = true;
  return report;
}

}  // namespace

RepairReport Repair(const std::filesystem::path& path, const RepairOptions& options) {
  return Guarded(path.string(), [&] { return repair(path.string(), options); });
}

}  // namespace vex2::lab
