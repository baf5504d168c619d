#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// Whether a number in the host's settings store is not 0: the value `name` under the product's key
/// or, if `subKey` is not null, under the key `subKey` below the product's key, for the machine or
/// for the current user. Returns false if the key cannot be opened or memory runs out. If the key
/// has no such value, or one that is not a number, uses `defaultValue` instead.
VEX2_API bool ReadRegistryFlag(bool localMachine, const char* name, std::uint32_t defaultValue,
                               const char* subKey);
