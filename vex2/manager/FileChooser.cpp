#include "vex2/manager/FileChooser.h"

#include <cstring>
#include <string_view>

#include "vex2/framework/Host.h"

namespace {

constexpr std::size_t kMaxInitialName = 260;

std::string textOf(const char* text) {
  return text != nullptr ? text : "";
}

std::string filterText(const char* filter) {
  if (filter == nullptr) return {};
  const char* end = filter;
  while (*end != '\0') end += std::strlen(end) + 1;
  return {filter, end + 1};
}

}  // namespace

bool ChooseDocumentFile(CWnd* owner, CString& path, CString& folder, const char* filter,
                        const char* initialName, const char* defaultExtension,
                        const char* initialFolder, const char* title, int /*flag*/) {
  path.Empty();
  vex2::ChooserRequest request;
  request.owner = owner;
  request.title = textOf(title);
  request.filter = filterText(filter);
  request.defaultExtension = textOf(defaultExtension);
  request.initialName = textOf(initialName).substr(0, kMaxInitialName);
  request.initialFolder = textOf(initialFolder);
  vex2::ChooserResult result;
  if (!vex2::GetHost()->ChooseFile(request, result)) return false;
  path = CString(std::string_view(result.path));
  const auto place = result.title.empty() ? std::string::npos : result.path.find(result.title);
  if (place != std::string::npos && place > 0) {
    folder = CString(std::string_view(result.path).substr(0, place));
  }
  return true;
}
