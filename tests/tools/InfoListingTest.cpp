#include "tests/tools/DocumentFixture.h"
#include "tests/tools/Screen.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace vex2::test {

class InfoListing : public DocumentTest {
 protected:
  const std::string other_ = folder_ / "a-run-with-a-longer-name.vex";

  void SetUp() override {
    DocumentTest::SetUp();
    MakeRun();
    Output({"copy", path_, other_});
    Output({"status", other_, "PROG"});
  }
};

TEST_F(InfoListing, SeveralDocumentsAreALineEach) {
  const auto lines = LinesOf(Output({"info", path_, other_}));
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith("file"));
  EXPECT_THAT(lines[1], StartsWith(path_ + " "));
  EXPECT_THAT(lines[2], StartsWith(other_ + " "));
  const std::size_t status = lines[0].find("status");
  EXPECT_EQ(lines[1].substr(status, 4), "DONE");
  EXPECT_EQ(lines[2].substr(status, 4), "PROG");
}

TEST_F(InfoListing, LongShowsAScreenForEach) {
  const std::string text = Output({"info", "--long", path_, other_});
  EXPECT_THAT(text, HasSubstr(path_ + "\n  kind"));
  EXPECT_THAT(text, HasSubstr(other_ + "\n  kind"));
}

TEST_F(InfoListing, OneDocumentIsAScreen) {
  EXPECT_THAT(Output({"info", path_}), HasSubstr("\n  kind"));
}

TEST_F(InfoListing, AFileThatCannotBeReadDoesNotStopTheOthers) {
  const std::string none = folder_ / "none.vex";
  const CommandResult result = RunVex({"info", path_, none, other_});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors, "vex: " + none + ": No such file or directory\n");
  EXPECT_EQ(LinesOf(result.output).size(), 3U);
}

TEST_F(InfoListing, ADocumentThatIsCutShortIsListedWithItsFaults) {
  Bytes bytes = ReadBytes(other_);
  bytes.resize(bytes.size() - 1);
  WriteBytes(other_, bytes);
  const CommandResult result = RunVex({"info", path_, other_});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr("1 fault"));
  EXPECT_THAT(result.errors, HasSubstr(other_ + ": at byte "));
}

}  // namespace vex2::test
