#pragma once

#include <string_view>

#include "vex2/container/CContainerComp.h"

/// The dyes that a run requires, "RqDy": a list of their names.
class VEX2_API CRequiredDyesComp final : public CContainerComp {
 public:
  /// Without names.
  CRequiredDyesComp();
  /// With the `count` names in `dyes`, which may be null; empty ones are left out.
  CRequiredDyesComp(const CString* dyes, int count);

  /// Adds a name at the end, an empty one not.
  void Add(const CString& dye);
  /// The index from 0 of the first dye of this name, -1 when there is none. All characters count,
  /// case included. No dye has the empty name.
  int Find(const CString& dye) const;
  /// The name at `index` from 0, empty where none is; valid until the list changes.
  std::string_view GetName(int index) const;
};
