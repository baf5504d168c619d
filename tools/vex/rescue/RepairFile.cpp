// The writing part of a repair.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <vector>

#include "tools/vex/Errors.h"
#include "tools/vex/document/FileLayout.h"
#include "tools/vex/document/RawFile.h"
#include "tools/vex/rescue/Repair.h"
#include "vex2/framework/CFile.h"

namespace vex2::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kChunk = CFile::kBufferSize;
constexpr std::uint64_t kWordSize = 4;

// As the document's own permissions are, and never over a file that is there.
bool createNew(const std::string& path, mode_t mode) {
  const int file = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode);
  if (file < 0 && errno == EEXIST) return false;
  if (file < 0) throw SystemError(path, errno);
  ::close(file);
  return true;
}

void syncFolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  const int handle =
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;  // one that may not be read cannot be synced
  const bool isSynced = ::fsync(handle) == 0 || errno == EINVAL || errno == EBADF;
  const int error = errno;
  ::close(handle);
  if (!isSynced) throw SystemError(path, error);
}

void copy(const std::string& from, const std::string& to) {
  CFile source;
  OpenToRead(source, from);
  CFile target;
  CFileException reason;
  if (!target.Open(to.c_str(), CFile::modeWrite | CFile::typeBinary, &reason)) {
    throw SystemError(to, reason.GetError());
  }
  std::vector<std::uint8_t> bytes(kChunk);
  while (const std::size_t count = source.Read(bytes.data(), bytes.size())) {
    target.Write(bytes.data(), count);
  }
  target.SyncData();
  target.Close();
  syncFolderOf(to);
}

}  // namespace

std::string BackUp(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) throw SystemError(path, errno);
  std::string backup = path + ".backup";
  for (int number = 2; !createNew(backup, info.st_mode & 0777U); ++number) {
    backup = path + ".backup-" + std::to_string(number);
  }
  try {
    copy(path, backup);
  } catch (...) {
    ::unlink(backup.c_str());
    throw;
  }
  return backup;
}

void ApplyRepair(const RepairPlan& plan, const std::string& backup, const std::string& path) {
  CFile source;
  OpenToRead(source, backup);
  NewFile target(path);
  const std::uint64_t size = plan.newSize.value_or(plan.size);
  std::vector<std::uint8_t> bytes(kChunk);
  for (std::uint64_t done = 0; done < size;) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, size - done));
    if (source.Read(bytes.data(), count) != count) {
      throw Error(ExitCode::kSystem, backup, "it changed while it was read", done);
    }
    target.Write(bytes.data(), count);
    done += count;
  }
  for (const RepairPlan::Patch& patch : plan.patches) {
    if (patch.offset + kWordSize > size) continue;
    const auto word = LongBytes(patch.after);
    target.Seek(static_cast<std::int64_t>(patch.offset), CFile::begin);
    target.Write(word.data(), word.size());
  }
  target.PutInPlace();
}

}  // namespace vex2::tool
