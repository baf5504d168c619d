#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// Whether a number in the host's settings store is set: the value `name` of the product's key,
/// or of `subKey` below it when that is not null, for the machine or for the current user. False
/// when the key cannot be opened, and where memory runs out; `defaultValue` counts when the key has
/// no such value, or one that is no number.
VEX2_API bool ReadRegistryFlag(bool localMachine, const char* name, std::uint32_t defaultValue,
                               const char* subKey);
