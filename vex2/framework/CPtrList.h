#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/framework/ListOf.h"

/// A list of untyped pointers; see `vex2::ListOf`.
class VEX2_API CPtrList : public CObject, public vex2::ListOf<void*> {
 public:
  using ListOf::ListOf;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();
};
