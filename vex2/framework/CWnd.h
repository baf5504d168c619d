#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"

/// A window of the host. The library never looks inside one: it takes it from its caller and hands
/// it to the host's file chooser, so a host derives its own window from this and casts it back.
class VEX2_API CWnd : public CObject {
 public:
  CWnd() = default;
  ~CWnd() override;
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();
};
