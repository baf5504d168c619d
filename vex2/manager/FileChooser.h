#pragma once

#include "vex2/framework/CString.h"
#include "vex2/framework/CWnd.h"
#include "vex2/framework/Export.h"

/// Lets the user choose a document with the host's file-open dialog, which is also used for saving.
///
/// Empties `path` first. On success, `path` receives the whole path. If the title of the chosen
/// file occurs in the path after its first character, `folder` receives everything before it, with
/// the trailing separator; otherwise `folder` is unchanged. `filter` is a list of pairs of
/// description and pattern: a zero byte ends each text, and one more ends the list. `initialName`,
/// of which only the first 260 characters are used, and `initialFolder` may be null. `flag` is not
/// used. Returns false if the user cancelled or memory runs out.
VEX2_API bool ChooseDocumentFile(CWnd* owner, CString& path, CString& folder, const char* filter,
                                 const char* initialName, const char* defaultExtension,
                                 const char* initialFolder, const char* title, int flag);
