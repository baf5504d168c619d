#pragma once

#include <string>

#include "vex2/framework/Export.h"

namespace vex2 {

/// An extension module that is loaded for as long as this object lives.
///
/// A module is a shared library with two entry points:
///
///     extern "C" bool vex2ModuleLoad();    // registers the module, false when it cannot
///     extern "C" void vex2ModuleUnload();  // unregisters it
///
/// A library that the application is linked with may be loaded as well, by one object at a time:
/// unloading it then leaves it in memory.
///
/// A module must not be unloaded while objects of its classes exist. Different objects may be used
/// by different threads.
class VEX2_API LoadedModule {
 public:
  /// Nothing is loaded.
  LoadedModule() = default;
  ~LoadedModule() { Unload(); }
  LoadedModule(LoadedModule&& other) noexcept;
  LoadedModule& operator=(LoadedModule&& other) noexcept;

  /// Unloads what was loaded here before, opens the library at `path` and has it register itself.
  /// A path without a slash is searched for as the system's linker does. On failure, which
  /// includes a library whose registration is refused because it is loaded already, the library
  /// is closed again, nothing stays registered, and `error` is one line that tells why.
  [[nodiscard]] bool Load(const std::string& path, std::string& error);

  /// Has the module unregister itself and closes its library. Nothing happens when none is loaded.
  void Unload();

  bool IsLoaded() const { return handle_ != nullptr; }

 private:
  void* handle_ = nullptr;  // the linker's handle
};

}  // namespace vex2
