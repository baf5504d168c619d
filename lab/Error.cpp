#include "lab/Error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "lab/SystemError.h"

namespace vex2::lab {

namespace {

using enum ErrorCode;

constexpr std::array kKinds = {
    ErrorKind{kDocument, "document", ErrorClass::kDocument,
              "problem in a document, or in another file that was read"},
    ErrorKind{kNoDocument, "no-document", ErrorClass::kDocument,
              "the file is not a plate document"},
    ErrorKind{kUsage, "usage", ErrorClass::kUsage,
              "usage error: arguments, or paths that do not exist"},
    ErrorKind{kUnknownCommand, "unknown-command", ErrorClass::kUsage,
              "no command of vex has this name"},
    ErrorKind{kUnknownOption, "unknown-option", ErrorClass::kUsage,
              "the command has no such option"},
    ErrorKind{kUnknownSetting, "unknown-setting", ErrorClass::kUsage,
              "no setting of a document has this name"},
    ErrorKind{kUnknownField, "unknown-field", ErrorClass::kUsage,
              "no field of a detector has this name"},
    ErrorKind{kMissingArgument, "missing-argument", ErrorClass::kUsage,
              "an argument, an option or an option's value is missing"},
    ErrorKind{kSurplusArgument, "surplus-argument", ErrorClass::kUsage,
              "the command takes fewer arguments"},
    ErrorKind{kInvalidValue, "invalid-value", ErrorClass::kUsage,
              "an option, argument or setting does not take this value"},
    ErrorKind{kConflictingOptions, "conflicting-options", ErrorClass::kUsage,
              "the options cannot be given together"},
    ErrorKind{kNoSuchFile, "no-such-file", ErrorClass::kUsage, "the path does not exist"},
    ErrorKind{kNoPermission, "no-permission", ErrorClass::kUsage,
              "the file may not be read or written"},
    ErrorKind{kNotAFile, "not-a-file", ErrorClass::kUsage,
              "the path is that of a folder or device"},
    ErrorKind{kExists, "exists", ErrorClass::kUsage, "the output exists already"},
    ErrorKind{kNoSuchPlate, "no-such-plate", ErrorClass::kUsage, "the document has no such plate"},
    ErrorKind{kNoSuchFrame, "no-such-frame", ErrorClass::kUsage,
              "the data block has no such frame"},
    ErrorKind{kNoSuchWell, "no-such-well", ErrorClass::kUsage,
              "the plate has no such well, or it gave no readings"},
    ErrorKind{kNoSuchValue, "no-such-value", ErrorClass::kUsage,
              "the document has no value at this path"},
    ErrorKind{kSystem, "system", ErrorClass::kSystem, "system error: disk, memory, locks"},
    ErrorKind{kInUse, "in-use", ErrorClass::kSystem, "another program is using the file"},
    ErrorKind{kDiskFull, "disk-full", ErrorClass::kSystem, "there is no space for the output"},
    ErrorKind{kNoMemory, "no-memory", ErrorClass::kSystem, "there is not enough memory"},
    ErrorKind{kInterrupted, "interrupted", ErrorClass::kInterrupted, "the user ended the command"},
};

constexpr bool areInOrder() {
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (static_cast<std::size_t>(kKinds[i].code) != i) return false;
  }
  return kKinds.back().code == kInterrupted;
}
static_assert(areInOrder());

// The text of the advice. It uses the names of this library's operations and options.
std::string_view textOf(ErrorRemedy remedy) {
  switch (remedy) {
    case ErrorRemedy::kNone:
      break;
    case ErrorRemedy::kExtractPlate:
      return "take its plates out of it first";
    case ErrorRemedy::kMakeStudy:
      return "make a study of it first";
    case ErrorRemedy::kEndRun:
      return "let the recorder finish, or call SetRunStatus if it never will";
    case ErrorRemedy::kImport:
      return "bring the table into a document first";
    case ErrorRemedy::kExport:
      return "write a table of the document first";
    case ErrorRemedy::kGiveDelimiter:
      return "set delimiter";
    case ErrorRemedy::kQuoteDecimals:
      return "put numbers with a decimal comma in quotes and set decimalMark to ',', or separate "
             "the fields by semicolons";
    case ErrorRemedy::kGiveDecimalMark:
      return "set decimalMark";
    case ErrorRemedy::kTakeDecimalPoint:
      return "set decimalMark to '.' if all numbers are written like this one";
    case ErrorRemedy::kTakeDecimalComma:
      return "set decimalMark to ',' if all numbers are written like this one";
    case ErrorRemedy::kGiveLatin1:
      return "if the file is Latin-1, set encoding to latin1; if it comes from Windows, to "
             "windows-1252";
    case ErrorRemedy::kGiveEncoding:
      return "set encoding to that of the file";
    case ErrorRemedy::kAllowRounding:
      return "clear isExact to accept that";
    case ErrorRemedy::kNameChannels:
      return "name all channels beforehand";
    case ErrorRemedy::kLowerOffset:
      return "no reading can be below the offset";
    case ErrorRemedy::kNewRunWithOffset:
      return "record such a run to a new document with an offset below its lowest reading";
    case ErrorRemedy::kNewRunWithScale:
      return "record such a run to a new document with a scale that its highest reading fits";
    case ErrorRemedy::kResume:
      return "resume the run to continue";
    case ErrorRemedy::kResumeOrReplace:
      return "set resume to continue it or replace to overwrite it";
  }
  return {};
}

std::string withRemedy(std::string_view problem, ErrorRemedy remedy) {
  std::string text(problem);
  return remedy == ErrorRemedy::kNone ? text : text.append("; ").append(textOf(remedy));
}

std::string composed(std::string_view file, std::string_view message,
                     std::optional<std::uint64_t> offset) {
  std::string text(file);
  if (offset) text += ": at byte " + std::to_string(*offset);
  return Escaped(text.append(": ").append(message));
}

ErrorCode codeOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
      return kNoSuchFile;
    case EACCES:
    case EPERM:
    case EROFS:
      return kNoPermission;
    case EISDIR:
    case ENXIO:
      return kNotAFile;
    case ENAMETOOLONG:
    case EINVAL:
    case ETXTBSY:
      return kUsage;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return kDiskFull;
    case ENOMEM:
      return kNoMemory;
    default:
      return kSystem;
  }
}

