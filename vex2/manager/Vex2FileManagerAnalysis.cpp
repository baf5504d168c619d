// The analysis results of a document, for each plate and each well, in memory only.
//
// Each operation works on one table, either the document's own or that of a plate. The overloads
// for `const char*` return false even on success, except the one that sets reporters. Hosts look at
// the result itself.

#include <set>

#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/study/CMultiPlateComp.h"

using vex2::OrNothing;

namespace {

template <class Result>
using Table = vex2::ResultTable<Result> VexAnalysis::*;

Table<IDAClippedMatrix> reporterTable(bool second) {
  return second ? &VexAnalysis::secondReporters : &VexAnalysis::reporters;
}

// The index for the well number `well`; -1, which is not in any table, if there is no such well.
int indexOf(int well) {
  return well >= 1 ? well - 1 : -1;
}

template <class Result>
bool getAt(const VexAnalysis* analysis, Table<Result> table, Result*& result, int well) {
  result = analysis != nullptr ? (analysis->*table).GetAt(indexOf(well)) : nullptr;
  return result != nullptr;
}

template <class Result>
bool setAt(VexAnalysis* analysis, Table<Result> table, Result* result, int well, int plateSize) {
  if (analysis == nullptr || well < 1 || well > plateSize) return false;
  (analysis->*table).SetAt(indexOf(well), result);
  return true;
}

template <class Result>
bool removeAt(VexAnalysis* analysis, Table<Result> table, int well) {
  return analysis != nullptr && (analysis->*table).RemoveAt(indexOf(well));
}

}  // namespace

int Vex2FileManager::CreateAnalysisStorage(int mode) {
  const int size = GetPlateSize();
  if (size < 1) return size;
  return OrNothing([&] {
    ownAnalysis_ = mode == 1 ? std::make_unique<VexAnalysis>(size) : nullptr;
    if (mode != 1) ResetAnalysisMap();
    return size;
  });
}

void Vex2FileManager::SyncPlatesWithAnalysisStorageMap() {
  OrNothing([this] {
    CStringList names;
    CStringList dates;
    const auto* plates = find<CMultiPlateComp>(vex2::TagOf(vex2::Kind::kPlates));
    if (plates != nullptr) plates->GetPlateLists(names, dates);
    state_->plateResults.Sync(names, GetPlateSize());
  });
}

VexAnalysis* Vex2FileManager::LookupAnalysisPtr(const CString& plateName) const {
  return state_->plateResults.Find(plateName);
}

void Vex2FileManager::ResetAnalysisMap() {
  state_->plateResults.Clear();
}

namespace vex2 {

VexAnalysis* PlateResults::Find(const CString& plate) const {
  const auto found = results_.find(plate);
  return found != results_.end() ? found->second.get() : nullptr;
}

bool PlateResults::Add(const CString& plate, int wells, FunctionRef<bool()> add) {
  decltype(results_) made;
  made.emplace(plate, std::make_unique<VexAnalysis>(wells));
  if (!add()) return false;
  results_.merge(made);
  return true;
}

void PlateResults::Sync(const CStringList& plates, int wells) {
  std::set<CString> names;
  for (POSITION at = plates.GetHeadPosition(); at != nullptr;) names.insert(plates.GetNext(at));
  for (const CString& name : names) {
    if (!Has(name)) results_.emplace(name, std::make_unique<VexAnalysis>(wells));
  }
  std::erase_if(results_, [&](const auto& entry) { return names.count(entry.first) == 0; });
}

}  // namespace vex2

// --- Multicomponent data ---

bool Vex2FileManager::GetMCDataAt(IDAMCMatrix*& matrix, int well,
                                  const VexAnalysis* analysis) const {
  return getAt(analysis, &VexAnalysis::mcData, matrix, well);
}

bool Vex2FileManager::GetMCDataAt(IDAMCMatrix*& matrix, int well) const {
  return GetMCDataAt(matrix, well, ownAnalysis_.get());
}

bool Vex2FileManager::GetMCDataAt(const CString& plateName, IDAMCMatrix*& matrix, int well) const {
  const VexAnalysis* analysis = LookupAnalysisPtr(plateName);
  return analysis != nullptr && GetMCDataAt(matrix, well, analysis);
}

bool Vex2FileManager::GetMCDataAt(const char* plateName, IDAMCMatrix*& matrix, int well) const {
  OrNothing([&] {
    return plateName == nullptr ? GetMCDataAt(matrix, well)
                                : GetMCDataAt(CString(plateName), matrix, well);
  });
  return false;
}

