#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "lab/Nearest.h"
#include "lab/json/Json.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/Screen.h"
#include "tests/tools/VexProcess.h"

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace vex2::test {

namespace {

// A terminal on which the program man is this script; if `script` is empty, man is missing.
Screen terminalWithMan(const TempFolder& folder, const std::string& script) {
  if (!script.empty()) {
    const std::string path = folder / "man";
    std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
  return {{{"PATH", folder.Path().string() + (script.empty() ? "" : ":/bin:/usr/bin")},
           {"TERM", "xterm"},
           {"LC_ALL", "C.UTF-8"}},
          80};
}

}  // namespace

TEST(Help, OnATerminalOpensTheManPage) {
  const TempFolder folder;
  const Screen screen = terminalWithMan(folder, "echo \"man $* at $MANWIDTH\"; grep '^\\.TH'");
  EXPECT_THAT(RunVexOn(screen, {"help", "record"}).output,
              StartsWith("man -l - at 80\n.TH VEX-RECORD 1 "));
  EXPECT_THAT(RunVexOn(screen, {"help", "study", "new"}).output, HasSubstr(".TH VEX-STUDY 1 "));
}

TEST(Help, WithoutAWorkingManIsTheShortHelp) {
  const TempFolder folder;
  const std::string help = RunVexOn({{}, 80}, {"record", "--help"}).output;
  EXPECT_EQ(RunVexOn(terminalWithMan(folder, ""), {"help", "record"}).output, help);
  EXPECT_EQ(RunVexOn(terminalWithMan(folder, "exit 1"), {"help", "record"}).output, help);
}

TEST(Help, OnADumbTerminalOpensNoPager) {
  const TempFolder folder;
  Screen screen = terminalWithMan(folder, "echo opened");
  screen.environment["TERM"] = "dumb";
  EXPECT_EQ(RunVexOn(screen, {"help", "record"}).output,
            RunVexOn(screen, {"record", "--help"}).output);
}

TEST(Help, OfVexAndOfUnknownCommandsOpensNoPage) {
  const TempFolder folder;
  const Screen screen = terminalWithMan(folder, "echo opened");
  EXPECT_THAT(RunVexOn(screen, {"help"}).output, StartsWith("Plate documents"));
  EXPECT_THAT(RunVexOn(screen, {"help", "nothing"}).output, HasSubstr("unknown command"));
}

TEST(Help, IsWhatTheOptionHelpPrints) {
  EXPECT_EQ(RunVex({"help"}).output, RunVex({"--help"}).output);
  EXPECT_EQ(RunVex({"help", "info"}).output, RunVex({"info", "--help"}).output);
  const CommandResult inner = RunVex({"help", "study", "new"});
  EXPECT_EQ(inner.exitCode, 0);
  EXPECT_EQ(inner.output, RunVex({"study", "new", "--help"}).output);
  EXPECT_THAT(inner.output, HasSubstr("Usage: vex study new"));
}

TEST(Help, OfAnUnknownCommandNamesTheNearest) {
  EXPECT_EQ(RunVex({"help", "inf"}).errors, "vex: unknown command 'inf'; did you mean 'info'?\n");
  EXPECT_EQ(RunVex({"help", "study", "nwe"}).errors,
            "vex: unknown command 'nwe'; did you mean 'new'?\n");
  EXPECT_EQ(RunVex({"help", "info", "more"}).exitCode, 2);
}

TEST(Version, NamesBuildFormatAndLibraries) {
  const CommandResult version = RunVex({"version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_THAT(version.output, StartsWith("vex "));
  for (const char* part :
       {"\nbuild ", "GCC", "\nformat     2.2\n", "CLI11 ", "nlohmann-json ", "libcsv ", "fmt "}) {
#ifdef __clang__
    if (std::string_view(part) == "GCC") continue;
#endif
    EXPECT_THAT(version.output, HasSubstr(part));
  }
  EXPECT_EQ(RunVex({"-V"}).output, version.output);
  EXPECT_EQ(RunVex({"--version"}).output, version.output);
  const auto json = nlohmann::json::parse(RunVex({"version", "--json"}).output);
  EXPECT_EQ(json["format"], "2.2");
  EXPECT_EQ(version.output.substr(0, version.output.find('\n')),
            "vex " + json["version"].get<std::string>());
}

TEST(DidYouMean, NamesTheCommandOptionSettingAndFieldThatIsNear) {
  const auto error = [](const VexProcess::Arguments& arguments) {
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, 2);
    return result.errors;
  };
  EXPECT_EQ(error({"inf"}), "vex: unknown command 'inf'; did you mean 'info'?\n");
  EXPECT_EQ(error({"study", "lst"}), "vex: unknown command 'lst'; did you mean 'list'?\n");
  EXPECT_EQ(error({"info", "--jsn", "a"}), "vex: unknown option '--jsn'; did you mean '--json'?\n");
  EXPECT_EQ(error({"info", "a", "--widht=5"}),
            "vex: unknown option '--widht'; did you mean '--width'?\n");
  EXPECT_EQ(error({"set", "a.vex", "coment=x"}),
            "vex: a.vex: unknown setting 'coment'; did you mean 'comment'?\n");
  EXPECT_THAT(error({"detectors", "/nowhere.vex", "--add", "nme=x"}), HasSubstr("vex: "));
  EXPECT_EQ(error({"info", "--nothing-like-it", "a"}),
            "vex: unknown option '--nothing-like-it'; see 'vex info --help'\n");
}

TEST(Nearest, CountsMissingSurplusOtherAndSwappedLetters) {
  const std::vector<std::string> names = {"info", "tree", "wells", "detectors", "dyes"};
  for (const char* word : {"nfo", "infoo", "imfo", "ifno", "INFO"}) {
    EXPECT_EQ(lab::NearestName(word, names), "info") << word;
  }
  EXPECT_EQ(lab::NearestName("det", names), "detectors");
  EXPECT_EQ(lab::NearestName("xyz", names), std::nullopt);
  EXPECT_EQ(lab::NearestName("", names), std::nullopt);
  EXPECT_EQ(lab::NearestName("i", names), std::nullopt);
  EXPECT_EQ(lab::NearestName(std::string(100000, 'i'), names), std::nullopt);
}

}  // namespace vex2::test
