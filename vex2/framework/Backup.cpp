#include "vex2/framework/Backup.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "vex2/framework/CFile.h"
#include "vex2/framework/CFileException.h"
#include "vex2/framework/FileSystem.h"

namespace vex2 {
namespace {

// Creates an empty file under the first free backup name, and returns its path.
std::string makeBackup(const std::string& path, mode_t permissions) {
  auto& files = CurrentFileSystem();
  std::string backup = path + ".backup";
  for (int number = 2;; ++number) {
    const int file =
        files.Open(backup.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, permissions);
    if (file >= 0) {
      files.Close(file);
      return backup;
    }
    if (file != -EEXIST) throw CFileException(-file, backup, 0, FileOperation::kCreate);
    backup = path + ".backup-" + std::to_string(number);
  }
}

void openOrThrow(CFile& file, const std::string& path, unsigned mode) {
  CFileException reason;
  if (!file.Open(path.c_str(), mode | CFile::typeBinary, &reason)) throw reason;
}

void copyFile(CFile& source, const std::string& to) {
  CFile target;
  openOrThrow(target, to, CFile::modeWrite);
  for (auto bytes = source.Peek(CFile::kBufferSize); !bytes.empty();
       bytes = source.Peek(CFile::kBufferSize)) {
    target.Write(bytes.data(), bytes.size());
    source.Seek(static_cast<std::int64_t>(bytes.size()), CFile::current);
  }
  target.SyncData();
  target.Close();
  if (const int status = SyncFolderOf(to); status < 0)
    throw CFileException(-status, to, 0, FileOperation::kSync);
}

}  // namespace

LocatedFile LocateFile(const std::string& path) {
  LocatedFile file;
  file.path = ResolvedPath(path.c_str());
  struct stat info {};
  const int status = CurrentFileSystem().StatPath(path.c_str(), info);
  if (status == -ENOENT || status == -ENOTDIR) return file;
  if (status < 0) throw CFileException(-status, path, 0, FileOperation::kOpen);
  file.exists = true;
  file.isRegular = S_ISREG(info.st_mode);
  file.device = info.st_dev;
  file.number = info.st_ino;
  return file;
}

std::string BackUpFile(const std::string& path) {
  CFile source;
  openOrThrow(source, path, CFile::modeRead);
  struct stat info {};
  if (const int status = CurrentFileSystem().StatPath(path.c_str(), info); status < 0) {
    throw CFileException(-status, path, 0, FileOperation::kOpen);
  }
  std::string backup = makeBackup(path, info.st_mode & 0777U);
  try {
    copyFile(source, backup);
  } catch (...) {
    CurrentFileSystem().Remove(backup.c_str());
    throw;
  }
  return backup;
}

}  // namespace vex2
