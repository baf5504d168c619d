#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "vex2/framework/CRuntimeClass.h"
#include "vex2/framework/Export.h"

/// The list of extension modules: libraries that add run-time classes to an application, which
/// finds them here by name. A module enters itself when it is loaded and leaves when it is
/// unloaded, see `LoadedModule.h`. The document library enters itself as soon as it is in memory:
/// for an application that is linked with it, before `main`. All operations may be called from any
/// thread.
namespace vex2 {

/// What a module says of itself. The name and the records belong to the module.
struct ExtensionModule {
  const char* name;
  std::span<const CRuntimeClass* const> classes;
};

/// Enters `module`, which must live until it is unregistered. False, and nothing is entered, when
/// it has no name, a class of it is null, two of its classes share a name, or a module or class
/// with one of its names is there already.
[[nodiscard]] VEX2_API bool RegisterModule(const ExtensionModule& module);

/// Takes out the very object that was registered; another one of the same name stays.
VEX2_API void UnregisterModule(const ExtensionModule& module);

/// The registered class with this name, or null. Valid for as long as its module is registered.
VEX2_API const CRuntimeClass* FindRuntimeClass(std::string_view name);

/// The registered modules, oldest first. What they point at is valid for as long as each one is
/// registered.
VEX2_API std::vector<ExtensionModule> RegisteredModules();

}  // namespace vex2
