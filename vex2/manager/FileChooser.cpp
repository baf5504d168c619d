#include "vex2/manager/FileChooser.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "vex2/framework/Host.h"
#include "vex2/manager/OrNothing.h"

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
  return vex2::OrNothing([&] {
    vex2::ChooserRequest request;
    request.owner = owner;
    request.title = textOf(title);
    request.filter = filterText(filter);
    request.defaultExtension = textOf(defaultExtension);
    request.initialName = textOf(initialName).substr(0, kMaxInitialName);
    request.initialFolder = textOf(initialFolder);
    vex2::ChooserResult result;
    if (!vex2::GetHost()->ChooseFile(request, result)) return false;
    const auto place = result.title.empty() ? std::string::npos : result.path.find(result.title);
    CString chosen(std::string_view(result.path));
    if (place != std::string::npos && place > 0) {
      folder = CString(chosen.View().substr(0, place));
    }
    path = std::move(chosen);
    return true;
  });
}
