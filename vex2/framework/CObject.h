#pragma once

#include "vex2/framework/CRuntimeClass.h"
#include "vex2/framework/Export.h"

/// The base of every class that a host may hold in the framework's lists and maps.
///
/// The order of the five virtual operations is part of the binary interface: run-time class,
/// destructor, serialise, check, dump. Derived classes add theirs after these.
class VEX2_API CObject {
 public:
  /// The record of the object's class. Owned by the module that defines the class.
  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CObject();

  /// A hook for storing objects, which the library leaves empty: documents have their own format.
  virtual void Serialize();
  /// A hook for checks, which the library leaves empty.
  virtual void AssertValid() const;
  /// A hook for dumps, which the library leaves empty.
  virtual void Dump() const;

  /// Whether the object's class is `base` or derives from it.
  bool IsKindOf(const CRuntimeClass* base) const;

  /// The record of CObject itself.
  static const CRuntimeClass* ClassRecord();

 protected:
  CObject() = default;
  /// An object has no content of its own to copy.
  CObject(const CObject&) = default;
  /// An object has no content of its own to assign.
  CObject& operator=(const CObject&) = default;
};
