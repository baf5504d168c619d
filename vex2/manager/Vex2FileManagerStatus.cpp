// How far the acquisition has got.

#include <cstring>
#include <string>

#include "vex2/framework/Host.h"
#include "vex2/manager/Vex2FileManager.h"

namespace {

constexpr std::size_t kStatusLength = 4;
constexpr std::uint64_t kStatusAt = 64;

}  // namespace

bool Vex2FileManager::hasStatus(std::string_view status) const {
  return std::string_view(header_.acquisitionStatus, kStatusLength) == status;
}

CString Vex2FileManager::GetAcquisitionStatus() const {
  return CString(std::string_view(header_.acquisitionStatus, kStatusLength));
}

int Vex2FileManager::SetAcquisitionStatus(const char* status) {
  const std::string_view given = status != nullptr ? status : "";
  if (given.size() != kStatusLength) {
    return guarded(vex2::kInvalidStatus, [given] {
      vex2::GetHost()->ShowMessage(
          "The Acquisition Status should be a string 4 characters long. The new value '" +
          std::string(given) + "' is invalid and won't be used.");
      return vex2::kInvalidStatus;
    });
  }
  std::memcpy(header_.acquisitionStatus, given.data(), kStatusLength);
  return vex2::kSuccess;
}

int Vex2FileManager::SetAcquisitionStatus(const char* path, const char* status) {
  if (SetAcquisitionStatus(status) != vex2::kSuccess) return vex2::kWriteFailed;
  const auto look = [this] {
    return IsVex2Format() && GetLength() > kStatusAt ? vex2::kSuccess : vex2::kWriteFailed;
  };
  const int result = changeFile(path, look, [this] {
    Seek(kStatusAt, begin);
    Write(header_.acquisitionStatus, kStatusLength);
    barrier();
    return vex2::kSuccess;
  });
  return result == vex2::kSuccess ? vex2::kSuccess : vex2::kWriteFailed;
}

bool Vex2FileManager::IsAcquisitionZero() const {
  return hasStatus("ZERO");
}
bool Vex2FileManager::IsAcquisitionProg() const {
  return hasStatus("PROG");
}
bool Vex2FileManager::IsAcquisitionDone() const {
  return hasStatus("DONE");
}
