#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/framework/ListOf.h"

/// A list of pointers to objects; see `vex2::ListOf`.
class VEX2_API CObList : public CObject, public vex2::ListOf<CObject*> {
 public:
  using ListOf::ListOf;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();
};
