#include <fstream>
#include <set>

#include "lab/Error.h"
#include "tests/tools/DocumentFixture.h"
#include "tests/tools/Screen.h"

using testing::HasSubstr;

namespace vex2::test {

class JsonError : public DocumentTest {
 protected:
  // The error of the command, which must be the only line on standard error.
  static nlohmann::json ErrorOf(const VexProcess::Arguments& arguments) {
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(LinesOf(result.errors).size(), 1U) << result.errors;
    const auto object = nlohmann::json::parse(result.errors);
    EXPECT_EQ(object["error"]["exit_code"], result.exitCode);
    return object["error"];
  }
  static std::string CodeOf(const VexProcess::Arguments& arguments) {
    return ErrorOf(arguments)["code"];
  }
};

TEST_F(JsonError, OutputThatExistsHasACodeOfItsOwn) {
  MakeRun();
  const std::string output = folder_ / "out.vex";
  WriteBytes(output, ToBytes("something"));
  EXPECT_EQ(CodeOf({"recover", path_, "-o", output, "--json"}), "exists");
}

TEST_F(JsonError, HoldsCodeFileOffsetMessageAndExitCode) {
  const auto missing = ErrorOf({"info", "--json", "/nowhere/run.vex"});
  EXPECT_EQ(missing["code"], "no-such-file");
  EXPECT_EQ(missing["file"], "/nowhere/run.vex");
  EXPECT_TRUE(missing["offset"].is_null());
  EXPECT_EQ(missing["message"], "No such file or directory");
  EXPECT_EQ(missing["exit_code"], 2);
  WriteBytes(path_, ToBytes("no document"));
  const auto none = ErrorOf({"info", "--json", path_});
  EXPECT_EQ(none["code"], "no-document");
  EXPECT_EQ(none["offset"], 0);
  EXPECT_EQ(none["exit_code"], 1);
}

TEST_F(JsonError, EveryCommandWithJsonReportsMisuseAsJson) {
  const std::vector<std::string> commands = {"info",      "tree",  "get",         "wells",
                                             "detectors", "dyes",  "calibration", "frame",
                                             "spectrum",  "check", "recover"};
  for (const std::string& command : commands) {
    EXPECT_EQ(CodeOf({command, "--json", "--nonsens"}), "unknown-option") << command;
    EXPECT_EQ(CodeOf({command, "--json"}), "missing-argument") << command;
  }
  EXPECT_EQ(CodeOf({"study", "list", "--json"}), "missing-argument");
  EXPECT_EQ(CodeOf({"inf", "--json"}), "unknown-command");
  EXPECT_EQ(CodeOf({"tree", "--json", "a", "b"}), "surplus-argument");
  EXPECT_EQ(CodeOf({"tree", "--json", "a", "--depth", "x"}), "invalid-value");
}

TEST_F(JsonError, ReportsWhatIsMissing) {
  MakeRun();
  EXPECT_EQ(CodeOf({"frame", path_, "99", "--json"}), "no-such-frame");
  EXPECT_EQ(CodeOf({"spectrum", path_, "--well", "Z9", "--frame", "0", "--json"}), "no-such-well");
  EXPECT_EQ(CodeOf({"info", path_, "--plate", "x", "--json"}), "no-such-plate");
  EXPECT_EQ(CodeOf({"get", path_, "nothing", "--json"}), "no-such-value");
  EXPECT_EQ(CodeOf({"info", "/", "--json"}), "not-a-file");
}

TEST_F(JsonError, NamesOfFilesAreAsTheyWereGiven) {
  EXPECT_EQ(ErrorOf({"info", "--json", "gr\xc3\xbcn\x1b.vex"})["file"], "gr\xc3\xbcn\x1b.vex");
  const CommandResult latin = RunVex({"info", "--json", "gr\xfcn.vex"});
  EXPECT_TRUE(nlohmann::json::accept(latin.errors));
}

TEST_F(JsonError, WithoutJsonAnErrorIsALineOfText) {
  EXPECT_EQ(RunVex({"info", "/nowhere/run.vex"}).errors,
            "vex: /nowhere/run.vex: No such file or directory\n");
  EXPECT_EQ(RunVex({"info", "--", "--json"}).errors, "vex: --json: No such file or directory\n");
}

TEST_F(JsonError, EveryCodeIsDocumentedAndHasANameOfItsOwn) {
  const std::string help = Output({"help", "errors"});
  std::set<std::string_view> names;
  for (const lab::ErrorKind& kind : lab::ErrorKinds()) {
    EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
    EXPECT_THAT(help, HasSubstr("\n" + std::string(kind.name) + " "));
    EXPECT_EQ(lab::Error(kind.code, "x").Class(), kind.errorClass);
  }
}

}  // namespace vex2::test
