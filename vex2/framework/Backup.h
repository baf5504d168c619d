#pragma once

#include <cstdint>
#include <string>

#include "vex2/framework/Export.h"

namespace vex2 {

/// Which file a path leads to.
struct LocatedFile {
  std::string path;        ///< with symbolic links resolved
  bool exists = false;     ///< what follows says nothing of a file that does not
  bool isRegular = false;  ///< neither folder, pipe nor device
  std::uint64_t device = 0;
  std::uint64_t number = 0;  ///< on its device: the same for all hard links to the file
};

/// The file that `path` leads to. Throws `CFileException` when the system does not say.
VEX2_API LocatedFile LocateFile(const std::string& path);

/// Copies the file at `path` to a new file beside it, which is on the disk when this returns:
/// "PATH.backup" or, where that is taken, "PATH.backup-2", "PATH.backup-3", and so on; no file is
/// overwritten. The copy has the file's permissions. Returns the copy's path. Throws
/// `CFileException` when the file cannot be read or the copy not be made, and then there is none.
VEX2_API std::string BackUpFile(const std::string& path);

}  // namespace vex2
