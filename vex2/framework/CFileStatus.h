#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/CTime.h"
#include "vex2/framework/Export.h"

/// What the system knows of an open file.
struct VEX2_API CFileStatus {
  CTime modificationTime;  ///< when its content last changed
  std::uint64_t size = 0;  ///< bytes
  CString fullName;        ///< the path it was opened with
};
