#pragma once

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "lab/Nearest.h"
#include "tools/vex/Errors.h"

namespace vex2::tool {

/// Parses the KEY=VALUE arguments of a command that sets fields in the document `file`, and reports
/// errors in them. `call` is what the user typed: "vex set".
class Assignments {
 public:
  Assignments(std::string file, std::string call)
      : file_(std::move(file)), call_(std::move(call)) {}

  /// Returns the field that `word` ("KEY=VALUE") names, and the value. If no field has that name,
  /// throws an error with the code `unknown` and the text of `sentence`.
  template <typename Field, typename Sentence>
  std::pair<const Field*, std::string> Parse(const std::string& word,
                                             const std::vector<Field>& fields, ErrorCode unknown,
                                             const Sentence& sentence) const {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) {
      Refuse(fmt::format("'{}' is not of the form key=value", word));
    }
    const std::string key = word.substr(0, equals);
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field& field) { return field.key == key; });
    if (found != fields.end()) return {&*found, word.substr(equals + 1)};
    std::vector<std::string> keys;
    for (const Field& field : fields) keys.emplace_back(field.key);
    const std::string hint = DidYouMean(key, keys);
    throw Error(unknown, file_, sentence(key) + (hint.empty() ? seeHelp() : hint));
  }

  /// Throws the error for a value that the field does not accept.
  template <typename Field>
  [[noreturn]] void RefuseValue(const Field& field, const std::string& value) const {
    Refuse(fmt::format("{} cannot be '{}': it takes {}", field.key, value,
                       field.takes == "text" ? "a text of Latin-1 characters" : field.takes));
  }

  /// Throws a usage error that refers to the help of the command.
  [[noreturn]] void Refuse(const std::string& why) const {
    throw Error(ErrorCode::kInvalidValue, file_, why + seeHelp());
  }

 private:
  std::string seeHelp() const { return fmt::format("; see '{} --help'", call_); }

  std::string file_;
  std::string call_;
};

/// The lines in a help text that list the fields, in two columns.
template <typename Field>
std::string FieldLines(const std::vector<Field>& fields, int width) {
  std::string text;
  for (const Field& field : fields) {
    text += fmt::format("\n  {:{}}{}", field.key, width, field.takes);
  }
  return text;
}

}  // namespace vex2::tool
