#pragma once

#include <string>

namespace vex2::tool {

/// The version of the command, how it was built, the format of the documents that it makes and the
/// libraries that it uses, in lines.
std::string VersionText();

}  // namespace vex2::tool
