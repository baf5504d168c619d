#pragma once

#include <string>
#include <vector>

#include "lab/exchange/Diff.h"
#include "lab/model/Document.h"

namespace vex2::lab {

/// Compares the data blocks of two plates, those of a tag by their turn, and adds what differs.
void DiffReadings(const Document::Plate& one, const Document::Plate& other, double tolerance,
                  std::vector<Difference>& differences);

}  // namespace vex2::lab
