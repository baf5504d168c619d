#pragma once

#include "vex2/framework/Language.h"

/// Marks what a host application may link against. Everything else stays inside the libraries,
/// which are compiled with hidden visibility.
#if defined(__GNUC__)
#define VEX2_API __attribute__((visibility("default")))
#else
#define VEX2_API
#endif
