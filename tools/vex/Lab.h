#pragma once

namespace vex2::lab {}

/// The command. It is written in the terms of the library for laboratories.
namespace vex2::tool {

using namespace lab;

}  // namespace vex2::tool
