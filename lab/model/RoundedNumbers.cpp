#include "lab/model/RoundedNumbers.h"

#include <algorithm>
#include <cmath>

#include "lab/Text.h"
#include "lab/model/Value.h"

namespace vex2::lab {

void RoundedNumbers::Add(double change) {
  ++count;
  largestChange = std::max(largestChange, std::abs(change));
}

double ChangeOf(std::string_view text, float kept) {
  const auto given = NumberIn<double>(text);
  const auto comesBack = NumberIn<double>(ValueText(kept));
  return given && comesBack ? *given - *comesBack : 0;
}

}  // namespace vex2::lab