bool isContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

// The length in bytes of the UTF-8 character at the start of `text`; 0 if it is not valid UTF-8 or
// is a control character.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t length = byte(0) < 0x80   ? 1U
                             : byte(0) < 0xC2 ? 0U
                             : byte(0) < 0xE0 ? 2U
                             : byte(0) < 0xF0 ? 3U
                             : byte(0) < 0xF5 ? 4U
                                              : 0U;
  if (length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!isContinuation(text[i])) return 0;
  }
  const bool isControl = byte(0) < 0x20 || byte(0) == 0x7F || (byte(0) == 0xC2 && byte(1) < 0xA0);
  return isControl ? 0 : length;
}

}  // namespace

std::span<const ErrorKind> ErrorKinds() {
  return kKinds;
}

const ErrorKind& ErrorKindOf(ErrorCode code) {
  return kKinds.at(static_cast<std::size_t>(code));
}

std::string Escaped(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result;
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    if (length > 0) {
      result += text.substr(0, length);
      text.remove_prefix(length);
      continue;
    }
    // The control characters U+0080 to U+009F have two bytes in UTF-8. Show only the second, since
    // the first is C2 in all of them.
    if (text.size() > 1 && text[0] == '\xC2' && isContinuation(text[1])) text.remove_prefix(1);
    const auto byte = static_cast<unsigned char>(text.front());
    result.append("\\x").append({kDigits[byte >> 4U], kDigits[byte & 0xFU]});
    text.remove_prefix(1);
  }
  return result;
}

Error::Error(ErrorCode code, std::string_view file, std::string_view what,
             std::optional<std::uint64_t> offset, ErrorRemedy remedy, int systemError)
    : std::runtime_error(composed(file, withRemedy(what, remedy), offset)),
      code_(code),
      file_(file),
      message_(withRemedy(what, remedy)),
      problemSize_(what.size()),
      remedy_(remedy),
      offset_(offset),
      systemError_(systemError) {}

Error::Error(ErrorCode code, std::string_view what)
    : std::runtime_error(Escaped(what)), code_(code), message_(what), problemSize_(what.size()) {}

ErrorClass Error::Class() const {
  return ErrorKindOf(code_).errorClass;
}

Error SystemError(std::string_view file, int error, std::optional<std::uint64_t> offset) {
  const bool isInUse = error == EAGAIN || error == EWOULDBLOCK;
  return {isInUse ? kInUse : codeOf(error),
          file,
          isInUse ? "another program is using it; try again when it is done" : std::strerror(error),
          offset,
          ErrorRemedy::kNone,
          error};
}

}  // namespace vex2::lab
