#include <csv.h>
#include <fmt/core.h>

#include <CLI/Version.hpp>
#include <iostream>

#include "lab/json/Json.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/VersionText.h"
#include "vex2/manager/Vex2HeaderData.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

std::string compilerName() {
#if defined(__clang__)
  return "Clang " __clang_version__;
#elif defined(__GNUC__)
  return "GCC " __VERSION__;
#else
  return "unknown";
#endif
}

std::string numbered(int major, int minor, int patch) {
  return fmt::format("{}.{}.{}", major, minor, patch);
}

/// The versions of the command, its build, the format and the libraries.
struct Version {
  std::string compiler = compilerName();
  std::string format = fmt::format("{}.{}", Vex2HeaderData().formatA, Vex2HeaderData().formatB);
  std::vector<std::pair<std::string, std::string>> libraries = {
      {"CLI11", CLI11_VERSION},
      {"nlohmann-json", numbered(NLOHMANN_JSON_VERSION_MAJOR, NLOHMANN_JSON_VERSION_MINOR,
                                 NLOHMANN_JSON_VERSION_PATCH)},
      {"libcsv", numbered(CSV_MAJOR, CSV_MINOR, CSV_RELEASE)},
      {"fmt", numbered(FMT_VERSION / 10000, FMT_VERSION / 100 % 100, FMT_VERSION % 100)}};
};

ordered_json toJson(const Version& version) {
  ordered_json libraries = ordered_json::object();
  for (const auto& [name, number] : version.libraries) libraries[name] = number;
  return {{"version", VEX2_VERSION},
          {"build",
           {{"type", VEX2_BUILD_TYPE}, {"compiler", version.compiler}, {"system", VEX2_SYSTEM}}},
          {"format", version.format},
          {"libraries", std::move(libraries)}};
}

class VersionCommand final : public Command {
 public:
  VersionCommand()
      : Command({"version", "Print the version, the build and the libraries.",
                 "vex version\nvex version --json | jq -r .format"}) {}

  void AddOptions(Options& options) override {
    options.AddFlag("--json", json_, "Print JSON: one object");
  }

  ExitCode Run() override {
    std::cout << (json_ ? toJson(Version()).dump(2) + "\n" : VersionText());
    return ExitCode::kDone;
  }

 private:
  bool json_ = false;
};

}  // namespace

std::string ProgramText() {
  return "vex " VEX2_VERSION;
}

std::string VersionText() {
  const Version version;
  std::string result = ProgramText() + "\nbuild      " VEX2_BUILD_TYPE ", " + version.compiler +
                       ", " VEX2_SYSTEM "\nformat     " + version.format + "\nlibraries  ";
  std::string separator;
  for (const auto& [name, number] : version.libraries) {
    result += separator + name + " " + number;
    separator = ", ";
  }
  return result + "\n";
}

std::unique_ptr<Command> MakeVersionCommand() {
  return std::make_unique<VersionCommand>();
}

}  // namespace vex2::tool