bool Vex2FileManager::SetMCDataAt(IDAMCMatrix* matrix, int well, VexAnalysis* analysis) {
  return setAt(analysis, &VexAnalysis::mcData, matrix, well, GetPlateSize());
}

bool Vex2FileManager::SetMCDataAt(IDAMCMatrix* matrix, int well) {
  return SetMCDataAt(matrix, well, ownAnalysis_.get());
}

bool Vex2FileManager::SetMCDataAt(const CString& plateName, IDAMCMatrix* matrix, int well) {
  return SetMCDataAt(matrix, well, LookupAnalysisPtr(plateName));
}

bool Vex2FileManager::SetMCDataAt(const char* plateName, IDAMCMatrix* matrix, int well) {
  OrNothing([&] {
    return plateName == nullptr ? SetMCDataAt(matrix, well)
                                : SetMCDataAt(CString(plateName), matrix, well);
  });
  return false;
}

// --- Reporter data ---

bool Vex2FileManager::GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second,
                                    const VexAnalysis* analysis) const {
  return getAt(analysis, reporterTable(second), matrix, well);
}

bool Vex2FileManager::GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second) const {
  return GetReporterAt(matrix, well, second, ownAnalysis_.get());
}

bool Vex2FileManager::GetReporterAt(const CString& plateName, IDAClippedMatrix*& matrix, int well,
                                    bool second) const {
  const VexAnalysis* analysis = LookupAnalysisPtr(plateName);
  return analysis != nullptr && GetReporterAt(matrix, well, second, analysis);
}

bool Vex2FileManager::GetReporterAt(const char* plateName, IDAClippedMatrix*& matrix, int well,
                                    bool second) const {
  OrNothing([&] {
    return plateName == nullptr ? GetReporterAt(matrix, well, second)
                                : GetReporterAt(CString(plateName), matrix, well, second);
  });
  return false;
}

bool Vex2FileManager::SetReporterAt(IDAClippedMatrix* matrix, int well, bool second,
                                    VexAnalysis* analysis) {
  return setAt(analysis, reporterTable(second), matrix, well, GetPlateSize());
}

bool Vex2FileManager::SetReporterAt(IDAClippedMatrix* matrix, int well, bool second) {
  return SetReporterAt(matrix, well, second, ownAnalysis_.get());
}

bool Vex2FileManager::SetReporterAt(const CString& plateName, IDAClippedMatrix* matrix, int well,
                                    bool second) {
  return SetReporterAt(matrix, well, second, LookupAnalysisPtr(plateName));
}

bool Vex2FileManager::SetReporterAt(const char* plateName, IDAClippedMatrix* matrix, int well,
                                    bool second) {
  return OrNothing([&] {
    return plateName == nullptr ? SetReporterAt(matrix, well, second)
                                : SetReporterAt(CString(plateName), matrix, well, second);
  });
}

bool Vex2FileManager::RemoveReporterAt(int well, bool second, VexAnalysis* analysis) {
  return removeAt(analysis, reporterTable(second), well);
}

bool Vex2FileManager::RemoveReporterAt(int well, bool second) {
  return RemoveReporterAt(well, second, ownAnalysis_.get());
}

bool Vex2FileManager::RemoveReporterAt(const CString& plateName, int well, bool second) {
  return RemoveReporterAt(well, second, LookupAnalysisPtr(plateName));
}

bool Vex2FileManager::RemoveReporterAt(const char* plateName, int well, bool second) {
  OrNothing([&] {
    return plateName == nullptr ? RemoveReporterAt(well, second)
                                : RemoveReporterAt(CString(plateName), well, second);
  });
  return false;
}

// --- Melting data ---

bool Vex2FileManager::GetMeltingDataAt(IDAMeltingPoints*& points, int well) const {
  return getAt(ownAnalysis_.get(), &VexAnalysis::meltingData, points, well);
}

bool Vex2FileManager::SetMeltingDataAt(IDAMeltingPoints* points, int well) {
  return setAt(ownAnalysis_.get(), &VexAnalysis::meltingData, points, well, GetPlateSize());
}

bool Vex2FileManager::RemoveMeltingDataAt(int well) {
  return removeAt(ownAnalysis_.get(), &VexAnalysis::meltingData, well);
}
