#include "vex2/study/CDetectorMatrix.h"

#include <utility>

struct CDetectorMatrix::Names {
  std::vector<CString> list;
};

CDetectorMatrix::CDetectorMatrix(std::vector<CString> names, int columns)
    : CMatrix(static_cast<int>(names.size()), columns),
      names_(std::make_shared<const Names>(Names{std::move(names)})) {}

const std::vector<CString>& CDetectorMatrix::GetDetectorNameArray() const {
  static const Names none;
  return names_ != nullptr ? names_->list : none.list;
}
