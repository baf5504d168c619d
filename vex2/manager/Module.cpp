// The library as an extension module: its entry in the list of modules, and the entry points that
// vex2::LoadedModule calls.
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

// The library is registered when it comes into memory, because a host that is linked with it makes
// no other call. `isHeld` is true while a LoadedModule holds the library; only one can.
struct Entry {
  std::mutex mutex;
  bool isMade = false;
  bool isHeld = false;
};

// Needs no code to initialise or destroy it, so that the entry points can be called at any time.
constinit Entry entry;

}  // namespace

namespace vex2 {

ModuleEntry::ModuleEntry() noexcept {
  try {
    const std::lock_guard lock(entry.mutex);
    entry.isMade = RegisterModule(thisModule());
  } catch (const std::bad_alloc&) {
    // vex2ModuleLoad tries again and reports a failure.
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
  // The library stays registered as long as it is in memory. A host that is linked with it keeps it
  // there.
  const std::lock_guard lock(entry.mutex);
  entry.isHeld = false;
}
