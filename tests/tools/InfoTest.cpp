#include "tests/tools/DocumentFixture.h"

using testing::HasSubstr;

namespace vex2::test {

class Info : public DocumentTest {};

TEST_F(Info, SaysWhatAPersonWantsToKnow) {
  MakeRun();
  const std::string text = Output({"info", path_});
  for (const char* part :
       {"Kest", "96 wells (8 x 12), 96 in use, type p9C", "AbsQ, run RtRn",
        "DONE, acquisition finished", "RAWa: 3 frames of 3 wells", "2026-03-04 05:06:07",
        "scale=100", "version 512", "2 in all, GLBL, RAWa"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST_F(Info, IsAnObjectForPrograms) {
  MakeRun("PROG");
  const auto info = JsonOutput({"info", "--json", path_});
  EXPECT_EQ(info["file"], path_);
  EXPECT_EQ(info["whole"], true);
  EXPECT_EQ(info["status"], "PROG");
  EXPECT_EQ(info["frames"], 3);
  EXPECT_EQ(info["start"], "2026-03-04 05:06:07");
  EXPECT_TRUE(info["end"].is_null());
  EXPECT_EQ(info["plate"]["rows"], 8);
  EXPECT_EQ(info["settings"]["log"], "scale=100\n");
  EXPECT_TRUE(info["programSize"].is_null());
  EXPECT_EQ(info["records"][1]["tag"], "RAWa");
  EXPECT_EQ(info["faults"].size(), 0U);
}

TEST_F(Info, GoesOnAfterADocumentThatIsNone) {
  MakeRun();
  const std::string other = folder_ / "other.vex";
  WriteBytes(other, ToBytes("no document"));
  const CommandResult result = RunVex({"info", "--json", other, path_});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(nlohmann::json::parse(result.output)["file"], path_);
  EXPECT_EQ(result.errors, "vex: " + other +
                               ": at byte 0: this is no plate document: it does not begin with "
                               "Vex2\n");
}

TEST_F(Info, ShowsWhatIsLeftOfADocumentThatIsCutShort) {
  MakeRun();
  Bytes bytes = ReadBytes(path_);
  bytes.resize(bytes.size() - 1);
  WriteBytes(path_, bytes);
  const CommandResult result = RunVex({"info", path_});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr("version 512"));
  EXPECT_THAT(result.errors,
              HasSubstr("the record \"RAWa\" is cut short: 2 of 3 frames are there"));
}

TEST_F(Info, AFrameThatWasNotCommittedIsNoFault) {
  MakeRun("PROG");
  Bytes bytes = ReadBytes(path_);
  bytes.insert(bytes.end(), bytes.end() - 240, bytes.end() - 100);
  WriteBytes(path_, bytes);
  const auto info = JsonOutput({"info", "--json", path_});
  EXPECT_EQ(info["whole"], true);
  EXPECT_EQ(info["frames"], 3);
  ASSERT_EQ(info["faults"].size(), 1U);
  EXPECT_EQ(info["faults"][0]["offset"], bytes.size() - 140);
  EXPECT_THAT(info["faults"][0]["what"], "140 bytes of a frame that was not committed");
}

TEST_F(Info, HostileTextsDoNotReachTheTerminal) {
  Bytes comment;
  AppendRecord(comment, "COMM", ToBytes("\x1b[2Jbad\nline"));
  Bytes records;
  Bytes body = {0, 1};
  body.insert(body.end(), comment.begin(), comment.end());
  AppendRecord(records, "GLBL", body);
  MakeDocument(records);
  EXPECT_THAT(Output({"info", path_}), HasSubstr("\\x1b[2Jbad\\x0aline"));
}

}  // namespace vex2::test
