#include <csv.h>

#include <CLI/Version.hpp>
#include <iostream>

#include "tools/vex/command/Command.h"
#include "tools/vex/command/VersionText.h"
#include "tools/vex/text/Json.h"
#include "vex2/manager/Vex2HeaderData.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

std::string compiler() {
#if defined(__clang__)
  return "Clang " __clang_version__;
#elif defined(__GNUC__)
  return "GCC " __VERSION__;
#else
  return "unknown";
#endif
}

ordered_json describe() {
  const Vex2HeaderData header;
  return {{"version", VEX2_VERSION},
          {"build", {{"type", VEX2_BUILD_TYPE}, {"compiler", compiler()}, {"system", VEX2_SYSTEM}}},
          {"format", std::to_string(header.formatA) + "." + std::to_string(header.formatB)},
          {"libraries",
           {{"CLI11", CLI11_VERSION},
            {"nlohmann-json", std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + "." +
                                  std::to_string(NLOHMANN_JSON_VERSION_MINOR) + "." +
                                  std::to_string(NLOHMANN_JSON_VERSION_PATCH)},
            {"libcsv", std::to_string(CSV_MAJOR) + "." + std::to_string(CSV_MINOR) + "." +
                           std::to_string(CSV_RELEASE)}}}};
}

class VersionCommand final : public Command {
 public:
  VersionCommand()
      : Command({"version", "Print the version, the build, and what it works with.",
                 "vex version\nvex version --json | jq -r .format"}) {}

  void AddOptions(Options& options) override {
    options.AddFlag("--json", json_, "Print JSON: one object");
  }

  ExitCode Run() override {
    std::cout << (json_ ? describe().dump(2) + "\n" : VersionText());
    return ExitCode::kDone;
  }

 private:
  bool json_ = false;
};

}  // namespace

std::string VersionText() {
  const ordered_json version = describe();
  const auto text = [](const ordered_json& value) { return value.get<std::string>(); };
  const auto& build = version["build"];
  std::string result = "vex " + text(version["version"]) + "\nbuild      " + text(build["type"]) +
                       ", " + text(build["compiler"]) + ", " + text(build["system"]) +
                       "\nformat     " + text(version["format"]) + "\nlibraries  ";
  std::string separator;
  for (const auto& [name, number] : version["libraries"].items()) {
    result += separator + name + " " + text(number);
    separator = ", ";
  }
  return result + "\n";
}

std::unique_ptr<Command> MakeVersionCommand() {
  return std::make_unique<VersionCommand>();
}

}  // namespace vex2::tool
