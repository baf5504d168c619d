// The library as an extension module: what vex2::LoadedModule calls when it loads and unloads us.
#include <array>

#include "vex2/framework/Export.h"
#include "vex2/framework/ExtensionModule.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace {

const vex2::ExtensionModule& thisModule() {
  static const std::array classes = {Vex2FileManager::ClassRecord(),
                                     Vex2FileManagerComponent::ClassRecord()};
  static const vex2::ExtensionModule module{"vex2", classes};
  return module;
}

}  // namespace

extern "C" VEX2_API bool vex2ModuleLoad() {
  return vex2::RegisterModule(thisModule());
}

extern "C" VEX2_API void vex2ModuleUnload() {
  vex2::UnregisterModule(thisModule());
}
