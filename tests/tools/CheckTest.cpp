// What `vex check` finds in documents that have one thing wrong with them, and not in their
// neighbours that have not.

#include "tests/support/DocumentBytes.h"
#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CheckFrames : public DamageTest {};

TEST_F(CheckFrames, ARunIsSound) {
  MakeRun("PROG");
  ExpectSound();
  MakeRun("DONE");
  ExpectSound();
}

TEST_F(CheckFrames, PartOfAFrameBehindARunInProgressIsWhatAnInterruptedCommitLeaves) {
  MakeRun("PROG");
  AppendFrameBytes(100);
  ExpectWarning(
      "RAWa at 1872: 100 of the 240 bytes of a frame follow the block's length: a commit was "
      "interrupted");
}

TEST_F(CheckFrames, PartOfAFrameBehindAFinishedRunIsAnError) {
  MakeRun("DONE");
  AppendFrameBytes(100);
  ExpectError("RAWa at 1872: 100 of the 240 bytes of a frame follow the block's length");
}

TEST_F(CheckFrames, OneWholeFrameBehindARunInProgressIsWhatAnInterruptedCommitLeaves) {
  MakeRun("PROG");
  AppendFrameBytes(kFrame);
  ExpectWarning("RAWa at 1872: a whole frame follows the block's length: a commit was interrupted");
}

TEST_F(CheckFrames, MoreThanOneWholeFrameBehindTheBlockIsAnError) {
  MakeRun("PROG");
  AppendFrameBytes(2 * kFrame);
  ExpectError("RAWa at 1872: 2 whole frames follow the block's length");
  AppendFrameBytes(7);
  ExpectError(
      "RAWa at 1872: 2 whole frames and 7 of the 240 bytes of a frame follow the block's length");
}

TEST_F(CheckFrames, OneByteMoreThanAFrameIsMoreThanACommitLeaves) {
  MakeRun("PROG");
  AppendFrameBytes(kFrame + 1);
  ExpectError(
      "RAWa at 1872: 1 whole frame and 1 of the 240 bytes of a frame follow the block's length");
}

TEST_F(CheckFrames, ALengthThatCountsMoreFramesThanThereAreIsAnError) {
  MakeRun("DONE");
  Change([](Bytes& bytes) { bytes.resize(bytes.size() - 1); });
  ExpectError("RAWa at 1120: the record \"RAWa\" is cut short: 2 of 3 frames are there");
}

TEST_F(CheckFrames, ALengthThatCountsHalfAFrameIsAnError) {
  MakeRun("DONE");
  SetLong(kBlock + 4, kBlockLength - kFrame + 50);
  EXPECT_THAT(Errors(), HasSubstr("RAWa at 1120: its length counts 2 frames and 50 of the 240 "
                                  "bytes of another\n"));
}

TEST_F(CheckFrames, ALengthThatEndsBeforeTheFirstFrameIsAnError) {
  MakeRun("DONE");
  SetLong(kBlock + 4, 20);
  EXPECT_THAT(Errors(), HasSubstr("RAWa at 1120: its length ends before its first frame\n"));
}

TEST_F(CheckFrames, AFirstCommitThatWasInterruptedIsAWarning) {
  MakeRun("PROG");
  SetLong(kPositionAt, 0);
  Change([](Bytes& bytes) { bytes.resize(kFirstFrame + 10); });
  ExpectWarning(
      "RAWa at 1120: a block that the header does not lead to, cut short: its first commit was "
      "interrupted");
  Change([](Bytes& bytes) { bytes.resize(kBlock + 3); });
  ExpectWarning(
      " at 1120: 3 bytes of a block without its tag follow the last record: a first commit was "
      "interrupted");
}

