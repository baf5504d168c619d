#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/framework/MapOf.h"

/// A map from texts to pointers to objects; see `vex2::MapOf`.
class VEX2_API CMapStringToOb : public CObject, public vex2::MapOf<CObject*> {
 public:
  using MapOf::MapOf;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();
};
