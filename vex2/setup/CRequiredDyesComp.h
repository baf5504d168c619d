#pragma once

#include <string_view>

#include "vex2/container/CContainerComp.h"

/// The dyes that a run requires, "RqDy": a list of their names.
class VEX2_API CRequiredDyesComp final : public CContainerComp {
 public:
  /// Makes an empty list.
  CRequiredDyesComp();
  /// Makes a list of the `count` names in `dyes`, which may be null. Leaves out empty names.
  CRequiredDyesComp(const CString* dyes, int count);

  /// Adds a name at the end; an empty name is not added.
  void Add(const CString& dye);
  /// The index, from 0, of the first dye with this name; -1 if there is none. Compares all
  /// characters, case-sensitive. The empty name finds no dye.
  int Find(const CString& dye) const;
  /// The name at `index`, from 0; empty if there is none. Valid until the list changes.
  std::string_view GetName(int index) const;
};
