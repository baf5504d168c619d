#include "tools/vex/Errors.h"

#include <iostream>

#include "lab/exchange/Json.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

namespace {

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
  return object.dump(-1, ' ', Terminal::Out().IsAscii(),
                     nlohmann::ordered_json::error_handler_t::replace);
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

void SetMessageForm(MessageForm form) {
  messageForm() = form;
}

void PrintError(const Error& error) {
  if (messageForm() == MessageForm::kText) return writeLine("vex: " + Printable(error.what()));
  nlohmann::ordered_json object = {{"code", ErrorKindOf(error.Code()).name}};
  object["file"] = error.File().empty() ? nullptr : nlohmann::ordered_json(error.File());
  object["offset"] = error.Offset() ? nlohmann::ordered_json(*error.Offset()) : nullptr;
  object["message"] = error.Message();
  object["exit_code"] = static_cast<int>(ExitCodeOf(error));
  writeLine(oneLine({{"error", std::move(object)}}));
}

void PrintIfAny(std::string_view text) {
  if (!text.empty()) PrintLine(text);
}

void PrintLine(std::string_view text) {
  if (messageForm() == MessageForm::kText) return writeLine("vex: " + Printable(text));
  writeLine(oneLine({{"note", {{"message", text}}}}));
}

}  // namespace vex2::tool
