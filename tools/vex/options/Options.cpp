#include "tools/vex/options/Options.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <type_traits>
#include <vector>

namespace vex2::tool {

Option& Option::Show(const std::string& placeholder) {
  option_->type_name(placeholder);
  return *this;
}

Option& Option::Group(const std::string& heading) {
  option_->group(heading);
  return *this;
}

Option& Option::Require() {
  option_->required();
  return *this;
}

Option& Option::MayBeAlone() {
  option_->expected(0, 1);
  return *this;
}

Option& Option::TakeSeveral() {
  option_->expected(1, -1);
  return *this;
}

Option& Option::Exclude(const Option& other) {
  option_->excludes(other.option_);
  return *this;
}

Option& Option::AllowOnly(const std::vector<std::string>& values) {
  option_->check(CLI::IsMember(values));
  return *this;
}

Option& Option::AllowOnly(std::initializer_list<std::uint32_t> values) {
  option_->check(CLI::IsMember(values));
  return *this;
}

Option& Option::AllowRange(std::uint32_t least, std::uint32_t most) {
  option_->check(CLI::Range(least, most));
  return *this;
}

Option& Option::AllowRange(double least, double most) {
  option_->check(CLI::Range(least, most));
  return *this;
}

namespace {

CLI::Validator isGiven() {
  return {[](const std::string& text) {
            return std::string(text.empty() ? "is empty; give it a value, or leave it out" : "");
          },
          ""};
}

}  // namespace

template <typename Value>
Option Options::Add(const std::string& name, Value& value, const std::string& help) {
  CLI::Option* option = app_->add_option(name, value, help);
  // An empty value usually comes from an unset variable in a script. Reject it, so that it is not
  // treated as if the option were absent.
  if constexpr (std::is_same_v<Value, std::string>) option->check(isGiven());
  return Option(*option);
}

template Option Options::Add(const std::string&, std::string&, const std::string&);
template Option Options::Add(const std::string&, std::vector<std::string>&, const std::string&);
template Option Options::Add(const std::string&, std::optional<std::string>&, const std::string&);
template Option Options::Add(const std::string&, std::int64_t&, const std::string&);
template Option Options::Add(const std::string&, double&, const std::string&);
template Option Options::Add(const std::string&, std::optional<double>&, const std::string&);
template Option Options::Add(const std::string&, std::optional<std::uint32_t>&, const std::string&);

Option Options::AddFlag(const std::string& name, bool& value, const std::string& help) {
  return Option(*app_->add_flag(name, value, help));
}

void Options::PutFirst(const std::string& text) {
  app_->footer(text + "\n\n" + app_->get_footer());
}

void Options::PutLast(const std::string& text) {
  app_->footer(app_->get_footer() + "\n\n" + text);
}

}  // namespace vex2::tool
