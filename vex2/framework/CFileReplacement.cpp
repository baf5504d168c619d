#include "vex2/framework/CFileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <utility>

#include "vex2/framework/FileSystem.h"

using vex2::CurrentFileSystem;
using vex2::FileOperation;

namespace {

bool isDanglingLink(const char* path) {
  struct stat link {};
  struct stat target {};
  return ::lstat(path, &link) == 0 && S_ISLNK(link.st_mode) && ::stat(path, &target) != 0;
}

// Whether a rename cannot work, but writing to the target may: no file can be created in the
// folder, or no file can be renamed over the target.
bool renameCannotServe(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == EBUSY || error == EXDEV;
}

}  // namespace

CFile::Replacement::~Replacement() {
  auto& files = CurrentFileSystem();
  if (!temporary.empty()) files.Remove(temporary.c_str());
  if (targetHandle >= 0) files.Close(targetHandle);
}

bool CFile::OpenReplacement(const char* path, CFileException* error) {
  Close();
  CFileException why;
  const bool exists = openLocked(path, O_WRONLY, true, &why);
  if (!exists && why.GetError() != ENOENT) {
    if (error != nullptr) *error = why;
    return false;
  }
  struct stat info {};
  const bool single =
      !exists || (CurrentFileSystem().Stat(handle_, info) >= 0 && regular_ && info.st_nlink == 1);
  if (single && !(path != nullptr && isDanglingLink(path))) {
    if (beginReplacement(path, exists, why)) return true;
    if (!renameCannotServe(why.GetError())) {
      releaseHandle();
      if (error != nullptr) *error = CFileException(why.GetError(), path, 0, why.GetOperation());
      return false;
    }
  }
  releaseHandle();
  if (!Open(path, modeWrite | modeCreate, error)) return false;
  replacement_ = std::make_unique<Replacement>();
  return true;
}

bool CFile::ReplaceOpenFile() {
  if (handle_ < 0 || replacement_ != nullptr) fail(FileOperation::kCreate, EBADF, 0);
  writeOut();
  struct stat info {};
  if (!regular_ || CurrentFileSystem().Stat(handle_, info) < 0 || info.st_nlink != 1) return false;
  CFileException why;
  const std::string path = path_;
  if (beginReplacement(path, true, why)) return true;
  if (renameCannotServe(why.GetError())) return false;
  throw why;
}

// On failure, the file that was open before is open again.
bool CFile::beginReplacement(const std::string& target, bool exists, CFileException& error) {
  const std::uint64_t length = length_;
  replacement_ = std::make_unique<Replacement>();
  replacement_->target = exists ? vex2::ResolvedPath(target.c_str()) : target;
  replacement_->targetHandle = std::exchange(handle_, -1);
  if (openTemporary(error)) {
    path_ = target;
    return true;
  }
  handle_ = std::exchange(replacement_->targetHandle, -1);
  length_ = length;
  replacement_.reset();
  return false;
}

void CFile::CopyReplaced(std::uint64_t count) {
  if (handle_ < 0 || replacement_ == nullptr || replacement_->targetHandle < 0) {
    fail(FileOperation::kRead, EBADF, 0);
  }
  const std::unique_ptr<std::uint8_t[]> bytes(new std::uint8_t[kBufferSize]);
  std::uint64_t done = 0;
  while (done < count) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(kBufferSize, count - done));
    const std::size_t got = readFrom(replacement_->targetHandle, bytes.get(), wanted, done);
    if (got == 0) break;
    Write(bytes.get(), got);
    done += got;
  }
}

bool CFile::openTemporary(CFileException& error) {
  static std::atomic<unsigned> count{0};
  auto& files = CurrentFileSystem();
  for (;;) {
    // The name does not contain the target's name, which may already have the maximum length.
    std::string path = vex2::FolderOf(replacement_->target) + ".vex2-save-" +
                       std::to_string(::getpid()) + "-" + std::to_string(count++);
    handle_ = files.Open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (handle_ == -EEXIST || handle_ == -EINTR) continue;
    if (handle_ < 0) {
      error = CFileException(-std::exchange(handle_, -1), path, 0, FileOperation::kCreate);
      return false;
    }
    replacement_->temporary = std::move(path);
    break;
  }
  regular_ = true;
  length_ = 0;
  position_ = 0;
  forgetBuffer();
  if (replacement_->targetHandle >= 0) {
    const int status = files.CopyAttributes(replacement_->targetHandle, handle_);
    if (status < 0) {
      releaseHandle();
      error = CFileException(-status, replacement_->temporary, 0, FileOperation::kCreate);
      return false;
    }
  }
  return true;
}

CFile::Identity CFile::CloseReplacement() {
  if (handle_ < 0 || replacement_ == nullptr) fail(FileOperation::kRename, EBADF, 0);
  Identity inPlace = identity_;
  try {
    writeOut();
    syncAll(handle_);
    if (!replacement_->temporary.empty() && putInPlace()) {
      struct stat info {};
      if (CurrentFileSystem().Stat(handle_, info) >= 0) inPlace = {info.st_dev, info.st_ino};
    }
  } catch (...) {
    Abort();
    throw;
  }
  Abort();
  return inPlace;
}

// Returns false if it copied the content into the target because the rename failed.
bool CFile::putInPlace() {
  auto& files = CurrentFileSystem();
  auto& replacement = *replacement_;
  const int status = files.Rename(replacement.temporary.c_str(), replacement.target.c_str());
  if (status < 0 && replacement.targetHandle >= 0 && renameCannotServe(-status)) {
    copyInto(replacement.targetHandle);
    return false;
  }
  if (status < 0) fail(FileOperation::kRename, -status, 0);
  replacement.temporary.clear();
  // Without this sync, a power failure may undo the rename; the old file is then still complete.
  if (const int synced = vex2::SyncFolderOf(replacement.target); synced < 0) {
    fail(FileOperation::kSync, -synced, 0);
  }
  return true;
}

void CFile::copyInto(int target) {
  position_ = 0;
  forgetBuffer();
  for (auto bytes = Peek(kBufferSize); !bytes.empty(); bytes = Peek(kBufferSize)) {
    writeAt(target, bytes.data(), bytes.size(), position_);
    position_ += bytes.size();
  }
  if (const int status = CurrentFileSystem().Truncate(target, length_); status < 0) {
    fail(FileOperation::kResize, -status, length_);
  }
  syncAll(target);
}

void CFile::syncAll(int handle) {
  int status = 0;
  do {
    status = CurrentFileSystem().SyncAll(handle);
  } while (status == -EINTR);
  if (status < 0 && regular_) fail(FileOperation::kSync, -status, 0);
}
