#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {
struct Place;  // never defined: only the container that returned a position can use it
}

/// Refers to an entry of a list or a map, or to none if it is null. Valid until the entry is
/// removed.
using POSITION = vex2::Place*;
