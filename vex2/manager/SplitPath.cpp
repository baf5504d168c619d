#include "vex2/manager/SplitPath.h"

#include "vex2/framework/PathNames.h"

bool SplitPath(const CString& path, CString& folder, CString& title, CString& extension) {
  // `path` may be one of the three texts, so copy it before they are emptied.
  const CString kept = path;
  folder.Empty();
  title.Empty();
  extension.Empty();
  const std::string_view name = vex2::FileNameOf(kept.View());
  const std::size_t before = kept.View().size() - name.size();
  if (before < 2) return false;
  if (before > 2) folder = CString(kept.View().substr(0, before - 1));
  const auto dot = name.rfind('.');
  if (dot != std::string_view::npos && dot > 0) {
    title = CString(name.substr(0, dot));
    extension = CString(name.substr(dot + 1));
  }
  return true;
}
