#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace vex2::tool {

/// One option of a command, or one argument, as `Options` added it. Each operation answers the
/// option itself.
class Option {
 public:
  explicit Option(CLI::Option& option) : option_(&option) {}

  /// What stands for its value in the help; nothing where its name says it all.
  Option& Show(const std::string& placeholder);
  /// The heading of the help under which it stands.
  Option& Group(const std::string& heading);
  Option& Require();
  /// It may stand without a value, and then is an empty text.
  Option& MayBeAlone();
  /// It takes one value or more.
  Option& TakeSeveral();
  Option& Exclude(const Option& other);
  Option& AllowOnly(const std::vector<std::string>& values);
  Option& AllowOnly(std::initializer_list<std::uint32_t> values);
  Option& AllowRange(std::uint32_t least, std::uint32_t most);
  Option& AllowRange(double least, double most);

 private:
  CLI::Option* option_;
};

/// The command line of one command, for commands to say what they take. It keeps the library that
/// reads command lines out of their sources, of which it would take most of the time of compiling.
class Options {
 public:
  explicit Options(CLI::App& app) : app_(&app) {}

  /// `name` is "-o,--option" for an option and "ARGUMENT" for an argument. `value` keeps what it
  /// holds when the option is not given, and must live until the command line was read. Which types
  /// it may have is listed in Options.cpp: texts, lists of texts and numbers.
  template <typename Value>
  Option Add(const std::string& name, Value& value, const std::string& help);
  Option AddFlag(const std::string& name, bool& value, const std::string& help);

  /// Puts paragraphs before, or behind, what else there is below the list of options.
  void PutFirst(const std::string& text);
  void PutLast(const std::string& text);

  CLI::App& App() { return *app_; }

 private:
  CLI::App* app_;
};

}  // namespace vex2::tool
