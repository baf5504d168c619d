#include "lab/OwnModule.h"

#include <dlfcn.h>

#include <filesystem>

namespace vex2::lab {

namespace {

// The folder of the program or library that contains this code.
std::filesystem::path ownFolder() {
  Dl_info info{};
  static const char kHere = 0;
  if (::dladdr(&kHere, &info) == 0 || info.dli_fname == nullptr) return {};
  std::error_code error;
  auto path = std::filesystem::canonical(info.dli_fname, error);
  // If the program was found on the search path, the system gives only its name, without the
  // folder.
  if (error) path = std::filesystem::canonical("/proc/self/exe", error);
  return path.parent_path();
}

}  // namespace

OwnModule::OwnModule(const char* file) {
  const std::filesystem::path folder = ownFolder();
  for (const auto& place : {folder / file, folder / VEX2_LIBRARY_FOLDER / file}) {
    // The libraries that the module uses do not support being unloaded.
    handle_ = ::dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (handle_ != nullptr) return;
    std::error_code error;
    if (std::filesystem::exists(place, error)) problem_ = ::dlerror();
  }
}

void* OwnModule::find(const char* name) const {
  return handle_ != nullptr ? ::dlsym(handle_, name) : nullptr;
}

}  // namespace vex2::lab
