#pragma once

#include "vex2/framework/CString.h"
#include "vex2/framework/CWnd.h"
#include "vex2/framework/Export.h"

/// Lets the user choose a document with the host's file-open dialog, which serves saving as well.
///
/// `path` is emptied first. On success it receives the whole path, and `folder`, when the chosen
/// file's title occurs in the path after its first character, everything before it with the
/// trailing separator. `filter` is pairs of description and pattern, each text ended by a zero
/// byte, the whole by one more. `initialName` (of which the first 260 characters count) and
/// `initialFolder` may be null. `flag` is not used. False when the user cancelled, and
/// where memory runs out.
VEX2_API bool ChooseDocumentFile(CWnd* owner, CString& path, CString& folder, const char* filter,
                                 const char* initialName, const char* defaultExtension,
                                 const char* initialFolder, const char* title, int flag);
