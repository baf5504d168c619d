#pragma once

#include <cstddef>
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
  kUsage,        ///< the call: its arguments, or paths that do not exist
  kSystem,       ///< the system: disk, memory, locks
  kInterrupted,  ///< the user ended the work
};

/// What went wrong. `ErrorKinds` has the stable name of each code. `kDocument`, `kUsage`, `kSystem`
/// and `kInterrupted` are the general codes of their class, for errors that have no more specific
/// code.
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

/// An error code with its stable name, its class and its meaning.
struct ErrorKind {
  ErrorCode code;         ///< the code of the kind
  std::string_view name;  ///< the stable name of the code, such as "no-such-file"; it never changes
  ErrorClass errorClass;  ///< what errors of this kind are about
  std::string_view meaning;  ///< what the code means, as a short text for users
};

/// All kinds, in the order of `ErrorCode`.
VEX2_API std::span<const ErrorKind> ErrorKinds();
/// The kind with this code.
VEX2_API const ErrorKind& ErrorKindOf(ErrorCode code);

/// What the caller can do so that the operation succeeds. The message of an error gives the advice
/// with the names of this library's operations and options. A host that uses other names can append
/// its own words to `Error::Problem` instead.
enum class ErrorRemedy {
  kNone,          ///< no advice is needed, or `Problem` already contains it
  kExtractPlate,  ///< take the plate out of its study
  kMakeStudy,     ///< make a study of the plate
  kEndRun,  ///< let the recorder finish, or call `SetRunStatus` if the recorder will never finish
  kImport,  ///< import the table into a document
  kExport,  ///< export a table of the document
  kGiveDelimiter,     ///< give the character that separates the fields
  kQuoteDecimals,     ///< put numbers with a decimal comma in quotes, or separate the fields by
                      ///< semicolons
  kGiveDecimalMark,   ///< give the decimal mark of the numbers
  kTakeDecimalPoint,  ///< give the point as the decimal mark
  kTakeDecimalComma,  ///< give the comma as the decimal mark
  kGiveLatin1,        ///< give Latin-1 as the encoding, if the file is in Latin-1
  kGiveEncoding,      ///< give the encoding of the file
  kAllowRounding,     ///< accept rounded numbers
  kNameChannels,      ///< name all channels before the recording
  kLowerOffset,       ///< give an offset below the readings
  kNewRunWithOffset,  ///< record to a new document, with an offset below the readings
  kNewRunWithScale,   ///< record to a new document, with a scale that has room for the readings
  kResume,            ///< resume the run
  kResumeOrReplace,   ///< resume the run of an existing document, or replace the document
};

/// Why an operation failed: a code, and one sentence. The sentence names the file and, if the error
/// has an offset, the offset in bytes from the start of the file.
class VEX2_API Error : public std::runtime_error {
 public:
  /// `what` describes the problem. If `remedy` is `kNone`, `what` must also say what to do, unless
  /// that is obvious; otherwise the text of `remedy` is appended to it. `what()` returns the whole
  /// sentence. Control characters in it are replaced, so that those in a malicious name or content
  /// do not reach the terminal. `systemError` is a number of `errno`, or 0.
  Error(ErrorCode code, std::string_view file, std::string_view what,
        std::optional<std::uint64_t> offset = std::nullopt, ErrorRemedy remedy = ErrorRemedy::kNone,
        int systemError = 0);
  /// An error of the call as a whole, without a file.
  Error(ErrorCode code, std::string_view what);

  /// What went wrong.
  ErrorCode Code() const { return code_; }
  /// The class of the error: what it is about.
  ErrorClass Class() const;
  /// The file, as the caller gave it; empty for an error of the call as a whole.
  const std::string& File() const { return file_; }
  /// What is wrong, and what to do about it.
  const std::string& Message() const { return message_; }
  /// What is wrong, without the advice of `Remedy`.
  std::string_view Problem() const { return std::string_view(message_).substr(0, problemSize_); }
  /// What the caller can do.
  ErrorRemedy Remedy() const { return remedy_; }
  /// The offset in the file, in bytes, at which the operation failed; nothing if there is none.
  std::optional<std::uint64_t> Offset() const { return offset_; }
  /// The `errno` of the system call that failed; 0 if none failed.
  int SystemErrorNumber() const { return systemError_; }

 private:
  ErrorCode code_;
  std::string file_;
  std::string message_;
  std::size_t problemSize_;
  ErrorRemedy remedy_ = ErrorRemedy::kNone;
  std::optional<std::uint64_t> offset_;
  int systemError_ = 0;
};

}  // namespace vex2::lab
