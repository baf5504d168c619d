// The library as an extension module: its entry in the list of modules, and what vex2::LoadedModule
// calls when it loads and unloads us.
#include "vex2/manager/Module.h"

#include <array>
#include <mutex>
#include <new>

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

// The entry is made when the library comes into memory: for a host that is linked with it, that is
// the only time it hears of us. LoadedModule comes later, or never, and holds us at most once.
struct Entry {
  std::mutex mutex;
  bool isMade = false;
  bool isHeld = false;
};

// Needs no code to be made or destroyed, so that the entry points can be called at any time.
constinit Entry entry;

}  // namespace

namespace vex2 {

ModuleEntry::ModuleEntry() noexcept {
  try {
    const std::lock_guard lock(entry.mutex);
    entry.isMade = RegisterModule(thisModule());
  } catch (const std::bad_alloc&) {
    // Loading as a module tries again, and tells.
  }
}

ModuleEntry::~ModuleEntry() {
  UnregisterModule(thisModule());
}

}  // namespace vex2

extern "C" VEX2_API bool vex2ModuleLoad() {
  const std::lock_guard lock(entry.mutex);
  if (!entry.isMade) entry.isMade = vex2::RegisterModule(thisModule());
  if (!entry.isMade || entry.isHeld) return false;
  entry.isHeld = true;
  return true;
}

extern "C" VEX2_API void vex2ModuleUnload() {
  // The entry goes with the library, which a host that is linked with it keeps in memory.
  const std::lock_guard lock(entry.mutex);
  entry.isHeld = false;
}
