#pragma once

#include "vex2/framework/CRuntimeClass.h"
#include "vex2/framework/Export.h"

/// The base of every class that a host may hold in the framework's lists and maps.
///
/// The order of the five virtual operations is part of the binary interface: run-time class,
/// destructor, serialise, check, dump. Derived classes add their own after these.
class VEX2_API CObject {
 public:
  /// The record of the object's class. Owned by the module that defines the class.
  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CObject();

  /// A hook for storing objects, which does nothing: documents have their own format.
  virtual void Serialize();
  /// A hook for checks, which does nothing.
  virtual void AssertValid() const;
  /// A hook for dumps, which does nothing.
  virtual void Dump() const;

  /// Whether the object's class is `base` or derives from it.
  bool IsKindOf(const CRuntimeClass* base) const;

  /// The record of CObject itself.
  static const CRuntimeClass* ClassRecord();

 protected:
  CObject() = default;
  /// Copies nothing: the base class has no content.
  CObject(const CObject&) = default;
  /// Assigns nothing: the base class has no content.
  CObject& operator=(const CObject&) = default;
};
