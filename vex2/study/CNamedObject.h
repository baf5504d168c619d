#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// What a query list holds: an object that begins with the name of a detector.
class VEX2_API CNamedObject : public CObject {
 public:
  CNamedObject() = default;
  explicit CNamedObject(CString theName) : name(std::move(theName)) {}

  CString name;
};
