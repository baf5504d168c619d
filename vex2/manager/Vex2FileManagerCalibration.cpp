// The instrument's calibration: pure dyes and background.

#include <array>

#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/setup/CCalibrationComp.h"

using vex2::Kind;
using vex2::kNotFound;
using vex2::kSuccess;
using vex2::TagOf;

namespace {

constexpr std::string_view kCalibrationTag = TagOf(Kind::kCalibration);

// Copies a part into the caller's record, and sets `has` to whether there is one.
template <typename Component, typename Record>
void copyPart(const CCalibrationComp& calibration, Record*& record, int* has) {
  const auto* part = calibration.Find<Component>();
  if (part != nullptr) {
    auto made = record == nullptr ? std::make_unique<Record>() : nullptr;
    part->CopyTo(made != nullptr ? *made : *record);
    if (made != nullptr) record = made.release();
  }
  if (has != nullptr) *has = part != nullptr ? 1 : 0;
}

// Replaces a part of the calibration, and sets `calibration` to the component that was changed.
template <typename Component, typename Record>
int replacePart(vex2::ComponentList& components, const Record* record,
                CCalibrationComp*& calibration, vex2::LastFileError* error = nullptr) {
  const auto replace = [&] {
    std::unique_ptr<CComponent> part;
    if (record != nullptr) part = std::make_unique<Component>(*record);
    calibration = components.Find<CCalibrationComp>(kCalibrationTag);
    if (calibration == nullptr) {
      calibration = components.Replace(std::make_unique<CCalibrationComp>());
    }
    const int old = calibration->FindIndex(Component::kTag);
    if (part == nullptr) {
      calibration->RemoveChild(old);
      return kSuccess;
    }
    return calibration->ReplaceChild(old, std::move(part)) ? kSuccess : vex2::kWriteFailed;
  };
  return vex2::StatusOf(vex2::kWriteFailed, replace, error);
}

// Puts a part into the document outside its calibration, in place of the first such part. Returns
// null if memory runs out.
template <typename Component, typename Record>
Component* replaceAlone(vex2::DocumentStore& store, vex2::ComponentList& components,
                        const Record* record) {
  Component* added = nullptr;
  static_cast<void>(store.Attempt(vex2::kWriteFailed, [&] {
    added = components.Replace(record != nullptr ? std::make_unique<Component>(*record)
                                                 : std::make_unique<Component>());
    return kSuccess;
  }));
  return added;
}

// Overwrites the background at `offset` or, if that is 0, appends the whole calibration.
int patchBackground(vex2::DocumentStore& store, CCalibrationComp& calibration,
                    std::uint64_t offset) {
  CFile& file = store.File();
  if (offset == 0) return store.WriteAtEnd([&] { return calibration.Write(&file); });
  CBackgroundComp* background = calibration.Find<CBackgroundComp>();
  if (background == nullptr) return kSuccess;
  return store.Rewrite(file.GetLength(), [&] {
    file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
    return background->Write(&file);
  });
}

// Finds the first background outside a calibration in the open file; `offset` stays 0 if there is
// none.
int findBackground(Vex2FileManager& file, std::uint32_t length, std::uint64_t& offset) {
  const bool isDocument = file.IsVex2Format();
  vex2::DeclaredRecords records(file, vex2::HeaderLayout::kSize);
  while (records.Next()) {
    const vex2::FileRecord& record = records.Record();
    if (record.Tag() == CBackgroundComp::kTag) {
      offset = record.offset;
      return record.length == length ? kSuccess : vex2::kSizeDiffers;
    }
    // Bytes appended after an incomplete record would be read as part of it. This does not apply to
    // a file without a header, whose bytes here are not records, nor to unknown tags: the bytes
    // at the end that a study's plate declares are not a known record.
    if (isDocument && vex2::IsKnownTag(record.Tag()) && !vex2::HasBytesLeft(file, record.length)) {
      return kNotFound;
    }
  }
  return records.EndsInHead() ? kNotFound : kSuccess;
}

}  // namespace

