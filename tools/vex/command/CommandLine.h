#pragma once

namespace vex2::tool {

/// Runs the command line and answers the exit code. Nothing is thrown.
int RunCommandLine(int argumentCount, const char* const* arguments) noexcept;

}  // namespace vex2::tool
