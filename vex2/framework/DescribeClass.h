#pragma once

#include <memory>
#include <type_traits>

#include "vex2/framework/CObject.h"
#include "vex2/framework/CRuntimeClass.h"

namespace vex2 {

/// The run-time record of `Class`, which derives from the class whose record is `base`. An object
/// of it can be made by name where it has a public default constructor.
template <class Class>
CRuntimeClass DescribeClass(const char* name, const CRuntimeClass* base) {
  CRuntimeClass record{name, sizeof(Class), base, nullptr};
  if constexpr (std::is_default_constructible_v<Class>) {
    record.createObject = [] { return std::unique_ptr<CObject>(std::make_unique<Class>()); };
  }
  return record;
}

}  // namespace vex2
