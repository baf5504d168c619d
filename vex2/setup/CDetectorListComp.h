#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2Detector.h"

/// The detectors in a document, "DETL": a list of "DETX" components.
class VEX2_API CDetectorListComp final : public CContainerComp {
 public:
  /// Makes an empty list.
  CDetectorListComp();

  /// Adds a detector at the end. If `replacing`, first removes the detector with the same name. If
  /// `detector` has no name, adds nothing, and the host shows a message.
  void Add(const Vex2Detector& detector, bool replacing);
  /// The index, from 0, of the first detector with this name; -1 if there is none. The comparison
  /// is case-sensitive and ignores characters after a zero byte. The empty name finds no detector.
  int Find(const CString& name) const;
  /// Copies the detector at `index`, from 0, into `detector`. If there is none, clears `detector`.
  void CopyTo(int index, Vex2Detector& detector) const;
};
