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

/// What the caller can do so that the operation succeeds. The error's message describes it in the
/// terms of this library. A host that offers it under other names, as options or buttons, can
/// append its own words to `Error::Problem` instead.
enum class ErrorRemedy {
  kNone,              ///< what to do is plain, or part of the problem's sentence
  kExtractPlate,      ///< take the plate out of its study
  kMakeStudy,         ///< make a study of the plate
  kEndRun,            ///< let the recorder finish, or call `SetRunStatus` if it never will
  kImport,            ///< bring the table into a document
  kExport,            ///< write a table of the document
  kGiveDelimiter,     ///< say which character separates the fields
  kQuoteDecimals,     ///< put numbers with a decimal comma in quotes, or separate fields otherwise
  kGiveDecimalMark,   ///< say which decimal mark numbers have
  kTakeDecimalPoint,  ///< say that numbers have a decimal point
  kTakeDecimalComma,  ///< say that numbers have a decimal comma
  kGiveLatin1,        ///< say that the encoding is Latin-1, if it is
  kGiveEncoding,      ///< say which encoding the file has
  kAllowRounding,     ///< accept rounded numbers
  kNameChannels,      ///< name all channels beforehand
  kLowerOffset,       ///< give an offset below the readings
  kNewRunWithOffset,  ///< record to a new document with an offset below the readings
  kNewRunWithScale,   ///< record to a new document with a scale that the readings fit
  kResume,            ///< resume the run
  kResumeOrReplace,   ///< resume the run of an existing document, or replace the document
};

/// Why an operation failed: a code, and one sentence that names the file and, where there is one,
/// the offset in bytes from the start of the file.
class VEX2_API Error : public std::runtime_error {
 public:
  /// `what` says what is wrong and, where that is not plain, what to do; with a `remedy`, that says
  /// what to do. Control characters of a malicious name or content do not reach the terminal.
  /// `systemError` is a number of `errno`, or 0.
  Error(ErrorCode code, std::string_view file, std::string_view what,
        std::optional<std::uint64_t> offset = std::nullopt, ErrorRemedy remedy = ErrorRemedy::kNone,
        int systemError = 0);
  /// About the call as a whole.
  Error(ErrorCode code, std::string_view what);

  /// What went wrong.
  ErrorCode Code() const { return code_; }
  /// What the error is about.
  ErrorClass Class() const;
  /// The file, as it was given; empty for an error about the call as a whole.
  const std::string& File() const { return file_; }
  /// What is wrong, and what to do.
  const std::string& Message() const { return message_; }
  /// What is wrong, without what `Remedy` says.
  std::string_view Problem() const { return std::string_view(message_).substr(0, problemSize_); }
  /// What the caller can do.
  ErrorRemedy Remedy() const { return remedy_; }
  /// The offset in the file, in bytes, at which the operation failed; nothing if there is none.
  std::optional<std::uint64_t> Offset() const { return offset_; }
  /// The number of the system's error, as in `errno`; 0 where the system refused nothing.
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