TEST_F(CheckFrames, ABlockWithoutItsTagIsAFirstCommitOnlyAtTheBeginOfARun) {
  MakeRun("PROG");
  Change([](Bytes& bytes) {
    SetLongAt(bytes, kBlock, 0);
    SetLongAt(bytes, kBlock + 4, kBlockLength - 2 * kFrame);
    SetLongAt(bytes, kPositionAt, 0);
    bytes.resize(kFirstFrame + kFrame);
  });
  ExpectWarning(
      " at 1120: 272 bytes of a block without its tag follow the last record: a first commit was "
      "interrupted");
  SetStatus("DONE");
  ExpectError(" at 1120: 272 bytes follow the last record, and begin none that is known");
}

TEST_F(CheckFrames, ATimeBlockOfAnotherSizeIsAnError) {
  MakeRun();
  Change([](Bytes& bytes) { bytes[kBlock + 11] = 14; });
  ExpectError("RAWa at 1120: its time block is of 14 bytes, not 12");
}

TEST_F(CheckFrames, WellsThatStandTwiceOrOnNoPlateAreAWarning) {
  MakeRun();
  Change([](Bytes& bytes) { bytes[kBlock + 27] = 97; });
  ExpectWarning("RAWa at 1120: 1 of its wells is on no plate of 96 wells");
  Change([](Bytes& bytes) { bytes[kBlock + 27] = 96; });
  ExpectSound();
  Change([](Bytes& bytes) { bytes[kBlock + 27] = 3; });
  ExpectWarning("RAWa at 1120: 1 of its wells stands in it twice");
}

TEST_F(CheckFrames, ABlockOfTheOldVersionIsAWarning) {
  MakeDocument(ByteString().Text("REPr").Long(18 + 80).Short(1).Short(1).Short(5).Zeros(92));
  EXPECT_THAT(Warnings(), HasSubstr("REPr at 1024: a data block of version 1"));
}

class CheckPosition : public DamageTest {};

TEST_F(CheckPosition, OfRawDataElsewhereThanItsTagIsAnError) {
  MakeRun("PROG");
  SetLong(kPositionAt, kBlock + 1);
  ExpectError(
      "header at 68: the header's position of RAWa is 1121, but the block is at byte 1120, and the "
      "run is in progress");
  SetStatus("DONE");
  ExpectError(
      "header at 68: the header's position of RAWa is 1121, which is not where the block is, at "
      "byte 1120");
}

TEST_F(CheckPosition, JustPastTheBlockIsWhatAWholeSaveLeaves) {
  MakeRun("DONE");
  SetLong(kPositionAt, kEnd);
  ExpectSound();
  EXPECT_EQ(
      Notes(),
      "header at 68: the header's position of RAWa is 1872, just past the block, as a save of "
      "the whole document leaves it\n");
  SetStatus("PROG");
  ExpectWarning(
      "header at 68: the header's position of RAWa is 1872, just past the block at byte 1120, and "
      "the run is in progress");
}

TEST_F(CheckPosition, NoneForABlockIsWhatAFirstCommitLeavesThatWasInterrupted) {
  MakeRun("PROG");
  SetLong(kPositionAt, 0);
  ExpectWarning(
      "header at 68: the header's position of RAWa is 0, but the block is at byte 1120, and the "
      "run is in progress");
  SetStatus("DONE");
  ExpectSound();
}

TEST_F(CheckPosition, WithoutABlockIsWorseWhileTheRunGoesOn) {
  MakeRun("DONE");
  Change([](Bytes& bytes) { bytes.resize(kBlock); });
  ExpectWarning("header at 68: the header's position of RAWa is 1120, but there is no such record");
  SetStatus("PROG");
  ExpectError("header at 68: the header's position of RAWa is 1120, but there is no such record");
  SetLong(kPositionAt, 0);
  ExpectSound();
}

TEST_F(CheckPosition, OfTheProgramElsewhereThanItsRecordIsAnError) {
  Bytes records;
  AppendRecord(records, "TPro", {1, 2, 3});
  MakeDocument(records);
  SetLong(kProgramAt, 1025);
  ExpectError(
      "header at 24: the header's position of TPro is 1025, which is not where its record is, at "
      "byte 1024");
  for (const unsigned long right : {0UL, 1024UL, 1035UL}) {
    SetLong(kProgramAt, right);
    ExpectSound();
  }
  Change([](Bytes& bytes) { bytes.resize(1024); });
  ExpectWarning("header at 24: the header's position of TPro is 1035, but there is no such record");
}

