// How far the acquisition has got.

#include <cstring>
#include <string>

#include "vex2/format/HeaderLayout.h"
#include "vex2/framework/Host.h"
#include "vex2/manager/Vex2FileManager.h"

using vex2::HeaderLayout;
using vex2::kCodeLength;
using vex2::RunStatus;

bool Vex2FileManager::hasStatus(std::string_view status) const {
  return std::string_view(header_.acquisitionStatus, kCodeLength) == status;
}

CString Vex2FileManager::GetAcquisitionStatus() const {
  return CString(std::string_view(header_.acquisitionStatus, kCodeLength));
}

int Vex2FileManager::SetAcquisitionStatus(const char* status) {
  const std::string_view given = status != nullptr ? status : "";
  if (given.size() != kCodeLength) {
    return guarded(vex2::kInvalidStatus, [given] {
      vex2::GetHost()->ShowMessage(
          "The Acquisition Status should be a string 4 characters long. The new value '" +
          std::string(given) + "' is invalid and won't be used.");
      return vex2::kInvalidStatus;
    });
  }
  std::memcpy(header_.acquisitionStatus, given.data(), kCodeLength);
  return vex2::kSuccess;
}

int Vex2FileManager::SetAcquisitionStatus(const char* path, const char* status) {
  if (SetAcquisitionStatus(status) != vex2::kSuccess) return vex2::kWriteFailed;
  const auto look = [this] {
    return IsVex2Format() && GetLength() > HeaderLayout::kStatusAt ? vex2::kSuccess
                                                                   : vex2::kWriteFailed;
  };
  const int result = changeFile(path, look, [this] {
    Seek(HeaderLayout::kStatusAt, begin);
    Write(header_.acquisitionStatus, kCodeLength);
    barrier();
    return vex2::kSuccess;
  });
  return result == vex2::kSuccess ? vex2::kSuccess : vex2::kWriteFailed;
}

bool Vex2FileManager::IsAcquisitionZero() const {
  return hasStatus(RunStatus::kNotStarted);
}
bool Vex2FileManager::IsAcquisitionProg() const {
  return hasStatus(RunStatus::kInProgress);
}
bool Vex2FileManager::IsAcquisitionDone() const {
  return hasStatus(RunStatus::kDone);
}
