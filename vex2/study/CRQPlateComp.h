#pragma once

#include <memory>

#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

class Vex2FileManager;
class Vex2FileManagerComponent;

/// One plate of a study, "RQPl": a whole plate document behind an empty list of components. Owns
/// the document. The record's length covers the list alone, so nothing but reading the document
/// tells where it ends.
class VEX2_API CRQPlateComp final : public CContainerComp {
 public:
  CRQPlateComp();
  ~CRQPlateComp() override;

  /// Makes a copy of `plate`, to which `name` and `date` are added as its last records, the
  /// embedded plate. A copy that fails for want of memory throws and leaves the component as it
  /// was.
  void SetPlate(const CString& name, const Vex2FileManager& plate, const CString& date);

  /// The name that the plate was added under or read with.
  const CString& GetPlateName() const { return name_; }
  /// When the plate's own file was last changed, as whoever added it wrote it.
  const CString& GetLastModifiedDate() const { return date_; }
  /// The embedded plate, owned by this; null where none was set or read.
  Vex2FileManagerComponent* GetPlate() const { return plate_.get(); }

  CComponent& Assign(const CComponent& source) override;
  int WriteChildren(CFile* file) override;
  int ReadChildren(CFile* file) override;

 private:
  CString name_;
  CString date_;
  std::unique_ptr<Vex2FileManagerComponent> plate_;
};
