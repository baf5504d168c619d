#pragma once

#include <memory>
#include <vector>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"
#include "vex2/study/CMatrix.h"

/// A matrix with a row for each detector. Copies are independent.
class VEX2_API CDetectorMatrix : public CMatrix {
 public:
  CDetectorMatrix() = default;
  /// Makes a row of `columns` zeros for each name.
  CDetectorMatrix(std::vector<CString> names, int columns);

  /// The detectors' names in the order of the rows; valid until the matrix changes or is destroyed.
  const std::vector<CString>& GetDetectorNameArray() const;

 private:
  struct Names;

  // Names never change, so copies of the matrix share them.
  std::shared_ptr<const Names> names_;
};
