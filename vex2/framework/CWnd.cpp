#include "vex2/framework/CWnd.h"

#include "vex2/framework/DescribeClass.h"

CWnd::~CWnd() = default;

const CRuntimeClass* CWnd::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CWnd::ClassRecord() {
  static const auto record = vex2::DescribeClass<CWnd>("CWnd", CObject::ClassRecord());
  return &record;
}
