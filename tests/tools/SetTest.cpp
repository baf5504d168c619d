#include "tests/tools/DocumentFixture.h"

namespace vex2::test {

class Set : public DocumentTest {};

TEST_F(Set, ChangesWhatIsNamedAndNothingElse) {
  MakeRun();
  const std::string exported = Output({"export", path_, "--raw"});
  EXPECT_EQ(Output({"set", path_, "comment=second run, gr\xc3\xbcn", "sample-volume=25",
                    "pre-flag=-56", "confidence=97.5", "calibrator=sample 1", "analysis-type=3"}),
            "comment: none -> second run, gr\xc3\xbcn\nsample-volume: 0 -> 25\npre-flag: 0 -> -56\n"
            "confidence: none -> 97.5\ncalibrator: none -> sample 1\nanalysis-type: none -> 3\n");
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  Vex2GlobalComplex settings;
  ASSERT_EQ(document.GetGlobalComplexInfo(&settings), 0);
  EXPECT_EQ(std::string(settings.commentData, settings.commentData + settings.commentLength),
            "second run, gr\xfcn");
  EXPECT_EQ(settings.sampleVolume, 25);
  EXPECT_EQ(settings.preFlag, -56);
  EXPECT_EQ(settings.version, 512U);
  float percent = 0;
  EXPECT_EQ(document.GetConfidencePercent(percent), 0);
  EXPECT_EQ(percent, 97.5F);
  EXPECT_EQ(Output({"export", path_, "--raw"}), exported);
}

TEST_F(Set, TheRawDataStayTheLastRecord) {
  MakeRun();
  Output({"set", path_, "comment=x", "endogenous-control=18S"});
  const auto tree = TreeOutput({path_});
  ASSERT_EQ(tree.size(), 3U);
  EXPECT_EQ(tree[2]["tag"], "RAWa");
}

TEST_F(Set, TextsThatAreSetToEmptyAreRemoved) {
  MakeRun();
  Output({"set", path_, "calibrator=a", "comment=b", "passive-reference=ROX"});
  EXPECT_EQ(Output({"set", path_, "calibrator=", "comment=", "passive-reference="}),
            "calibrator: a -> none\ncomment: b -> none\npassive-reference: ROX -> none\n");
  EXPECT_FALSE(JsonOutput({"info", "--json", path_})["settings"].contains("comment"));
}

TEST_F(Set, DryRunChangesNothing) {
  MakeRun();
  const Bytes before = ReadBytes(path_);
  EXPECT_EQ(Output({"set", path_, "--dry-run", "version=7"}),
            "version: 512 -> 7\n(dry run: nothing was changed)\n");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(Set, ANewLogKeepsTheLinesOfTheRecorder) {
  MakeRecordedRun();
  const std::string exported = Output({"export", path_});
  Output({"set", path_, "log=operator=me"});
  EXPECT_EQ(Output({"export", path_}), exported);
  EXPECT_EQ(JsonOutput({"info", "--json", path_})["settings"]["log"],
            std::string("operator=me\n") + kRunLog);
  Output({"set", path_, "log=scale=5"});
  EXPECT_EQ(Output({"export", path_}), exported);
}

TEST_F(Set, EveryNumberHasItsLimits) {
  MakeRun();
  const Bytes before = ReadBytes(path_);
  const auto limits =
      std::to_array<std::array<const char*, 4>>({{"sample-volume", "0", "65535", "65536"},
                                                 {"unit-code", "0", "65535", "-1"},
                                                 {"pre-flag", "-128", "127", "128"},
                                                 {"post-flag", "-128", "127", "-129"},
                                                 {"ftrd", "-128", "127", "128"},
                                                 {"drks", "-128", "127", "x"},
                                                 {"version", "0", "4294967295", "4294967296"},
                                                 {"analysis-type", "0", "65535", ""},
                                                 {"confidence", "0", "100", "100.5"}});
  for (const auto& [key, least, most, beyond] : limits) {
    ExpectRefused({"set", path_, std::string(key) + "=" + beyond}, 2, "cannot be");
    EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
    for (const char* value : {least, most}) {
      Output({"set", path_, "--dry-run", std::string(key) + "=" + value});
    }
  }
  ExpectRefused({"set", path_, "confidence=nan"}, 2, "cannot be");
  ExpectRefused({"set", path_, "comment=\xe2\x82\xac"}, 2, "Latin-1");
}

TEST_F(Set, RefusesWhatIsNoSetting) {
  MakeRun();
  ExpectRefused({"set", path_, "colour=red"}, 2, "unknown setting 'colour'");
  ExpectRefused({"set", path_, "comment"}, 2, "'comment' is not of the form key=value");
  ExpectRefused({"set", path_, "ftrd=1", "ftrd=2"}, 2, "'ftrd' is given twice");
}

TEST_F(Set, RefusesARunInProgress) {
  MakeRun("PROG");
  const Bytes before = ReadBytes(path_);
  ExpectRefused({"set", path_, "comment=x"}, 1, "its run is in progress");
  ExpectRefused({"set", path_, "comment=x", "--dry-run"}, 1, "its run is in progress");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(Set, RefusesADocumentOfWhichItHasOnlyAPart) {
  MakeRun();
  Bytes bytes = ReadBytes(path_);
  bytes.pop_back();
  WriteBytes(path_, bytes);
  ExpectRefused({"set", path_, "comment=x"}, 1, "so it is not saved");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), bytes), "");
}

TEST_F(Set, RefusesToLoseWhatItDoesNotKnow) {
  Bytes inner = {0, 1};
  AppendRecord(inner, "Wwww", {1, 2});
  Bytes records;
  AppendRecord(records, "GLBL", inner);
  MakeDocument(records);
  ExpectRefused({"set", path_, "comment=x"}, 1,
                "at byte 1034: saving would lose the bytes of the record \"Wwww\"");
  EXPECT_EQ(RunVex({"set", path_, "comment=x", "--drop-unknown"}).exitCode, 0);
}

TEST_F(Set, CountsWhatItWouldLose) {
  Bytes records;
  AppendRecord(records, "Zzzz", {1, 2, 3});
  AppendRecord(records, "Yyyy", {4});
  MakeDocument(records);
  ExpectRefused(
      {"set", path_, "comment=x"}, 1,
      "at byte 1024: saving would lose the record \"Zzzz\" of 3 bytes, which is of no known "
      "kind, and data in 1 other place; give --drop-unknown to accept that\n");
}

}  // namespace vex2::test
