#pragma once

#include <memory>

#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/Export.h"

class CRQPlateComp;

/// The plates of a study, "MPLC", in the order in which they were added. Owns them.
///
/// The length grows by the plate's own record size, 10, for every plate that is added, and for
/// every plate that is read on top of the length in the file: it says nothing about the bytes that
/// follow, and a study that is read and saved again has a longer one. Other programs write it so.
class VEX2_API CMultiPlateComp final : public CContainerComp {
 public:
  CMultiPlateComp();
  ~CMultiPlateComp() override;

  /// Appends `plate`. False, and nothing changes, for null and for one more than 65535.
  bool AddPlate(std::unique_ptr<CRQPlateComp> plate);
  /// Deletes the first plate of this name. False when there is none.
  bool RemovePlate(const CString& name);

  /// Empties both lists and fills them with the plates' names and dates, pairwise, in order.
  void GetPlateLists(CStringList& names, CStringList& dates) const;
  /// The index, from 0, of the first plate of this name, byte for byte; -1 when there is none.
  int FindPlate(const CString& name) const;
  /// The plate at `index` from 0, owned by this; null for an index out of range.
  CRQPlateComp* GetPlateAt(int index) const;

  /// Reads as many plates as the count says. A record that is no plate ends it with -300, because
  /// nothing says where that record would end.
  int ReadChildren(CFile* file) override;
};
