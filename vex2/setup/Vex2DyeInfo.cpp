#include "vex2/setup/Vex2DyeInfo.h"

#include "vex2/framework/DescribeClass.h"

const CRuntimeClass* Vex2DyeInfo::ClassRecord() {
  static const CRuntimeClass record =
      vex2::DescribeClass<Vex2DyeInfo>("Vex2DyeInfo", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* Vex2DyeInfo::GetRuntimeClass() const {
  return ClassRecord();
}
