#pragma once

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// Splits the path of a plate's file, which gives the plate its name: `folder` has no separator at
/// its end, `title` is the file's name without its extension, and `extension` has no dot. Empties
/// `folder`, `title` and `extension` first; `path` may be one of them. Returns false, and all three
/// stay empty, if the path has no separator or only its first character is one. If the name has no
/// extension, or its only dot is its first character, `title` and `extension` stay empty. Sic:
/// `folder` also stays empty for a folder of one character, as in "a/x.vex".
VEX2_API bool SplitPath(const CString& path, CString& folder, CString& title, CString& extension);
