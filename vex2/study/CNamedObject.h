#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// An entry of a query list: an object with the name of a detector.
class VEX2_API CNamedObject : public CObject {
 public:
  CNamedObject() = default;
  /// Makes an entry with this name.
  explicit CNamedObject(CString theName) : name(std::move(theName)) {}

  CString name;  ///< of the detector
};
