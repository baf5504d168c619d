#include "fuzz/Require.h"

#include <cstdio>
#include <cstdlib>

namespace vex2::fuzz {

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "fuzz: not so: %s\n", what);
  std::abort();
}

}  // namespace vex2::fuzz
