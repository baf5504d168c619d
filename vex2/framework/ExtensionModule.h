#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "vex2/framework/CRuntimeClass.h"
#include "vex2/framework/Export.h"

/// @file
/// The list of extension modules. These are libraries that add run-time classes to an application;
/// the application finds the classes here by name. A module registers itself when it is loaded and
/// unregisters itself when it is unloaded, see `LoadedModule.h`. The document library registers
/// itself as soon as it is in memory; in an application that is linked with it, this is before
/// `main`. All operations may be called from any thread.
namespace vex2 {

/// The name of a module and the records of its classes. The module owns both.
struct ExtensionModule {
  const char* name;  ///< of the module, unique among the registered ones
  std::span<const CRuntimeClass* const> classes;  ///< the records of its classes
};

/// Registers `module`, which must live until it is unregistered. Returns false and registers
/// nothing if the module has no name, one of its classes is null, two of its classes have the same
/// name, or a module or class with one of its names is already registered.
[[nodiscard]] VEX2_API bool RegisterModule(const ExtensionModule& module);

/// Unregisters this object. A different object with the same name stays registered.
VEX2_API void UnregisterModule(const ExtensionModule& module);

/// The registered class with this name, or null. Valid for as long as its module is registered.
VEX2_API const CRuntimeClass* FindRuntimeClass(std::string_view name);

/// The registered modules, in the order of their registration. Their names and records are valid as
/// long as the module is registered.
VEX2_API std::vector<ExtensionModule> RegisteredModules();

}  // namespace vex2
