#include <algorithm>

#include "lab/text/Columns.h"
#include "lab/text/Table.h"
#include "tests/tools/DocumentFixture.h"
#include "tests/tools/Screen.h"
#include "tools/vex/Terminal.h"

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;

namespace vex2::test {

namespace {

constexpr const char* kComment = "second dilution series of the liver samples, measured again";

bool isAsciiText(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & '\x80') == 0; });
}

std::size_t widest(const std::string& text) {
  std::size_t most = 0;
  for (const std::string& line : LinesOf(text)) most = std::max(most, tool::Columns(line));
  return most;
}

}  // namespace

/// Makes a simulated run of 384 wells with content for all commands.
class ScreenTest : public DocumentTest {
 protected:
  void SetUp() override {
    DocumentTest::SetUp();
    Output({"simulate", path_, "--wells", "384", "--cycles", "2", "--seed", "1"});
    Output({"set", path_, std::string("comment=") + kComment});
    Output({"detectors", path_, "--add", "name=GR\xc3\x9cN", "reporter=FAM",
            "description=a detector whose description is longer than a narrow screen is wide"});
  }

  std::vector<VexProcess::Arguments> calls() const {
    return {{"info", path_},
            {"info", path_, path_},
            {"tree", path_},
            {"wells", path_},
            {"detectors", path_},
            {"dyes", path_},
            {"calibration", path_},
            {"frame", path_, "0"},
            {"spectrum", path_, "--well", "A1", "--frame", "0"},
            {"check", "--notes", path_},
            {"recover", path_, "-o", folder_ / "recovered.vex", "--force"},
            {"wells", "--help"}};
  }
};

TEST_F(ScreenTest, FortyColumnsFoldWhatEveryCommandPrints) {
  for (const auto& call : calls()) {
    const CommandResult result =
        RunVexOn({.environment = {{"NO_COLOR", "1"}}, .columns = 40}, call);
    EXPECT_EQ(result.exitCode, 0) << call.front();
    for (const std::string& line : LinesOf(result.output)) {
      if (tool::Columns(line) <= 40) continue;
      // Only a single word that is too wide may make a line longer.
      const std::string words = line.substr(line.find_first_not_of(' '));
      EXPECT_TRUE(words.find(' ') == std::string::npos || words.find(path_) != std::string::npos ||
                  words.find(folder_ / "recovered.vex") != std::string::npos)
          << call.front() << ": " << line;
    }
  }
}

TEST_F(ScreenTest, FortyColumnsCutNoFileNameAndNoValue) {
  const auto at40 = [&](const VexProcess::Arguments& call) {
    std::string text = RunVexOn({.environment = {}, .columns = 40}, call).output;
    std::string joined;
    for (const std::string& line : LinesOf(text)) {
      joined += " " + line.substr(std::min(line.size(), line.find_first_not_of(' ')));
    }
    return joined;
  };
  EXPECT_THAT(at40({"info", path_}), AllOf(HasSubstr(path_), HasSubstr(kComment)));
  EXPECT_THAT(at40({"info", path_, path_}), HasSubstr(path_));
  EXPECT_THAT(at40({"tree", path_}), HasSubstr(kComment));
  EXPECT_THAT(at40({"spectrum", path_, "--well", "A1", "--frame", "0"}), HasSubstr(path_));
  const std::string detectors = at40({"detectors", path_});
  EXPECT_THAT(detectors, HasSubstr("GR\xc3\x9cN"));
  for (const char* word : {"description", "longer", "narrow", "wide"}) {
    EXPECT_THAT(detectors, HasSubstr(word));
  }
}

TEST_F(ScreenTest, WidthComesFromTheOptionThenColumnsThenTheTerminal) {
  const VexProcess::Arguments plain = {"wells", path_};
  const VexProcess::Arguments option = {"wells", path_, "--width", "100"};
  const auto width = [&](const std::string& columns, const VexProcess::Arguments& call) {
    Screen screen{.environment = {{"NO_COLOR", "1"}}, .columns = 200};
    if (!columns.empty()) screen.environment["COLUMNS"] = columns;
    return widest(RunVexOn(screen, call).output);
  };
  EXPECT_GT(width("", plain), 100U);
  EXPECT_LE(width("60", plain), 60U);
  EXPECT_GT(width("60", option), 60U);
  EXPECT_LE(width("60", option), 100U);
  EXPECT_GT(width("no number", plain), 100U);
}

TEST_F(ScreenTest, WidthIsTakenBeforeTheCommandAndForAFileToo) {
  EXPECT_LE(widest(Output({"--width", "40", "wells", path_})), 40U + path_.size());
  const CommandResult result = RunVexOn({.environment = {{"COLUMNS", "50"}}}, {"wells", path_});
  EXPECT_LE(widest(result.output.substr(result.output.find('\n'))), 50U);
}

TEST_F(ScreenTest, AFileGetsTextInOneLineButNoEndlessPlate) {
  EXPECT_THAT(Output({"info", path_}), HasSubstr(std::string(kComment) + "\n"));
  const std::string plate = Output({"wells", path_});
  EXPECT_LE(widest(plate), 200U);
}

TEST_F(ScreenTest, PlainLocaleGetsOnlyAscii) {
  for (const auto& call : calls()) {
    const CommandResult result = RunVexOn({.environment = {{"LC_ALL", "C"}}}, call);
    EXPECT_EQ(result.exitCode, 0) << call.front();
    EXPECT_TRUE(isAsciiText(result.output)) << call.front() << "\n" << result.output;
  }
  const CommandResult detectors =
      RunVexOn({.environment = {{"LC_ALL", "C"}}}, {"detectors", path_});
  EXPECT_THAT(detectors.output, HasSubstr("GR\\u00dcN"));
  const CommandResult error =
      RunVexOn({.environment = {{"LC_ALL", "C"}}}, {"info", "gr\xc3\xbcn.vex"});
  EXPECT_EQ(error.errors, "vex: gr\\u00fcn.vex: No such file or directory\n");
}

