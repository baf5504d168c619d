#pragma once

#include <memory>

#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/Export.h"

class CRQPlateComp;

/// The plates of a study, "MPLC", in the order in which they were added. Owns the plates. Every
/// plate that is added increases the length by 10, the size of a plate's own record. Reading a
/// study also adds 10 for every plate, to the length that the file declares. So the length grows
/// each time that a study is read and saved, and it does not equal the number of bytes in the body.
/// Other programs write the same length.
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

  /// Reads as many plates as the count says. Stops with -300 at a record that is not a plate,
  /// because the end of that record cannot be found.
  int ReadChildren(CFile* file) override;
};
