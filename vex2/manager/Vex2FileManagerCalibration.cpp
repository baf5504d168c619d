// The instrument's calibration: pure dyes and background.

#include <array>

#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/setup/CCalibrationComp.h"

using vex2::Kind;
using vex2::kNotFound;
using vex2::kSuccess;
using vex2::TagOf;

namespace {

constexpr std::string_view kTag = TagOf(Kind::kCalibration);

// Copies a part into the caller's record and says whether there was one.
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

}  // namespace

int Vex2FileManager::ReplaceCalibComponent(const Vex2PureDye* pureDye, const Vex2BGC* background) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(std::make_unique<CCalibrationComp>(pureDye, background));
    return kSuccess;
  });
}

// `calibration` becomes the one that was changed.
template <typename Component, typename Record>
int Vex2FileManager::replaceCalibrationPart(const Record* record, CCalibrationComp*& calibration) {
  return guarded(vex2::kWriteFailed, [&] {
    std::unique_ptr<CComponent> part;
    if (record != nullptr) part = std::make_unique<Component>(*record);
    calibration = find<CCalibrationComp>(kTag);
    if (calibration == nullptr) {
      calibration = replaceComponent(std::make_unique<CCalibrationComp>());
    }
    const int old = calibration->FindIndex(Component::kTag);
    if (part == nullptr) {
      calibration->RemoveChild(old);
      return kSuccess;
    }
    return calibration->ReplaceChild(old, std::move(part)) ? kSuccess : vex2::kWriteFailed;
  });
}

int Vex2FileManager::ReplacePureDye(const Vex2PureDye* record) {
  CCalibrationComp* calibration = nullptr;
  return replaceCalibrationPart<CPureDyeComp>(record, calibration);
}

int Vex2FileManager::ReplaceBackground(const Vex2BGC* record) {
  CCalibrationComp* calibration = nullptr;
  return replaceCalibrationPart<CBackgroundComp>(record, calibration);
}

template <typename Component, typename Record>
int Vex2FileManager::appendAlone(const char* path, const Record* record) {
  Component* added = nullptr;
  const int status = guarded(vex2::kWriteFailed, [&] {
    added = replaceComponent(record != nullptr ? std::make_unique<Component>(*record)
                                               : std::make_unique<Component>());
    return kSuccess;
  });
  if (status != kSuccess) return status;
  return appendRecord(path, *added);
}

int Vex2FileManager::AppendPureDye(const char* path, const Vex2PureDye* record) {
  return appendAlone<CPureDyeComp>(path, record);
}

int Vex2FileManager::AppendBackground(const char* path, const Vex2BGC* record) {
  return appendAlone<CBackgroundComp>(path, record);
}

int Vex2FileManager::ReplaceBackground(const char* path, const Vex2BGC* record) {
  CCalibrationComp* calibration = nullptr;
  if (const int status = replaceCalibrationPart<CBackgroundComp>(record, calibration);
      status != kSuccess) {
    return status;
  }
  const auto* background = calibration->Find<CBackgroundComp>();
  const std::uint32_t length = background != nullptr ? background->GetLength() : 0;
  std::uint64_t position = 0;
  return changeFile(
      path, [&] { return findBackground(length, position); },
      [&] { return patchBackground(*calibration, position); });
}

int Vex2FileManager::patchBackground(CCalibrationComp& calibration, std::uint64_t position) {
  if (position == 0) return writeAtEnd([&] { return calibration.Write(this); });
  CBackgroundComp* background = calibration.Find<CBackgroundComp>();
  if (background == nullptr) return kSuccess;
  return rewrite(GetLength(), [&] {
    Seek(static_cast<std::int64_t>(position), begin);
    return background->Write(this);
  });
}

// The position of the first background that stands alone in the open file, 0 when there is none.
int Vex2FileManager::findBackground(std::uint32_t length, std::uint64_t& position) {
  const bool isDocument = IsVex2Format();
  vex2::DeclaredRecords records(*this, vex2::HeaderLayout::kSize);
  while (records.Next()) {
    const vex2::FileRecord& record = records.Record();
    if (record.Tag() == CBackgroundComp::kTag) {
      position = record.offset;
      return record.length == length ? kSuccess : vex2::kSizeDiffers;
    }
    // What was appended behind a record that the document does not hold whole would be lost in it.
    // A file without a header holds no records there.
    if (isDocument && !vex2::HasBytesLeft(*this, record.length)) return kNotFound;
  }
  return records.EndsInHead() ? kNotFound : kSuccess;
}

int Vex2FileManager::RemoveCalibComponents(bool pureDye, bool background) {
  if (!pureDye && !background) return kSuccess;
  auto* calibration = find<CCalibrationComp>(kTag);
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
  const auto* calibration = find<CCalibrationComp>(kTag);
  if (calibration == nullptr) return kNotFound;
  return guarded(vex2::kReadFailed, [&] {
    copyPart<CBackgroundComp>(*calibration, background, hasBackground);
    copyPart<CPureDyeComp>(*calibration, pureDye, hasPureDye);
    return kSuccess;
  });
}

int Vex2FileManager::GetPureDyeCount() const {
  const auto* calibration = find<CCalibrationComp>(kTag);
  const auto* pureDye = calibration != nullptr ? calibration->Find<CPureDyeComp>() : nullptr;
  return pureDye != nullptr ? pureDye->GetRecord().entryCount : 0;
}

int Vex2FileManager::SaveCalibrationInfo(const char* path) {
  auto* calibration = find<CCalibrationComp>(kTag);
  if (calibration == nullptr) return kNotFound;
  return saveWhole(path, [&] {
    if (const int status = WriteHeaderData(nullptr); status != kSuccess) return status;
    SeekToEnd();
    return calibration->Write(this);
  });
}
