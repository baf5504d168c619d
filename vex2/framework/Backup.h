#pragma once

#include <string>

#include "vex2/framework/Export.h"

namespace vex2 {

/// Copies the file at `path` to a new file beside it, which is on the disk when this returns:
/// "PATH.backup" or, where that is taken, "PATH.backup-2", "PATH.backup-3", and so on; no file is
/// overwritten. The copy has the file's permissions. Returns the copy's path. Throws
/// `CFileException` when the file cannot be read or the copy not be made, and then there is none.
VEX2_API std::string BackUpFile(const std::string& path);

}  // namespace vex2
