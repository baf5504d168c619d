#include "vex2/framework/CRuntimeClass.h"

#include "vex2/framework/CObject.h"

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
  if (base == nullptr) return false;
  for (const CRuntimeClass* ancestor = this; ancestor != nullptr; ancestor = ancestor->baseClass) {
    if (ancestor == base) return true;
  }
  return false;
}

std::unique_ptr<CObject> CRuntimeClass::CreateObject() const {
  return createObject != nullptr ? createObject() : nullptr;
}
