#pragma once

#include <cstdint>
#include <string>

#include "vex2/framework/Export.h"

namespace vex2 {

/// The file to which a path leads.
struct LocatedFile {
  std::string path;          ///< with symbolic links resolved
  bool exists = false;       ///< if false, the following fields have no meaning
  bool isRegular = false;    ///< false for a folder, a pipe, a device and the like
  std::uint64_t device = 0;  ///< the device that holds the file
  std::uint64_t number = 0;  ///< the inode: the same for all hard links to the file
};

/// Returns the file to which `path` leads. Throws `CFileException` if the system returns an error.
VEX2_API LocatedFile LocateFile(const std::string& path);

/// Copies the file at `path` to a new file in the same folder. The copy is on the disk when this
/// returns. Its name is "PATH.backup" or, if that exists, "PATH.backup-2", "PATH.backup-3", and so
/// on; no file is overwritten. It has the permissions of the original. Returns the path of the
/// copy. Throws `CFileException` and leaves no copy if the file cannot be read or the copy cannot
/// be made.
VEX2_API std::string BackUpFile(const std::string& path);

}  // namespace vex2
