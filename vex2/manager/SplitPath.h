#pragma once

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// Takes a path apart where plates get their names: `title` is the file's name without its
/// extension. All three are emptied first. A name counts only behind a folder: without a
/// separator, or with none but the path's first character, all stay empty. A name without an
/// extension, and one that begins with its only dot, gives no title. False without such a
/// separator.
VEX2_API bool SplitPath(const CString& path, CString& folder, CString& title, CString& extension);
