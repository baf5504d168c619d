#pragma once

namespace vex2::tool {

/// Runs the command line and returns the exit code. Throws nothing.
int RunCommandLine(int argumentCount, const char* const* arguments) noexcept;

}  // namespace vex2::tool
