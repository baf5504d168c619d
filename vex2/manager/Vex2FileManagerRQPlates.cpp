// Reading the file of a plate that is to be added to a study.

#include <array>
#include <utility>

#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"

using vex2::kSuccess;

namespace {

constexpr char kPlatesFilter[] = "RQ Plate(s)\0*.vex\0All Files\0*.*\0";
constexpr const char* kDateFormat = "%b %d, %Y %I:%M %p";

}  // namespace

bool Vex2FileManager::RQSOpenFile(CWnd* /*owner*/, CString& /*path*/, CString& /*folder*/,
                                  const char* /*filter*/, const char* /*initialName*/,
                                  const char* /*defaultExtension*/, const char* /*initialFolder*/,
                                  const char* /*title*/, int /*flag*/) {
  return false;
}

int Vex2FileManager::ReadRQPFromFile(CWnd* parent, const char* path, bool choose,
                                     CString& lastModified) {
  const vex2::Operation operation(state_->store);
  CString chosen;
  if (path == nullptr || choose) {
    CString folder;
    if (!RQSOpenFile(parent, chosen, folder, kPlatesFilter, nullptr, "vex", nullptr,
                     "Select RQ Plate(s)", 1)) {
      return vex2::kCancelled;
    }
    path = chosen.GetString();
  }
  CString before;
  const int copied = attempt(vex2::kReadFailed, [&] {
    before = state_->store.Path();
    return kSuccess;
  });
  if (copied != kSuccess || SafeOpen(path, 0, 0) == 0) return vex2::kReadFailed;
  const int status =
      guardedFile(vex2::kReadFailed, [&] { return state_->ReadStudyPlate(*this, lastModified); });
  // A refused file leaves the document unchanged, including its path.
  if (status == vex2::kPlateNotADocument || status == vex2::kPlateOfOtherKind) {
    state_->store.SetPath(std::move(before));
  }
  return status;
}

int Vex2FileManager::State::ReadStudyPlate(Vex2FileManager& manager, CString& lastModified) {
  // If the file cannot be read, throw here, before it is taken for a file of another format.
  std::array<char, vex2::kTagLength> magic{};
  static_cast<void>(manager.Read(magic.data(), magic.size()));
  if (!IsDocument(manager)) return vex2::kPlateNotADocument;
  if (!manager.IsKestorFile()) return vex2::kPlateOfOtherKind;
  const int status = manager.ReadComponentFile(nullptr);
  if (CFileStatus file; manager.GetStatus(file))
    lastModified = file.modificationTime.Format(kDateFormat);
  return status;
}
