#pragma once

#include <string>

namespace vex2::tool {

/// The name and the version of the command, such as "vex 1.0.0".
std::string ProgramText();

/// Lines with the version of the command, its build, the format of the documents that it writes,
/// and the libraries that it uses.
std::string VersionText();

}  // namespace vex2::tool