TEST_F(CheckPosition, RecordsBehindTheBlockOfARunInProgressAreAWarning) {
  MakeRun("PROG");
  Bytes more;
  AppendRecord(more, "COMM", ToBytes("text"));
  Append(more);
  ExpectWarning("RAWa at 1120: the run is in progress, and 1 record stands behind its block");
  SetStatus("DONE");
  ExpectSound();
}

class CheckHeaders : public DamageTest {
 protected:
  void SetUp() override { MakeDocument({}); }
};

TEST_F(CheckHeaders, AnEmptyDocumentIsSound) {
  ExpectSound();
  EXPECT_EQ(Notes(), "");
}

TEST_F(CheckHeaders, OneThatIsCutShortIsAnError) {
  Change([](Bytes& bytes) { bytes.resize(1023); });
  ExpectError("header at 1023: the header is cut short: 1023 of 1024 bytes are there");
}

TEST_F(CheckHeaders, WhatIsNoDocumentIsAnError) {
  WriteBytes(path_, ToBytes("no document"));
  ExpectError("header at 0: it does not begin with Vex2");
}

TEST_F(CheckHeaders, WellsInUseThatThePlateHasNotAreAWarning) {
  SetLong(72, 0x3FFF);
  ExpectWarning(
      "header at 72: the masks of wells in use have 2 wells in columns that a plate of 8 x 12 has "
      "not");
}

TEST_F(CheckHeaders, APlateThatItsTypeHasNotIsAWarning) {
  Change([](Bytes& bytes) { bytes[17] = '3'; });
  ExpectWarning("header at 20: a plate of 8 x 12 wells, but the type 'p3C ' has 384");
  Change([](Bytes& bytes) { bytes[17] = 'x'; });
  ExpectSound();
  EXPECT_THAT(Notes(), HasSubstr("the plate type 'pxC ' is none with a known number of wells"));
}

TEST_F(CheckHeaders, APlateOfMoreRowsThanAHeaderHoldsIsAnError) {
  Change([](Bytes& bytes) {
    bytes[21] = 239;
    bytes.resize(1028);
  });
  EXPECT_THAT(Errors(), HasSubstr("header at 20: a plate of 239 rows, more than a header has"));
}

class CheckRecords : public DamageTest {
 protected:
  static Bytes Global(unsigned long length) {
    return ByteString().Text("GLBL").Long(length).Short(1).Text("VERS").Long(4).Long(512);
  }
};

TEST_F(CheckRecords, ALengthThatIsRightIsSound) {
  MakeDocument(Global(14));
  ExpectSound();
}

TEST_F(CheckRecords, AListThatDeclaresLessThanItHoldsOverlapsTheNextRecord) {
  MakeDocument(Global(10));
  ExpectError(
      "GLBL at 1024: its length is 10, but what it holds takes 14 bytes, so that the records "
      "overlap");
}

TEST_F(CheckRecords, AListThatDeclaresMoreThanItHoldsReachesOverWhatFollows) {
  Bytes records = Global(15);
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  ExpectError(
      "GLBL at 1024: its length is 15, but what it holds takes 14 bytes, so that it reaches over "
      "what follows");
}

TEST_F(CheckRecords, AListWhoseTextLostItsZeroByteIsAWarning) {
  Bytes records = ByteString().Text("GLBL").Long(15).Short(1).Text("COMM").Long(4).Text("text");
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  ExpectWarning(
      "GLBL at 1024: its length is 15, but what it holds takes 14 bytes, as lists do whose texts "
      "lost a zero byte");
}

TEST_F(CheckRecords, ANumberOfAnotherSizeThanItsKindIsAnErrorAlsoWithinLists) {
  MakeDocument(ByteString().Text("GLBL").Long(14).Short(1).Text("VERS").Long(2).Long(512));
  ExpectError(
      "GLBL/VERS at 1034: its length is 2, but what it holds takes 4 bytes, so that the records "
      "overlap");
}

