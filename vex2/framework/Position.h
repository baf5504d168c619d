#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {
struct Place;  // never defined: only the container that handed a position out knows what it is
}

/// A place in a list or a map; null is none. It stays good until its entry is removed.
using POSITION = vex2::Place*;
