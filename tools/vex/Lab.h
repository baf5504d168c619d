#pragma once

namespace vex2::lab {}

/// The command. It uses the names of `vex2::lab` without a prefix.
namespace vex2::tool {

using namespace lab;

}  // namespace vex2::tool