TEST_F(CheckRecords, CalibrationThatDeclaresLessThanItsEntriesTakeIsAnError) {
  const auto dyes = [](unsigned long length) {
    return ByteString().Text("PDYE").Long(length).Zeros(8).Short(1).Zeros(62).Zeros(16);
  };
  MakeDocument(dyes(88));
  ExpectSound();
  MakeDocument(dyes(87));
  ExpectError(
      "PDYE at 1024: its length is 87, but what it holds takes 88 bytes, so that the records "
      "overlap");
}

TEST_F(CheckRecords, ARecordThatIsCutShortIsAnErrorWithItsPlaceInLists) {
  MakeDocument(ByteString().Text("GLBL").Long(14).Short(1).Text("VERS").Long(4).Short(2));
  ExpectError("GLBL/VERS at 1034: the record \"VERS\" is cut short: 2 of 4 bytes are there");
}

TEST_F(CheckRecords, AListThatHasFewerRecordsThanItCountsIsAnError) {
  MakeDocument(ByteString().Text("SPEC").Long(2).Short(3));
  ExpectError("SPEC at 1024: the record \"SPEC\" is cut short: 0 of 3 records are there");
}

TEST_F(CheckRecords, OnesOfNoKnownKindAreWarnings) {
  Bytes records;
  AppendRecord(records, "Zzzz", {1, 2, 3});
  MakeDocument(records);
  ExpectWarning("Zzzz at 1024: a record of no known kind, of 3 bytes");
  MakeDocument(ByteString().Text("SPEC").Long(13).Short(1).Text("Zzzz").Long(3).Zeros(3));
  ExpectWarning("SPEC/Zzzz at 1034: a record of no known kind within another, of 3 bytes");
}

TEST_F(CheckRecords, BytesBetweenRecordsThatAreNoneAreAnError) {
  Bytes records = ByteString().Long(1).Long(5).Zeros(5);
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  EXPECT_THAT(Errors(), HasSubstr("at 1024: these bytes are no record, and known ones follow\n"));
}

TEST_F(CheckRecords, BytesWithinAListThatAreNoRecordsAreOneErrorAndNoLengthIsToBeMended) {
  MakeDocument(
      ByteString().Text("GLBL").Long(38).Short(3).Zeros(24).Text("VERS").Long(4).Long(512));
  const auto errors = Found(tool::Severity::kError);
  EXPECT_THAT(Told(errors), HasSubstr("GLBL at 1034: from here on there are bytes that are no"));
  for (const tool::Finding& error : errors) {
    EXPECT_THAT(error.remedy, HasSubstr("'vex recover'")) << error.problem;
  }
  EXPECT_EQ(Warnings(), "");
}

TEST_F(CheckRecords, BytesBehindTheLastAreAnErrorWhenARecordMayHideInThem) {
  Bytes records;
  AppendRecord(records, "COMM", ToBytes("text"));
  records.insert(records.end(), 7, 0xFF);
  MakeDocument(records);
  ExpectWarning(" at 1036: 7 bytes follow the last record, and begin none that is known");
  Append({0xFF});
  ExpectError(" at 1036: 8 bytes follow the last record, and begin none that is known");
}

TEST_F(CheckRecords, ASecondOneOfAKindOfWhichTheFirstIsUsedIsAWarning) {
  Bytes records;
  AppendRecord(records, "TPro", {1});
  AppendRecord(records, "TPro", {1});
  MakeDocument(records);
  ExpectWarning("TPro at 1033: there is a record of this kind at byte 1024 already");
}

TEST_F(CheckRecords, WhatTheReaderNeverReachesByItsCountIsAnError) {
  // The list counts for more bytes than it has, so that the reader is done before the text.
  Bytes records = ByteString().Text("SPEC").Long(40).Short(0);
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  EXPECT_THAT(Errors(), HasSubstr("COMM at 1034: the record \"COMM\" could not be read, nor what "
                                  "follows it\n"));
}

