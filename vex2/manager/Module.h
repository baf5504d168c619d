#pragma once

namespace vex2 {

/// The library's entry in the list of extension modules, for as long as the library is in memory.
/// The only object is in a source file that every manager needs. So every program that uses a
/// manager has the entry, even if it is linked statically. Internal.
class ModuleEntry {
 public:
  ModuleEntry() noexcept;
  ~ModuleEntry();
  ModuleEntry(const ModuleEntry&) = delete;
  ModuleEntry& operator=(const ModuleEntry&) = delete;
};

}  // namespace vex2
