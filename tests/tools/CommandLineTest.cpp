#include <gmock/gmock.h>

#include <algorithm>

#include "tests/tools/VexProcess.h"
#include "tools/vex/command/Command.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using vex2::test::CommandResult;
using vex2::test::RunVex;

namespace {

void expectMisuse(const vex2::test::VexProcess::Arguments& arguments, const std::string& text) {
  const CommandResult result = RunVex(arguments);
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, AllOf(StartsWith("vex: "), HasSubstr(text)));
  EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
}

}  // namespace

TEST(CommandLine, HelpOfEveryCommandHasAnExampleAndFitsATerminal) {
  std::vector<std::vector<std::string>> calls = {{"--help"}};
  for (const auto& command : vex2::tool::MakeCommands()) {
    calls.push_back({command->Describe().name, "--help"});
    const auto* group = dynamic_cast<const vex2::tool::CommandGroup*>(command.get());
    if (group == nullptr) continue;
    for (const auto& action : group->Actions()) {
      calls.push_back({command->Describe().name, action->Describe().name, "--help"});
    }
  }
  for (const auto& call : calls) {
    const CommandResult result = RunVex(call);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, HasSubstr("Example")) << call.front();
    EXPECT_THAT(result.output, HasSubstr("\n  vex ")) << call.front();
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST(CommandLine, VersionIsPrinted) {
  const CommandResult result = RunVex({"--version"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output.substr(0, result.output.find('\n')),
              testing::MatchesRegex("vex [0-9]+\\.[0-9]+\\.[0-9]+"));
}

TEST(CommandLine, InvalidCallsGiveOneLine) {
  expectMisuse({}, "see 'vex --help'");
  expectMisuse({"nonsense"}, "unknown command 'nonsense'; see 'vex --help'");
  expectMisuse({"study", "lst"}, "unknown command 'lst'; did you mean 'list'?");
  expectMisuse({"info", "--jsn"}, "unknown option '--jsn'; did you mean '--json'?");
  expectMisuse({"info"}, "see 'vex info --help'");
  expectMisuse({"tree", "a", "b"}, "see 'vex tree --help'");
  expectMisuse({"frame", "a.vex", "three"}, "three");
  expectMisuse({"export", "a.vex", "--format", "xml"}, "xml");
  expectMisuse({"export", "a.vex", "--block", "RAWb"}, "RAWb");
}

TEST(CommandLine, PathThatLeadsNowhereIsTheCallsFault) {
  for (const char* command : {"info", "tree", "export", "status"}) {
    expectMisuse({command, "/nowhere/run.vex"}, "/nowhere/run.vex: No such file or directory");
  }
  expectMisuse({"frame", "/nowhere/run.vex", "0"}, "/nowhere/run.vex: No such file");
  expectMisuse({"copy", "/nowhere/run.vex", "/nowhere/copy.vex"}, "/nowhere/run.vex: No such file");
  expectMisuse({"set", "/nowhere/run.vex", "comment=x"}, "/nowhere/run.vex: No such file");
  expectMisuse({"info", "/"}, "/: ");
}

TEST(Printable, NothingThatATerminalObeysPasses) {
  using vex2::tool::Printable;
  EXPECT_EQ(Printable("plain text, grün"), "plain text, grün");
  EXPECT_EQ(Printable("a\x1b[31m\nb"), "a\\x1b[31m\\x0ab");
  EXPECT_EQ(Printable("\x80\xff\xc3"), "\\x80\\xff\\xc3");
  EXPECT_EQ(Printable("\xc2\x9b"), "\\x9b");
  EXPECT_EQ(Printable(std::string_view("\0", 1)), "\\x00");
}
