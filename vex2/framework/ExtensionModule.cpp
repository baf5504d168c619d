#include "vex2/framework/ExtensionModule.h"

#include <algorithm>
#include <mutex>
#include <set>

namespace vex2 {
namespace {

class ModuleList {
 public:
  bool Add(const ExtensionModule& module) {
    const std::lock_guard lock(mutex_);
    if (!isWellFormed(module) || !isNew(module)) return false;
    modules_.push_back(&module);
    return true;
  }

  void Remove(const ExtensionModule& module) {
    const std::lock_guard lock(mutex_);
    std::erase(modules_, &module);
  }

  const CRuntimeClass* Find(std::string_view name) {
    const std::lock_guard lock(mutex_);
    return findLocked(name);
  }

  std::vector<ExtensionModule> Copy() {
    const std::lock_guard lock(mutex_);
    std::vector<ExtensionModule> copies;
    for (const ExtensionModule* module : modules_) copies.push_back(*module);
    return copies;
  }

 private:
  static bool isWellFormed(const ExtensionModule& module) {
    std::set<std::string_view> names;
    const auto addsAName = [&](const CRuntimeClass* record) {
      return record != nullptr && names.insert(record->name).second;
    };
    return module.name != nullptr && *module.name != '\0' &&
           std::ranges::all_of(module.classes, addsAName);
  }

  bool isNew(const ExtensionModule& module) const {
    const std::string_view name = module.name;
    return std::ranges::none_of(modules_, [&](auto* known) { return name == known->name; }) &&
           std::ranges::none_of(module.classes,
                                [&](auto* record) { return findLocked(record->name) != nullptr; });
  }

  const CRuntimeClass* findLocked(std::string_view name) const {
    for (const ExtensionModule* module : modules_) {
      for (const CRuntimeClass* record : module->classes) {
        if (name == record->name) return record;
      }
    }
    return nullptr;
  }

  std::mutex mutex_;
  std::vector<const ExtensionModule*> modules_;
};

// Never destroyed, because modules unregister themselves when the system unloads them at exit.
ModuleList& modules() {
  static auto* const list = new ModuleList;
  return *list;
}

}  // namespace

bool RegisterModule(const ExtensionModule& module) {
  return modules().Add(module);
}

void UnregisterModule(const ExtensionModule& module) {
  modules().Remove(module);
}

const CRuntimeClass* FindRuntimeClass(std::string_view name) {
  return modules().Find(name);
}

std::vector<ExtensionModule> RegisteredModules() {
  return modules().Copy();
}

}  // namespace vex2
