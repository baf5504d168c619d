#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/CTime.h"
#include "vex2/framework/Export.h"

/// The attributes of an open file, as the system reports them.
struct VEX2_API CFileStatus {
  CTime modificationTime;  ///< when its content last changed
  std::uint64_t size = 0;  ///< bytes
  CString fullName;        ///< the path it was opened with
};
