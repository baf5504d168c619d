#include "tools/vex/Errors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iostream>

#include "tools/vex/text/Json.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using enum ErrorCode;

constexpr std::array kKinds = {
    ErrorKind{kDocument, "document", ExitCode::kDocument,
              "a document, or another file that was read, is at fault"},
    ErrorKind{kNoDocument, "no-document", ExitCode::kDocument, "the file is no plate document"},
    ErrorKind{kUsage, "usage", ExitCode::kUsage, "the call is at fault"},
    ErrorKind{kUnknownCommand, "unknown-command", ExitCode::kUsage,
              "no command of vex has this name"},
    ErrorKind{kUnknownOption, "unknown-option", ExitCode::kUsage, "the command has no such option"},
    ErrorKind{kUnknownSetting, "unknown-setting", ExitCode::kUsage,
              "no setting of a document has this name"},
    ErrorKind{kUnknownField, "unknown-field", ExitCode::kUsage,
              "no field of a detector has this name"},
    ErrorKind{kMissingArgument, "missing-argument", ExitCode::kUsage,
              "an argument, an option or an option's value is missing"},
    ErrorKind{kSurplusArgument, "surplus-argument", ExitCode::kUsage,
              "the command takes fewer arguments"},
    ErrorKind{kInvalidValue, "invalid-value", ExitCode::kUsage,
              "an option, argument or setting does not take this value"},
    ErrorKind{kConflictingOptions, "conflicting-options", ExitCode::kUsage,
              "the options cannot be given together"},
    ErrorKind{kNoSuchFile, "no-such-file", ExitCode::kUsage, "the path leads nowhere"},
    ErrorKind{kNoPermission, "no-permission", ExitCode::kUsage,
              "the file may not be read or written"},
    ErrorKind{kNotAFile, "not-a-file", ExitCode::kUsage, "the path is that of a folder or device"},
    ErrorKind{kExists, "exists", ExitCode::kUsage, "the output is already there"},
    ErrorKind{kNoSuchPlate, "no-such-plate", ExitCode::kUsage, "the document has no such plate"},
    ErrorKind{kNoSuchFrame, "no-such-frame", ExitCode::kUsage, "the data block has no such frame"},
    ErrorKind{kNoSuchWell, "no-such-well", ExitCode::kUsage,
              "the plate has no such well, or it gave no readings"},
    ErrorKind{kNoSuchValue, "no-such-value", ExitCode::kUsage,
              "the document has no value at this path"},
    ErrorKind{kSystem, "system", ExitCode::kSystem, "the system is at fault"},
    ErrorKind{kInUse, "in-use", ExitCode::kSystem, "another program is using the file"},
    ErrorKind{kDiskFull, "disk-full", ExitCode::kSystem, "there is no space for the output"},
    ErrorKind{kNoMemory, "no-memory", ExitCode::kSystem, "there is not enough memory"},
    ErrorKind{kInterrupted, "interrupted", ExitCode::kInterrupted, "the user ended the command"},
};

constexpr bool areInOrder() {
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (static_cast<std::size_t>(kKinds[i].code) != i) return false;
  }
  return kKinds.back().code == kInterrupted;
}
static_assert(areInOrder());

const ErrorKind& kindOf(ErrorCode code) {
  return kKinds.at(static_cast<std::size_t>(code));
}

ErrorCode generalCode(ExitCode code) {
  switch (code) {
    case ExitCode::kDocument:
      return kDocument;
    case ExitCode::kUsage:
      return kUsage;
    case ExitCode::kInterrupted:
      return kInterrupted;
    default:
      return kSystem;
  }
}

std::string composed(std::string_view file, std::string_view what,
                     std::optional<std::uint64_t> offset) {
  std::string text(file);
  if (offset) text += ": at byte " + std::to_string(*offset);
  return Escaped(text.append(": ").append(what));
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

MessageForm& messageForm() {
  static MessageForm form = MessageForm::kText;
  return form;
}

// One write, so that lines of several programs do not mix.
void writeLine(const std::string& line) {
  std::cout.flush();
  std::cerr << (line + "\n") << std::flush;
}

std::string oneLine(const nlohmann::ordered_json& object) {
  return object.dump(-1, ' ', Terminal::IsAscii(),
                     nlohmann::ordered_json::error_handler_t::replace);
}

bool isContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

// The bytes of the UTF-8 character at the start of `text`, 0 where there is none.
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
    // Of the second range of control characters it is the second byte that says which.
    if (text.size() > 1 && text[0] == '\xC2' && isContinuation(text[1])) text.remove_prefix(1);
    const auto byte = static_cast<unsigned char>(text.front());
    result.append("\\x").append({kDigits[byte >> 4U], kDigits[byte & 0xFU]});
    text.remove_prefix(1);
  }
  return result;
}

std::string Printable(std::string_view text) {
  std::string escaped = Escaped(text);
  return Terminal::IsAscii() ? ToAscii(escaped) : escaped;
}

Error::Error(ErrorCode code, std::string_view file, std::string_view what,
             std::optional<std::uint64_t> offset)
    : std::runtime_error(composed(file, what, offset)),
      kind_(code),
      file_(file),
      message_(what),
      offset_(offset) {}

Error::Error(ErrorCode code, std::string_view what)
    : std::runtime_error(Escaped(what)), kind_(code), message_(what) {}

Error::Error(ExitCode code, std::string_view file, std::string_view what,
             std::optional<std::uint64_t> offset)
    : Error(generalCode(code), file, what, offset) {}

Error::Error(ExitCode code, std::string_view what) : Error(generalCode(code), what) {}

ExitCode Error::Code() const {
  return kindOf(kind_).exitCode;
}

Error SystemError(std::string_view file, int error) {
  if (error == EAGAIN || error == EWOULDBLOCK) {
    return {kInUse, file, "another program is using it; try again when it is done"};
  }
  return {codeOf(error), file, std::strerror(error)};
}

void SetMessageForm(MessageForm form) {
  messageForm() = form;
}

void PrintError(const Error& error) {
  if (messageForm() == MessageForm::kText) return writeLine("vex: " + Printable(error.what()));
  nlohmann::ordered_json object = {{"code", kindOf(error.Kind()).name}};
  object["file"] = error.File().empty() ? nullptr : nlohmann::ordered_json(error.File());
  object["offset"] = error.Offset() ? nlohmann::ordered_json(*error.Offset()) : nullptr;
  object["message"] = error.Message();
  object["exit_code"] = static_cast<int>(error.Code());
  writeLine(oneLine({{"error", std::move(object)}}));
}

void PrintLine(std::string_view text) {
  if (messageForm() == MessageForm::kText) return writeLine("vex: " + Printable(text));
  writeLine(oneLine({{"note", {{"message", text}}}}));
}

}  // namespace vex2::tool
