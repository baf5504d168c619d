#include "lab/OwnModule.h"

#include <dlfcn.h>

#include <filesystem>

namespace vex2::lab {

namespace {

// Where the program or library is that this code is part of.
std::filesystem::path ownFolder() {
  Dl_info info{};
  static const char kHere = 0;
  if (::dladdr(&kHere, &info) == 0 || info.dli_fname == nullptr) return {};
  std::error_code error;
  auto path = std::filesystem::canonical(info.dli_fname, error);
  // Of a program that was found on the search path the system keeps only the name.
  if (error) path = std::filesystem::canonical("/proc/self/exe", error);
  return path.parent_path();
}

}  // namespace

OwnModule::OwnModule(const char* file) {
  const std::filesystem::path folder = ownFolder();
  for (const auto& place : {folder / file, folder / VEX2_LIBRARY_FOLDER / file}) {
    // Its libraries are not made to be unloaded.
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
