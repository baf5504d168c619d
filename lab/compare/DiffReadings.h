#pragma once

#include <string>
#include <vector>

#include "lab/compare/Diff.h"
#include "lab/model/Document.h"

namespace vex2::lab {

/// Compares the data blocks of two plates and adds the differences. If a plate has several blocks
/// with the same tag, they are compared in their order.
void DiffReadings(const Document::Plate& one, const Document::Plate& other, double tolerance,
                  std::vector<Difference>& differences);

}  // namespace vex2::lab
