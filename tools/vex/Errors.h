#pragma once

#include <cstdint>
#include <optional>
#include <span>
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

/// What went wrong, for programs: `ErrorKinds` has the name of each, which stays.
enum class ErrorCode {
  kDocument,
  kNoDocument,
  kUsage,
  kUnknownCommand,
  kUnknownOption,
  kUnknownSetting,
  kUnknownField,
  kMissingArgument,
  kSurplusArgument,
  kInvalidValue,
  kConflictingOptions,
  kNoSuchFile,
  kNoPermission,
  kNotAFile,
  kExists,
  kNoSuchPlate,
  kNoSuchFrame,
  kNoSuchWell,
  kNoSuchValue,
  kSystem,
  kInUse,
  kDiskFull,
  kNoMemory,
  kInterrupted,
};

/// A kind of error as programs and documents know it.
struct ErrorKind {
  ErrorCode code;
  std::string_view name;
  ExitCode exitCode;
  std::string_view meaning;
};

/// All kinds, in the order of `ErrorCode`.
std::span<const ErrorKind> ErrorKinds();

/// Why a command gives up: an error code, an exit code and one line for standard error, which names
/// the file and, where there is one, the offset from the file's begin.
class Error : public std::runtime_error {
 public:
  /// `what` says what is wrong and, where that is not plain, what to do. Control characters of a
  /// hostile name or content do not reach the terminal.
  Error(ErrorCode code, std::string_view file, std::string_view what,
        std::optional<std::uint64_t> offset = std::nullopt);
  /// About the call as a whole.
  Error(ErrorCode code, std::string_view what);
  /// With the general error code of an exit code, where there is no closer one.
  Error(ExitCode code, std::string_view file, std::string_view what,
        std::optional<std::uint64_t> offset = std::nullopt);
  Error(ExitCode code, std::string_view what);

  ExitCode Code() const;
  /// The kind of error, and the parts of the line: as they were given, for programs.
  ErrorCode Kind() const { return kind_; }
  const std::string& File() const { return file_; }
  const std::string& Message() const { return message_; }
  std::optional<std::uint64_t> Offset() const { return offset_; }

 private:
  ErrorCode kind_;
  std::string file_;
  std::string message_;
  std::optional<std::uint64_t> offset_;
};

/// What the system refused to do with `file`: the call is at fault when the path leads nowhere or
/// to what may not be touched, the system for all else.
Error SystemError(std::string_view file, int error);

/// In which form errors and notes are written.
enum class MessageForm { kText, kJson };
/// Chooses the form of all further messages; text until then.
void SetMessageForm(MessageForm form);

/// Writes the error to standard error: as the line "vex: WHAT", or as an object
/// {"error":{"code":...,"file":...,"offset":...,"message":...,"exit_code":...}}.
void PrintError(const Error& error);

/// Writes "vex: TEXT" to standard error, for what a user should know besides; as JSON it is an
/// object {"note":{"message":...}}.
void PrintLine(std::string_view text);

/// `text` for a line of a message: what a terminal would obey, and what is no character, is shown
/// as \xNN.
std::string Escaped(std::string_view text);

/// The same for a screen: where that is an ASCII one, other characters are shown as \uNNNN.
std::string Printable(std::string_view text);

}  // namespace vex2::tool
