#pragma once

#include "vex2/framework/Language.h"

/// Marks symbols that a host may link against. All others are hidden: the libraries are compiled
/// with hidden visibility.
#if defined(__GNUC__)
#define VEX2_API __attribute__((visibility("default")))
#else
#define VEX2_API
#endif