int Vex2FileManager::ReplaceCalibComponent(const Vex2PureDye* pureDye, const Vex2BGC* background) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(std::make_unique<CCalibrationComp>(pureDye, background));
    return kSuccess;
  });
}

int Vex2FileManager::ReplacePureDye(const Vex2PureDye* record) {
  CCalibrationComp* calibration = nullptr;
  return replacePart<CPureDyeComp>(state_->components, record, calibration);
}

int Vex2FileManager::ReplaceBackground(const Vex2BGC* record) {
  CCalibrationComp* calibration = nullptr;
  return replacePart<CBackgroundComp>(state_->components, record, calibration);
}

int Vex2FileManager::AppendPureDye(const char* path, const Vex2PureDye* record) {
  const vex2::Operation operation(state_->store);
  auto* added = replaceAlone<CPureDyeComp>(state_->store, state_->components, record);
  return added != nullptr ? appendRecord(path, *added) : vex2::kWriteFailed;
}

int Vex2FileManager::AppendBackground(const char* path, const Vex2BGC* record) {
  const vex2::Operation operation(state_->store);
  auto* added = replaceAlone<CBackgroundComp>(state_->store, state_->components, record);
  return added != nullptr ? appendRecord(path, *added) : vex2::kWriteFailed;
}

int Vex2FileManager::ReplaceBackground(const char* path, const Vex2BGC* record) {
  const vex2::Operation operation(state_->store);
  CCalibrationComp* calibration = nullptr;
  if (const int status = replacePart<CBackgroundComp>(state_->components, record, calibration,
                                                      &state_->store.Errors());
      status != kSuccess) {
    return status;
  }
  const auto* background = calibration->Find<CBackgroundComp>();
  const std::uint32_t length = background != nullptr ? background->GetLength() : 0;
  std::uint64_t offset = 0;
  return changeFile(
      path, [&] { return findBackground(*this, length, offset); },
      [&] { return patchBackground(state_->store, *calibration, offset); });
}

int Vex2FileManager::RemoveCalibComponents(bool pureDye, bool background) {
  if (!pureDye && !background) return kSuccess;
  auto* calibration = find<CCalibrationComp>(kCalibrationTag);
  if (calibration == nullptr) return kNotFound;
  if (pureDye && background) {
    RemoveComponent(calibration);
    return kSuccess;
  }
  const auto tag = pureDye ? CPureDyeComp::kTag : CBackgroundComp::kTag;
  return calibration->Remove(tag) ? kSuccess : kNotFound;
}

int Vex2FileManager::GetCalibrationInfo(Vex2PureDye*& pureDye, int* hasPureDye,
                                        Vex2BGC*& background, int* hasBackground) const {
  if (hasPureDye != nullptr) *hasPureDye = 0;
  if (hasBackground != nullptr) *hasBackground = 0;
  const auto* calibration = find<CCalibrationComp>(kCalibrationTag);
  if (calibration == nullptr) return kNotFound;
  return guarded(vex2::kReadFailed, [&] {
    copyPart<CBackgroundComp>(*calibration, background, hasBackground);
    copyPart<CPureDyeComp>(*calibration, pureDye, hasPureDye);
    return kSuccess;
  });
}

int Vex2FileManager::GetPureDyeCount() const {
  const auto* calibration = find<CCalibrationComp>(kCalibrationTag);
  const auto* pureDye = calibration != nullptr ? calibration->Find<CPureDyeComp>() : nullptr;
  return pureDye != nullptr ? pureDye->GetRecord().entryCount : 0;
}

int Vex2FileManager::SaveCalibrationInfo(const char* path) {
  const vex2::Operation operation(state_->store);
  auto* calibration = find<CCalibrationComp>(kCalibrationTag);
  if (calibration == nullptr) return kNotFound;
  return saveWhole(path, [&] {
    if (const int status = WriteHeaderData(nullptr); status != kSuccess) return status;
    SeekToEnd();
    return calibration->Write(this);
  });
}
