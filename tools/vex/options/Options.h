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

/// One option or argument of a command that `Options` added. Each operation returns the option, so
/// that calls can be chained.
class Option {
 public:
  explicit Option(CLI::Option& option) : option_(&option) {}

  /// Sets the placeholder for the value in the help; empty for no placeholder.
  Option& Show(const std::string& placeholder);
  /// Sets the heading under which the help lists the option.
  Option& Group(const std::string& heading);
  Option& Require();
  /// Allows the option without a value; the value is then an empty text.
  Option& MayBeAlone();
  /// Lets the option take one or more values.
  Option& TakeSeveral();
  Option& Exclude(const Option& other);
  Option& AllowOnly(const std::vector<std::string>& values);
  Option& AllowOnly(std::initializer_list<std::uint32_t> values);
  Option& AllowRange(std::uint32_t least, std::uint32_t most);
  Option& AllowRange(double least, double most);

 private:
  CLI::Option* option_;
};

/// The command line of one command. Commands declare their options and arguments with it. They do
/// not include the command-line library themselves, because its headers would take most of their
/// compile time.
class Options {
 public:
  explicit Options(CLI::App& app) : app_(&app) {}

  /// Adds an option, whose `name` is like "-o,--option", or an argument, whose `name` is like
  /// "ARGUMENT". `value` is unchanged if the option is absent, and must exist until the command
  /// line was parsed. Options.cpp lists the possible types: texts, lists of texts and numbers.
  template <typename Value>
  Option Add(const std::string& name, Value& value, const std::string& help);
  Option AddFlag(const std::string& name, bool& value, const std::string& help);

  /// `PutFirst` adds paragraphs directly below the list of options in the help, `PutLast` at the
  /// end of the help.
  void PutFirst(const std::string& text);
  void PutLast(const std::string& text);

  CLI::App& App() { return *app_; }

 private:
  CLI::App* app_;
};

}  // namespace vex2::tool
