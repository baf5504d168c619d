#pragma once

#include <utility>
#include <vector>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"
#include "vex2/study/CMatrix.h"

/// A matrix with a row for each detector.
class VEX2_API CDetectorMatrix : public CMatrix {
 public:
  CDetectorMatrix() = default;
  /// A row of `columns` zeros for each name.
  CDetectorMatrix(std::vector<CString> names, int columns)
      : CMatrix(static_cast<int>(names.size()), columns), names_(std::move(names)) {}

  /// The detectors' names in the order of the rows; valid until the matrix changes or ends.
  const std::vector<CString>& GetDetectorNameArray() const { return names_; }

 private:
  std::vector<CString> names_;
};
