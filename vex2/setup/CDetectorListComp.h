#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2Detector.h"

/// The detectors in a document, "DETL": a list of "DETX" components.
class VEX2_API CDetectorListComp final : public CContainerComp {
 public:
  /// Without detectors.
  CDetectorListComp();

  /// Puts a detector at the end, in place of one of its name when `replacing`. One without a name
  /// is reported to the user and not added.
  void Add(const Vex2Detector& detector, bool replacing);
  /// The index from 0 of the first detector of this name, -1 when there is none. Case counts; what
  /// follows a zero byte does not. No detector has the empty name.
  int Find(const CString& name) const;
  /// Copies the detector at `index` from 0 into `detector`, which becomes a new one where none is.
  void CopyTo(int index, Vex2Detector& detector) const;
};
