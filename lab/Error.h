#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What an error is about.
enum class ErrorClass {
  kDocument,     ///< a document, or another file that was read
  kUsage,        ///< the call: its arguments, or paths that lead nowhere
  kSystem,       ///< the system: disk, memory, locks
  kInterrupted,  ///< the user ended the work
};

/// What went wrong. `ErrorKinds` has the stable name of each. `kDocument`, `kUsage`, `kSystem` and
/// `kInterrupted` are the general codes of their class, where there is no closer one.
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
  ErrorCode code;            ///< the code of the kind
  std::string_view name;     ///< the stable name of the code, as "no-such-file"
  ErrorClass errorClass;     ///< what errors of this kind are about
  std::string_view meaning;  ///< one sentence for people
};

/// All kinds, in the order of `ErrorCode`.
VEX2_API std::span<const ErrorKind> ErrorKinds();
/// The kind of this code.
VEX2_API const ErrorKind& ErrorKindOf(ErrorCode code);

/// Why an operation failed: a code, and one sentence that names the file and, where there is one,
/// the offset in bytes from the start of the file.
class VEX2_API Error : public std::runtime_error {
 public:
  /// `what` says what is wrong and, where that is not plain, what to do. Control characters of a
  /// hostile name or content do not reach the terminal.
  Error(ErrorCode code, std::string_view file, std::string_view what,
        std::optional<std::uint64_t> offset = std::nullopt);
  /// About the call as a whole.
  Error(ErrorCode code, std::string_view what);

  /// What went wrong.
  ErrorCode Code() const { return code_; }
  /// What the error is about.
  ErrorClass Class() const;
  /// The file, as it was given; empty for an error about the call as a whole.
  const std::string& File() const { return file_; }
  /// What is wrong, as it was given.
  const std::string& Message() const { return message_; }
  /// The offset in the file, in bytes, at which the operation failed; nothing where there is none.
  std::optional<std::uint64_t> Offset() const { return offset_; }
  /// The number of the system's error, as in `errno`; 0 where the system refused nothing.
  int SystemErrorNumber() const { return systemError_; }

 private:
  friend Error SystemError(std::string_view file, int error, std::optional<std::uint64_t> offset);

  ErrorCode code_;
  std::string file_;
  std::string message_;
  std::optional<std::uint64_t> offset_;
  int systemError_ = 0;
};

/// What the system refused to do with `file`: the call is at fault when the path leads nowhere or
/// to what may not be touched, the system for all else. `error` is a number of `errno`, `offset` is
/// where a transfer failed.
Error SystemError(std::string_view file, int error,
                  std::optional<std::uint64_t> offset = std::nullopt);

/// `text` for a line of a message: what a terminal would obey, and what is no character, is shown
/// as `\xNN`.
std::string Escaped(std::string_view text);

}  // namespace vex2::lab
