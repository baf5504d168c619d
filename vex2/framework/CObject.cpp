#include "vex2/framework/CObject.h"

CObject::~CObject() = default;

const CRuntimeClass* CObject::GetRuntimeClass() const {
  return ClassRecord();
}

const CRuntimeClass* CObject::ClassRecord() {
  static constexpr CRuntimeClass kRecord{"CObject", sizeof(CObject), nullptr, nullptr};
  return &kRecord;
}

void CObject::Serialize() {}

void CObject::AssertValid() const {}

void CObject::Dump() const {}

bool CObject::IsKindOf(const CRuntimeClass* base) const {
  return GetRuntimeClass()->IsDerivedFrom(base);
}
