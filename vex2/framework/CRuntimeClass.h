#pragma once

#include <cstddef>
#include <memory>

#include "vex2/framework/Export.h"

class CObject;

/// The run-time record of one class: what a host needs to find it by name and to make an object
/// of it without knowing its type. Records are constants that live as long as their module.
struct VEX2_API CRuntimeClass {
  const char* name;                            ///< the class's name, never null
  std::size_t objectSize;                      ///< sizeof the class
  const CRuntimeClass* baseClass;              ///< record of the base class, null for CObject
  std::unique_ptr<CObject> (*createObject)();  ///< null when the class cannot be made by name

  /// Whether this class is `base` or derives from it. A null `base` gives false.
  bool IsDerivedFrom(const CRuntimeClass* base) const;

  /// Makes a default-constructed object, or null when the class cannot be made by name.
  std::unique_ptr<CObject> CreateObject() const;
};
