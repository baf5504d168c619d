#pragma once

#include <memory>

#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/Export.h"

class CRQPlateComp;

/// The plates of a study, "MPLC", in the order in which they were added. Owns them. The length
/// increases by 10, the size of a plate's own record, for every plate that is added. For every
/// plate that is read, it increases on top of the length in the file. It says nothing about the
/// bytes that follow, and grows each time that a study is read and saved. Other programs write the
/// same length.
class VEX2_API CMultiPlateComp final : public CContainerComp {
 public:
  CMultiPlateComp();
  ~CMultiPlateComp() override;

  /// Appends `plate`. Returns false and changes nothing if `plate` is null or there are 65535
  /// plates.
  bool AddPlate(std::unique_ptr<CRQPlateComp> plate);
  /// Deletes the first plate with this name. Returns false if there is none.
  bool RemovePlate(const CString& name);

  /// Replaces the content of both lists by the names and dates of the plates, in the same order.
  void GetPlateLists(CStringList& names, CStringList& dates) const;
  /// The index, from 0, of the first plate with exactly this name; -1 if there is none.
  int FindPlate(const CString& name) const;
  /// The plate at `index`, from 0, owned by this list; null for an index out of range.
  CRQPlateComp* GetPlateAt(int index) const;

  /// Reads as many plates as the count says. A record that is not a plate ends the reading with
  /// -300, because nothing says where that record ends.
  int ReadChildren(CFile* file) override;
};
