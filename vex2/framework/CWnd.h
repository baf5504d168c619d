#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"

/// A window of the host. The library only passes it from its caller to the host's file chooser. A
/// host derives its own window class from this one and casts the pointer back.
class VEX2_API CWnd : public CObject {
 public:
  CWnd() = default;
  ~CWnd() override;
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();
};
