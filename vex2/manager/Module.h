#pragma once

namespace vex2 {

/// The library's entry in the list of extension modules, for as long as the library is in memory.
/// There is one, beside the code that every manager needs, so that it is part of every program that
/// names a manager, also of one that is linked statically. Internal.
class ModuleEntry {
 public:
  ModuleEntry() noexcept;
  ~ModuleEntry();
  ModuleEntry(const ModuleEntry&) = delete;
  ModuleEntry& operator=(const ModuleEntry&) = delete;
};

}  // namespace vex2
