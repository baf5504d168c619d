#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2Detector.h"

/// The detectors in a document, "DETL": a list of "DETX" components.
class VEX2_API CDetectorListComp final : public CContainerComp {
 public:
  /// Without detectors.
  CDetectorListComp();

  /// Adds a detector at the end; if `replacing`, first removes the one with the same name. A
  /// detector without a name is not added, and the host shows a message.
  void Add(const Vex2Detector& detector, bool replacing);
  /// The index, from 0, of the first detector with this name; -1 if there is none. The comparison
  /// is case-sensitive and ignores characters after a zero byte. The empty name finds no detector.
  int Find(const CString& name) const;
  /// Copies the detector at `index`, from 0, into `detector`, which is cleared if there is none.
  void CopyTo(int index, Vex2Detector& detector) const;
};
