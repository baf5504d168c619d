#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vex2::tool {

/// What the command answers to the shell.
enum class ExitCode : int {
  kDone = 0,
  kDocument = 1,       ///< a document, or another file that was read, is at fault
  kUsage = 2,          ///< the call is at fault: arguments, or paths that lead nowhere
  kSystem = 3,         ///< the system is at fault: disk, memory, locks
  kInterrupted = 130,  ///< the user ended it; what shells know as the answer to Ctrl-C
};

/// Why a command gives up: an exit code and one line for standard error, which names the file and,
/// where there is one, the offset from the file's begin.
class Error : public std::runtime_error {
 public:
  /// `what` says what is wrong and, where that is not plain, what to do. Control characters of a
  /// hostile name or content do not reach the terminal.
  Error(ExitCode code, std::string_view file, std::string_view what,
        std::optional<std::uint64_t> offset = std::nullopt);
  /// About the call as a whole.
  Error(ExitCode code, std::string_view what);

  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

/// What the system refused to do with `file`: the call is at fault when the path leads nowhere or
/// to what may not be touched, the system for all else.
Error SystemError(std::string_view file, int error);

/// Writes "vex: TEXT" to standard error, for errors and for what a user should know besides.
void PrintLine(std::string_view text);

/// `text` for a line of a message: what a terminal would obey, and what is no character, is shown
/// as \xNN.
std::string Printable(std::string_view text);

}  // namespace vex2::tool
