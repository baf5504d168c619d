#pragma once

#include <memory>

#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

class Vex2FileManager;
class Vex2FileManagerComponent;

/// One plate of a study, "RQPl": in the file an empty list of components, followed by a whole plate
/// document. Owns the document. The length of the record covers only the list, so the end of the
/// record can be found only by reading the document.
class VEX2_API CRQPlateComp final : public CContainerComp {
 public:
  CRQPlateComp();
  ~CRQPlateComp() override;

  /// Makes the embedded plate: a copy of `plate` with `name` and `date` added as its last records.
  /// If memory runs out, throws `std::bad_alloc` and leaves the component unchanged.
  void SetPlate(const CString& name, const Vex2FileManager& plate, const CString& date);

  /// The name with which the plate was added or read.
  const CString& GetPlateName() const { return name_; }
  /// The time at which the plate's file was last changed, as the text with which the plate was
  /// added.
  const CString& GetLastModifiedDate() const { return date_; }
  /// The embedded plate, owned by this component; null if none was set or read.
  Vex2FileManagerComponent* GetPlate() const { return plate_.get(); }

  CComponent& Assign(const CComponent& source) override;
  int WriteChildren(CFile* file) override;
  int ReadChildren(CFile* file) override;

 private:
  CString name_;
  CString date_;
  std::unique_ptr<Vex2FileManagerComponent> plate_;
};