TEST_F(ScreenTest, LocaleIsTheFirstVariableThatIsSet) {
  const auto ascii = [&](const std::map<std::string, std::string>& environment) {
    return isAsciiText(RunVexOn({.environment = environment}, {"detectors", path_}).output);
  };
  EXPECT_FALSE(ascii({{"LC_ALL", "de_DE.utf8"}}));
  EXPECT_FALSE(ascii({{"LC_ALL", ""}, {"LC_CTYPE", "xx_XX.UTF-8"}, {"LANG", "C"}}));
  EXPECT_FALSE(ascii({{"LC_ALL", ""}, {"LC_CTYPE", ""}, {"LANG", "en_US.UTF-8"}}));
  EXPECT_TRUE(ascii({{"LC_ALL", "POSIX"}, {"LANG", "en_US.UTF-8"}}));
  EXPECT_TRUE(ascii({{"LC_ALL", ""}, {"LC_CTYPE", ""}, {"LANG", ""}}));
}

TEST_F(ScreenTest, MachineFormatsAreTheSameInEveryLocale) {
  for (const char* form : {"--json", "--csv"}) {
    const CommandResult plain =
        RunVexOn({.environment = {{"LC_ALL", "C"}, {"TERM", "dumb"}}}, {"detectors", path_, form});
    EXPECT_EQ(plain.output, Output({"detectors", path_, form}));
    EXPECT_THAT(plain.output, HasSubstr("GR\xc3\x9cN"));
  }
}

TEST_F(ScreenTest, DumbTerminalGetsNoControlSequences) {
  auto all = calls();
  all.push_back({"simulate", folder_ / "dumb.vex", "--cycles", "2"});
  for (const auto& call : all) {
    const CommandResult result = RunVexOn({.environment = {{"TERM", "dumb"}}, .columns = 80}, call);
    EXPECT_EQ(result.exitCode, 0) << call.front();
    EXPECT_EQ(result.output.find_first_of("\x1b\r"), std::string::npos) << result.output;
    EXPECT_TRUE(isAsciiText(result.output)) << result.output;
  }
}

TEST_F(ScreenTest, DumbTerminalShowsHowARecordingEnded) {
  const CommandResult result = RunVexOn({.environment = {{"TERM", "dumb"}}, .columns = 80},
                                        {"simulate", folder_ / "dumb.vex", "--cycles", "2"});
  EXPECT_THAT(LinesOf(result.output).back(), HasSubstr("2/2 frames"));
}

TEST_F(ScreenTest, ColorOptionPrecedesTheEnvironment) {
  const auto hasColors = [&](const Screen& screen, const std::string& option) {
    VexProcess::Arguments call = {"info", path_};
    if (!option.empty()) call.push_back(option);
    return RunVexOn(screen, call).output.find("\x1b[") != std::string::npos;
  };
  const Screen terminal{.environment = {}, .columns = 80};
  const Screen quiet{.environment = {{"NO_COLOR", "1"}}, .columns = 80};
  EXPECT_TRUE(hasColors(terminal, ""));
  EXPECT_TRUE(hasColors(terminal, "--color=auto"));
  EXPECT_FALSE(hasColors(terminal, "--color=never"));
  EXPECT_FALSE(hasColors(quiet, ""));
  EXPECT_TRUE(hasColors(quiet, "--color=always"));
  EXPECT_FALSE(hasColors({}, ""));
  EXPECT_TRUE(hasColors({}, "--color=always"));
}

TEST(Table, WideColumnsMoveBelowOthersAfterTheFirst) {
  const std::vector<std::string> names = {"name", "one", "two"};
  const std::vector<std::vector<std::string>> rows = {
      {"a", std::string(20, 'x'), std::string(20, 'y')}, {"b", "c", "d"}};
  tool::Terminal::Configure({.width = 40});
  const std::string table = tool::DrawTable(names, rows, tool::Terminal::Out());
  tool::Terminal::Configure({});
  EXPECT_EQ(table, "name  one\na     " + std::string(20, 'x') + "\nb     c\n\nname  two\na     " +
                       std::string(20, 'y') + "\nb     d\n");
}

TEST(Folded, BreaksAtBlanksAndKeepsWordsWhole) {
  EXPECT_EQ(tool::Folded("aa bb cc", 2, 7), "aa bb\n  cc");
  EXPECT_EQ(tool::Folded("a wide-word-of-its-own b", 2, 8), "a\n  wide-word-of-its-own\n  b");
}

// Checks the lines that a terminal shows at the end; a rewritten line counts only once.
TEST_F(ScreenTest, FollowDrawsCurvesThatItCanWriteAgain) {
  for (const bool isAscii : {false, true}) {
    const CommandResult result = RunVexOn(
        {.environment = {{"NO_COLOR", "1"}, {"LC_ALL", isAscii ? "C" : "C.UTF-8"}}, .columns = 80},
        {"follow", path_});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, HasSubstr("fluorescence"));
    EXPECT_THAT(result.output, HasSubstr("2/2 frames"));
    EXPECT_THAT(result.output, HasSubstr(": the run is complete, 2 frames\n"));
    EXPECT_EQ(isAsciiText(result.output), isAscii) << result.output;
    for (const std::string& line : LinesOf(result.output)) {
      // A carriage return begins the progress line again, so only the text after the last one is
      // shown.
      const std::string last = line.substr(line.rfind('\r') + 1);
      EXPECT_LE(tool::Columns(last.substr(0, last.find('\x1b'))), 80U) << line;
    }
  }
}

}  // namespace vex2::test
