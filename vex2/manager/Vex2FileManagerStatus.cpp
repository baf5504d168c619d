// The acquisition status: how far the run is.

#include <cstring>
#include <string>

#include "vex2/format/HeaderLayout.h"
#include "vex2/framework/Host.h"
#include "vex2/manager/ManagerState.h"

using vex2::HeaderLayout;
using vex2::kCodeLength;
using vex2::RunStatus;

namespace {

bool hasStatus(const Vex2HeaderData& header, std::string_view status) {
  return std::string_view(header.acquisitionStatus, kCodeLength) == status;
}

}  // namespace

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
  const vex2::Operation operation(state_->store);
  if (SetAcquisitionStatus(status) != vex2::kSuccess) return vex2::kWriteFailed;
  const auto look = [this] {
    return state_->IsDocument(*this) && GetLength() > HeaderLayout::kStatusAt ? vex2::kSuccess
                                                                              : vex2::kWriteFailed;
  };
  const int result = changeFile(path, look, [this] {
    Seek(HeaderLayout::kStatusAt, begin);
    Write(header_.acquisitionStatus, kCodeLength);
    state_->store.Barrier();
    return vex2::kSuccess;
  });
  return result == vex2::kSuccess ? vex2::kSuccess : vex2::kWriteFailed;
}

bool Vex2FileManager::IsAcquisitionZero() const {
  return hasStatus(header_, RunStatus::kNotStarted);
}
bool Vex2FileManager::IsAcquisitionProg() const {
  return hasStatus(header_, RunStatus::kInProgress);
}
bool Vex2FileManager::IsAcquisitionDone() const {
  return hasStatus(header_, RunStatus::kDone);
}
