#include "tools/vex/Errors.h"

#include <fmt/core.h>

#include <filesystem>
#include <iostream>
#include <optional>

#include "lab/formats/ImportFormat.h"
#include "lab/json/Json.h"
#include "tools/vex/Terminal.h"

namespace vex2::tool {

namespace {

MessageForm& messageForm() {
  static MessageForm form = MessageForm::kText;
  return form;
}

// Writes the line in one call, so that lines of several programs do not mix.
void writeLine(const std::string& line) {
  std::cout.flush();
  std::cerr << (line + "\n") << std::flush;
}

std::string lineOf(const nlohmann::ordered_json& object) {
  return object.dump(-1, ' ', Terminal::Out().IsAscii(),
                     nlohmann::ordered_json::error_handler_t::replace);
}

// The remedy, in terms of commands and options.
std::string_view textOf(ErrorRemedy remedy) {
  switch (remedy) {
    case ErrorRemedy::kNone:
      break;
    case ErrorRemedy::kExtractPlate:
      return "take a plate out of it with 'vex study extract'";
    case ErrorRemedy::kMakeStudy:
      return "make a study of it with 'vex study new'";
    case ErrorRemedy::kEndRun:
      return "let the recorder finish, or set the status with 'vex status' if it never will";
    case ErrorRemedy::kImport:
      return "import CSV with 'vex record', 'vex wells --from' or 'vex calibration --import'";
    case ErrorRemedy::kExport:
      return "'vex export', 'vex wells --csv' and 'vex calibration --export' make CSV files of one";
    case ErrorRemedy::kGiveDelimiter:
      return "say which with --delimiter";
    case ErrorRemedy::kQuoteDecimals:
      return "numbers with a decimal comma must be in quotes (then use --decimal comma), or "
             "semicolons must separate the fields";
    case ErrorRemedy::kGiveDecimalMark:
      return "say which mark decimals have, with --decimal point or --decimal comma";
    case ErrorRemedy::kTakeDecimalPoint:
      return "write it with a comma, without a mark between thousands, or use --decimal point if "
             "all numbers are written like this one";
    case ErrorRemedy::kTakeDecimalComma:
      return "write it with a point, without a mark between thousands, or use --decimal comma if "
             "all numbers are written like this one";
    case ErrorRemedy::kGiveLatin1:
      return "if the file is Latin-1, use --encoding latin1; if it comes from Windows, use "
             "--encoding windows-1252";
    case ErrorRemedy::kGiveEncoding:
      return "say which encoding the file has with --encoding";
    case ErrorRemedy::kAllowRounding:
      return "leave out --exact to accept that";
    case ErrorRemedy::kNameChannels:
      return "name all with --channels";
    case ErrorRemedy::kLowerOffset:
      return "no reading can be below the --offset";
    case ErrorRemedy::kNewRunWithOffset:
      return "record such a run to a new document with an --offset below its lowest reading";
    case ErrorRemedy::kNewRunWithScale:
      return "record such a run to a new document with a --scale that its highest reading fits";
    case ErrorRemedy::kResume:
      return "use the same command with --resume to continue";
    case ErrorRemedy::kResumeOrReplace:
      return "use --resume to continue it or --force to overwrite it";
  }
  return {};
}

std::string_view meaningOf(ImportFormat format) {
  switch (format) {
    case ImportFormat::kRdml:
      return "RDML";
    case ImportFormat::kRdes:
      return "an RDES table";
    case ImportFormat::kJson:
      return "a document as JSON";
    case ImportFormat::kCsv:
      return "readings as CSV";
  }
  return {};
}

// The text as one word for a shell.
std::string shellWord(const std::string& text) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./+:,%@=-";
  if (!text.starts_with('-') && text.find_first_not_of(kPlain) == std::string::npos) return text;
  std::string word = text.starts_with('-') ? "./" + text : text;
  for (std::size_t i = 0; (i = word.find('\'', i)) != std::string::npos; i += 4) {
    word.replace(i, 1, "'\\''");
  }
  return "'" + word + "'";
}

// A file in another format, given in place of a document: the error has the command that makes a
// document of it. Returns nothing for any other file.
std::optional<Error> importAdvice(const Error& error) {
  if (error.Code() != ErrorCode::kNoDocument) return std::nullopt;
  const auto format = FindImportFormat(error.File());
  if (!format) return std::nullopt;
  const std::filesystem::path source(error.File());
  std::filesystem::path target = source;
  target.replace_extension(".vex");
  if (target == source) target.replace_filename(source.stem().string() + "-imported.vex");
  return Error(ErrorCode::kNoDocument, error.File(),
               fmt::format("this is not a plate document but {}; make a document of it with: "
                           "vex import {} -o {}",
                           meaningOf(*format), shellWord(source), shellWord(target)),
               error.Offset());
}

// The library names its own functions in a remedy; this names the options of the command instead.
Error inTermsOfTheCommand(const Error& error) {
  if (const auto advice = importAdvice(error)) return *advice;
  if (error.Remedy() == ErrorRemedy::kNone) return error;
  const std::string message =
      std::string(error.Problem()).append("; ").append(textOf(error.Remedy()));
  if (error.File().empty()) return {error.Code(), message};
  return {error.Code(), error.File(), message, error.Offset()};
}

}  // namespace

ExitCode ExitCodeOf(ErrorClass errorClass) {
  switch (errorClass) {
    case ErrorClass::kDocument:
      return ExitCode::kDocument;
    case ErrorClass::kUsage:
      return ExitCode::kUsage;
    case ErrorClass::kInterrupted:
      return ExitCode::kInterrupted;
    default:
      return ExitCode::kSystem;
  }
}

std::string Printable(std::string_view text) {
  return Terminal::Out().Printable(text);
}

OperationNames NamesOfCommands() {
  return {.repair = "'vex repair'",
          .recover = "'vex recover'",
          .resume = "'vex record --resume'",
          .import = "'vex import'",
          .upgrade = "'vex copy --upgrade'",
          .read = "'vex export'",
          .setWells = "'vex wells FILE --from wells.csv'",
          .setStatus = "'vex status FILE DONE'"};
}

void SetMessageForm(MessageForm form) {
  messageForm() = form;
}

void PrintError(const Error& given) {
  const Error error = inTermsOfTheCommand(given);
  if (messageForm() == MessageForm::kText) return writeLine("vex: " + Printable(error.what()));
  nlohmann::ordered_json object = {{"code", ErrorKindOf(error.Code()).name}};
  object["file"] = error.File().empty() ? nullptr : nlohmann::ordered_json(error.File());
  object["offset"] = error.Offset() ? nlohmann::ordered_json(*error.Offset()) : nullptr;
  object["message"] = error.Message();
  object["exit_code"] = static_cast<int>(ExitCodeOf(error));
  writeLine(lineOf({{"error", std::move(object)}}));
}

void PrintIfAny(std::string_view text) {
  if (!text.empty()) PrintLine(text);
}

void PrintLine(std::string_view text) {
  if (messageForm() == MessageForm::kText) return writeLine("vex: " + Printable(text));
  writeLine(lineOf({{"note", {{"message", text}}}}));
}

}  // namespace vex2::tool
