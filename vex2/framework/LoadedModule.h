#pragma once

#include <string>

#include "vex2/framework/Export.h"

namespace vex2 {

/// An extension module that stays loaded as long as this object lives.
///
/// A module is a shared library with two entry points:
///
///     extern "C" bool vex2ModuleLoad();    // registers the module, false if it cannot
///     extern "C" void vex2ModuleUnload();  // unregisters it
/// A library that the application is linked with may also be loaded, by one object at a time.
/// Unloading it leaves it in memory.
///
/// A module must not be unloaded while objects of its classes exist. Different objects may be used
/// by different threads.
class VEX2_API LoadedModule {
 public:
  /// Nothing is loaded.
  LoadedModule() = default;
  /// Unloads the module.
  ~LoadedModule() { Unload(); }
  /// Takes the module of `other`, which holds none afterwards.
  LoadedModule(LoadedModule&& other) noexcept;
  /// Unloads the module that this object holds, and takes the module of `other`, which holds none
  /// afterwards.
  LoadedModule& operator=(LoadedModule&& other) noexcept;

  /// Unloads the module that this object holds, opens the library at `path` and calls its entry
  /// point, which registers it. The system's linker searches for a path without a slash. Returns
  /// false on failure, even if the registration is refused because the module is already loaded:
  /// then the library is closed, nothing stays registered, and `error` is one line that says why.
  [[nodiscard]] bool Load(const std::string& path, std::string& error);

  /// Calls the module's `vex2ModuleUnload`, which unregisters it, and closes the library. Does
  /// nothing if no module is loaded.
  void Unload();

  /// Whether a module is loaded.
  bool IsLoaded() const { return handle_ != nullptr; }

 private:
  void* handle_ = nullptr;  // the linker's handle
};

}  // namespace vex2
