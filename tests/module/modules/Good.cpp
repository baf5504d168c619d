// A module as the author of an application would write it.
#include <array>

#include "vex2/framework/CWnd.h"
#include "vex2/framework/DescribeClass.h"
#include "vex2/framework/ExtensionModule.h"

namespace {

class GoodWindow : public CWnd {
 public:
  const CRuntimeClass* GetRuntimeClass() const override { return ClassRecord(); }
  static const CRuntimeClass* ClassRecord() {
    static const auto record = vex2::DescribeClass<GoodWindow>("GoodWindow", CWnd::ClassRecord());
    return &record;
  }
};

const vex2::ExtensionModule& module() {
  static const std::array classes = {GoodWindow::ClassRecord()};
  static const vex2::ExtensionModule record{"good", classes};
  return record;
}

}  // namespace

extern "C" VEX2_API bool vex2ModuleLoad() {
  return vex2::RegisterModule(module());
}
extern "C" VEX2_API void vex2ModuleUnload() {
  vex2::UnregisterModule(module());
}
