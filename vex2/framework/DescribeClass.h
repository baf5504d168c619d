#pragma once

#include <memory>
#include <type_traits>

#include "vex2/framework/CObject.h"
#include "vex2/framework/CRuntimeClass.h"

namespace vex2 {

/// Returns the run-time record of `Class`, which derives from the class with the record `base`.
/// Objects can be created by name if `Class` has a public default constructor.
template <class Class>
CRuntimeClass DescribeClass(const char* name, const CRuntimeClass* base) {
  CRuntimeClass record{name, sizeof(Class), base, nullptr};
  if constexpr (std::is_default_constructible_v<Class>) {
    record.createObject = [] { return std::unique_ptr<CObject>(std::make_unique<Class>()); };
  }
  return record;
}

}  // namespace vex2
