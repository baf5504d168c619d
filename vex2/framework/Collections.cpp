// The lists and maps are templates; only their run-time classes need a source file.

#include "vex2/framework/CMapStringToOb.h"
#include "vex2/framework/CObList.h"
#include "vex2/framework/CPtrArray.h"
#include "vex2/framework/CPtrList.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/DescribeClass.h"

const CRuntimeClass* CMapStringToOb::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CMapStringToOb::ClassRecord() {
  static const auto record =
      vex2::DescribeClass<CMapStringToOb>("CMapStringToOb", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CObList::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CObList::ClassRecord() {
  static const auto record = vex2::DescribeClass<CObList>("CObList", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CPtrArray::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CPtrArray::ClassRecord() {
  static const auto record = vex2::DescribeClass<CPtrArray>("CPtrArray", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CPtrList::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CPtrList::ClassRecord() {
  static const auto record = vex2::DescribeClass<CPtrList>("CPtrList", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CStringList::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CStringList::ClassRecord() {
  static const auto record =
      vex2::DescribeClass<CStringList>("CStringList", CObject::ClassRecord());
  return &record;
}
