#include "tests/tools/DocumentFixture.h"

using testing::HasSubstr;

namespace vex2::test {

class Info : public DocumentTest {};

TEST_F(Info, PrintsAnOverview) {
  MakeRecordedRun();
  const std::string text = Output({"info", path_});
  for (const char* part : {"Kest: a document of the second instrument kind",
                           "96 wells (8 x 12), 96 in use, type p9C: 96 wells",
                           "AbsQ: absolute quantification, run RtRn", "DONE: acquisition finished",
                           "RAWa: 3 frames of 3 wells", "from 2026-03-04T05:06:07", "scale=100",
                           "version 512", "2 in all, GLBL, RAWa"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST_F(Info, IsAnObjectForPrograms) {
  MakeRecordedRun("PROG");
  const auto info = JsonOutput({"info", "--json", path_});
  EXPECT_EQ(info["file"], path_);
  EXPECT_EQ(info["whole"], true);
  EXPECT_EQ(info["status"], "PROG");
  EXPECT_EQ(info["frames"], 3);
  EXPECT_EQ(info["start"], "2026-03-04T05:06:07");
  EXPECT_EQ(info["version"], 1);
  EXPECT_EQ(info["blocks"][0]["recorded"], true);
  EXPECT_TRUE(info["end"].is_null());
  EXPECT_EQ(info["plate"]["rows"], 8);
  EXPECT_EQ(info["settings"]["log"], kRunLog);
  EXPECT_TRUE(info["programSize"].is_null());
  EXPECT_EQ(info["records"][1]["tag"], "RAWa");
  EXPECT_EQ(info["faults"].size(), 0U);
}

TEST_F(Info, ContinuesAfterAFileThatIsNoDocument) {
  MakeRun();
  const std::string other = folder_ / "other.vex";
  WriteBytes(other, ToBytes("no document"));
  const CommandResult result = RunVex({"info", "--json", other, path_});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(nlohmann::json::parse(result.output)["file"], path_);
  const auto error = nlohmann::json::parse(result.errors)["error"];
  EXPECT_EQ(error["code"], "no-document");
  EXPECT_EQ(error["file"], other);
  EXPECT_EQ(error["offset"], 0);
  EXPECT_EQ(error["message"],
            "this is not a plate document: it is a text; import CSV with 'vex record', "
            "'vex wells --from' or 'vex calibration --import'");
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

TEST_F(Info, TimesThatVexDidNotRecordAreBytes) {
  MakeRun();
  EXPECT_THAT(Output({"info", path_}), HasSubstr("from time bytes 26 3 4 5 6 7\n"));
  const auto info = JsonOutput({"info", "--json", path_});
  EXPECT_TRUE(info["start"].is_null());
  EXPECT_EQ(info["blocks"][0]["recorded"], false);
  EXPECT_EQ(info["blocks"][0]["startBytes"], nlohmann::json({26, 3, 4, 5, 6, 7}));
}

TEST_F(Info, CodesWithoutAKnownMeaningAreShownAsTheyAre) {
  MakeRun("GONE");
  Bytes bytes = ReadBytes(path_);
  const std::string assay = "Own ";
  std::copy(assay.begin(), assay.end(), bytes.begin() + 8);
  const std::string plate = "x9x ";
  std::copy(plate.begin(), plate.end(), bytes.begin() + 16);
  WriteBytes(path_, bytes);
  const std::string text = Output({"info", path_});
  EXPECT_THAT(text, HasSubstr(" GONE\n"));
  EXPECT_THAT(text, HasSubstr(" Own, run RtRn\n"));
  EXPECT_THAT(text, HasSubstr(", type x9x\n"));
}

TEST_F(Info, AProgramThatIsTextIsShownAsText) {
  Bytes records;
  AppendRecord(records, "TPro", ToBytes("hold 95 C\n40 cycles\n"));
  MakeDocument(records);
  EXPECT_THAT(Output({"info", path_}), HasSubstr("  program             hold 95 C\n"
                                                 "                      40 cycles\n"));
  EXPECT_EQ(JsonOutput({"info", "--json", path_})["programText"], "hold 95 C\n40 cycles\n");
  records.clear();
  AppendRecord(records, "TPro", {0, 1, 2, 65});
  MakeDocument(records);
  EXPECT_THAT(Output({"info", path_}), HasSubstr("  program             4 bytes, no text\n"));
  EXPECT_TRUE(JsonOutput({"info", "--json", path_})["programText"].is_null());
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
