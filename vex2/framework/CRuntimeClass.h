#pragma once

#include <cstddef>
#include <memory>

#include "vex2/framework/Export.h"

class CObject;

/// The run-time record of one class. A host uses it to find the class by name and to create objects
/// without knowing the type. Records are constants that live as long as their module.
struct VEX2_API CRuntimeClass {
  const char* name;                            ///< the class's name, never null
  std::size_t objectSize;                      ///< sizeof the class
  const CRuntimeClass* baseClass;              ///< record of the base class, null for CObject
  std::unique_ptr<CObject> (*createObject)();  ///< null if objects cannot be created by name

  /// Whether this class is `base` or derives from it. False if `base` is null.
  bool IsDerivedFrom(const CRuntimeClass* base) const;

  /// Creates a default-constructed object; null if objects of the class cannot be created by name.
  std::unique_ptr<CObject> CreateObject() const;
};
