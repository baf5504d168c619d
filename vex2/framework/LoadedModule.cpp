#include "vex2/framework/LoadedModule.h"

#include <dlfcn.h>

#include <memory>
#include <utility>

namespace vex2 {
namespace {

constexpr const char* kLoadName = "vex2ModuleLoad";
constexpr const char* kUnloadName = "vex2ModuleUnload";

using LoadEntry = bool (*)();
using UnloadEntry = void (*)();

struct CloseLibrary {
  void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

template <class Entry>
Entry findEntry(void* library, const char* name) {
  return reinterpret_cast<Entry>(dlsym(library, name));
}

}  // namespace

LoadedModule::LoadedModule(LoadedModule&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

LoadedModule& LoadedModule::operator=(LoadedModule&& other) noexcept {
  if (this != &other) {
    Unload();
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

bool LoadedModule::Load(const std::string& path, std::string& error) {
  Unload();
  if (path.empty()) {  // an empty path would open the program itself
    error = "no module is named";
    return false;
  }
  Library library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (library == nullptr) {
    error = dlerror();
    return false;
  }
  const auto load = findEntry<LoadEntry>(library.get(), kLoadName);
  const auto unload = findEntry<UnloadEntry>(library.get(), kUnloadName);
  if (load == nullptr || unload == nullptr) {
    error = path + ": has no entry point " + (load == nullptr ? kLoadName : kUnloadName);
    return false;
  }
  if (!load()) {
    error = path + ": the module refused to load: it, or a class of it, is registered already";
    return false;
  }
  handle_ = library.release();
  return true;
}

void LoadedModule::Unload() {
  if (handle_ == nullptr) return;
  const Library library(std::exchange(handle_, nullptr));
  findEntry<UnloadEntry>(library.get(), kUnloadName)();
}

}  // namespace vex2