TEST_F(CheckRecords, FindingsEndSomewhere) {
  Bytes records;
  for (int i = 0; i < 1500; ++i) AppendRecord(records, "Zzzz", {});
  MakeDocument(records);
  const tool::Findings findings = tool::CheckDocument(path_);
  EXPECT_EQ(findings.Sorted().size(), tool::Findings::kMost);
  EXPECT_EQ(findings.LeftOut(), 500U);
  EXPECT_EQ(findings.Count(tool::Severity::kWarning), 1500U);
}

class CheckCommandLine : public DamageTest {};

TEST_F(CheckCommandLine, ASoundDocumentIsOneLineAndExitCode0) {
  MakeRun();
  EXPECT_EQ(Output({"check", path_}), path_ + ": sound\n");
}

TEST_F(CheckCommandLine, AnErrorIsToldWithPlaceConsequenceAndRemedyAndIsExitCode1) {
  MakeRun("PROG");
  AppendFrameBytes(2 * kFrame);
  const CommandResult result = RunVex({"check", path_});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output, path_ +
                               ": 1 error\n"
                               "  error  RAWa, byte 1872\n"
                               "    2 whole frames follow the block's length\n"
                               "    so: the block is read with 3 frames, and a save drops the "
                               "others\n"
                               "    do: 'vex repair' counts those in which each well has a "
                               "reading\n");
}

TEST_F(CheckCommandLine, WarningsAreFindingsOnlyWhenStrict) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  EXPECT_THAT(Output({"check", path_}), testing::StartsWith(path_ + ": sound, with 1 warning\n"));
  EXPECT_EQ(RunVex({"check", "--strict", path_}).exitCode, 1);
}

TEST_F(CheckCommandLine, NotesAreShownWhenAskedForAndNeverFindings) {
  MakeRun();
  SetLong(kPositionAt, kEnd);
  EXPECT_EQ(Output({"check", "--strict", path_}), path_ + ": sound, with 1 note\n");
  EXPECT_THAT(Output({"check", "--notes", path_}), HasSubstr("\n  note  header, byte 68\n"));
}

TEST_F(CheckCommandLine, ForProgramsItIsAnObjectADocument) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  const json object = JsonOutput({"check", "--json", path_});
  EXPECT_EQ(object["file"], path_);
  EXPECT_EQ(object["leftOut"], 0);
  ASSERT_EQ(object["findings"].size(), 1U);
  const json& finding = object["findings"][0];
  EXPECT_EQ(finding.size(), 6U);
  EXPECT_EQ(finding["severity"], "warning");
  EXPECT_EQ(finding["record"], "RAWa");
  EXPECT_EQ(finding["offset"], 1872);
  for (const char* key : {"problem", "consequence", "remedy"}) EXPECT_NE(finding[key], "") << key;
}

TEST_F(CheckCommandLine, AFileThatCannotBeReadIsExitCode2AndTheOthersAreCheckedAllTheSame) {
  MakeRun();
  const std::string missing = folder_ / "missing.vex";
  const CommandResult result = RunVex({"check", missing, path_});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors, "vex: " + missing + ": No such file or directory\n");
  EXPECT_EQ(result.output, path_ + ": sound\n");
}

class CheckOfSamples : public SampleDataTest {};

TEST_F(CheckOfSamples, AllAreSoundButForTheBlockOfTheOldVersionThatWasSaved) {
  const auto files = SampleFiles("golden", ".vex");
  EXPECT_EQ(files.size(), 28U);
  for (const auto& path : files) {
    const tool::Findings findings = tool::CheckDocument(path);
    // Saved, the old block got a time block and kept its length: it cannot be read back.
    const bool isSound = path.filename() != "05-reporting-blocks.roundtrip.vex";
    EXPECT_EQ(findings.Count(tool::Severity::kError), isSound ? 0U : 2U) << path;
  }
}

}  // namespace
}  // namespace vex2::test
