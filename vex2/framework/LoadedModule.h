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
/// A library that the application is linked with may also be loaded, but only by one object at a
/// time; it stays in memory after it is unloaded.
///
/// A module must not be unloaded while objects of its classes exist. Different objects may be used
/// by different threads.
class VEX2_API LoadedModule {
 public:
  /// An object that holds no module.
  LoadedModule() = default;
  /// Unloads the module.
  ~LoadedModule() { Unload(); }
  /// Takes the module of `other`, which then holds none.
  LoadedModule(LoadedModule&& other) noexcept;
  /// Unloads the module of this object, and takes the module of `other`, which then holds none.
  LoadedModule& operator=(LoadedModule&& other) noexcept;

  /// Unloads the module of this object, opens the library at `path` and calls its entry point,
  /// which registers the module. If `path` has no slash, the system's linker searches for it.
  /// Returns false on failure, for example if the registration is refused because the module is
  /// already loaded. Then the library is closed, this call leaves nothing registered, and `error`
  /// is one line that gives the reason.
  [[nodiscard]] bool Load(const std::string& path, std::string& error);

  /// Calls the module's `vex2ModuleUnload`, which unregisters the module, and closes the library.
  /// Does nothing if no module is loaded.
  void Unload();

  /// Whether a module is loaded.
  bool IsLoaded() const { return handle_ != nullptr; }

 private:
  void* handle_ = nullptr;  // the linker's handle
};

}  // namespace vex2
