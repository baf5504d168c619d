#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/CBackgroundComp.h"
#include "vex2/setup/CPureDyeComp.h"

/// The calibration in a document, "CALI": a list of at most one "PDYE" and at most one "BKGD".
class VEX2_API CCalibrationComp final : public CContainerComp {
 public:
  /// Makes a list with a child for each record that is not null.
  explicit CCalibrationComp(const Vex2PureDye* pureDye = nullptr,
                            const Vex2BGC* background = nullptr);

  /// The first child of the class `Component`, owned by the list; null if there is none.
  template <typename Component>
  Component* Find() const {
    return dynamic_cast<Component*>(FindChild(Component::kTag));
  }
  /// The index, from 0, of the first child with this tag; -1 if there is none.
  int FindIndex(std::string_view tag) const;
  /// Deletes the first child with this tag. Returns false if there is none.
  bool Remove(std::string_view tag);
};
