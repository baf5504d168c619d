// Tests that `vex check` finds damaged data blocks and wrong offsets of them, and reports nothing
// for similar correct ones.

#include "tests/support/DocumentBytes.h"
#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;

class CheckFrames : public DamageTest {};

TEST_F(CheckFrames, ARunIsSound) {
  MakeRun("PROG");
  ExpectSound();
  MakeRun("DONE");
  ExpectSound();
}

TEST_F(CheckFrames, PartOfAFrameAfterARunInProgressIsAWarning) {
  MakeRun("PROG");
  AppendFrameBytes(100);
  ExpectWarning(
      "RAWa at 1872: 100 of the 240 bytes of a frame follow the end that the block's length "
      "declares: a commit was "
      "interrupted");
}

TEST_F(CheckFrames, PartOfAFrameAfterAFinishedRunIsAnError) {
  MakeRun("DONE");
  AppendFrameBytes(100);
  ExpectError(
      "RAWa at 1872: 100 of the 240 bytes of a frame follow the end that the block's length "
      "declares");
}

TEST_F(CheckFrames, OneWholeFrameAfterARunInProgressIsAWarning) {
  MakeRun("PROG");
  AppendFrameBytes(kFrame);
  ExpectWarning(
      "RAWa at 1872: a whole frame follows the end that the block's length declares: a commit was "
      "interrupted");
}

TEST_F(CheckFrames, MoreThanOneWholeFrameAfterTheBlockIsAnError) {
  MakeRun("PROG");
  AppendFrameBytes(2 * kFrame);
  ExpectError("RAWa at 1872: 2 whole frames follow the end that the block's length declares");
  AppendFrameBytes(7);
  ExpectError(
      "RAWa at 1872: 2 whole frames and 7 of the 240 bytes of a frame follow the end that the "
      "block's length declares");
}

TEST_F(CheckFrames, OneByteMoreThanAFrameIsMoreThanACommitLeaves) {
  MakeRun("PROG");
  AppendFrameBytes(kFrame + 1);
  ExpectError(
      "RAWa at 1872: 1 whole frame and 1 of the 240 bytes of a frame follow the end that the "
      "block's length declares");
}

TEST_F(CheckFrames, ALengthThatCountsMoreFramesThanThereAreIsAnError) {
  MakeRun("DONE");
  Change([](Bytes& bytes) { bytes.resize(bytes.size() - 1); });
  ExpectError("RAWa at 1120: the record \"RAWa\" is cut short: 2 of 3 frames are there");
}

TEST_F(CheckFrames, ALengthThatCountsHalfAFrameIsAnError) {
  MakeRun("DONE");
  SetLong(kBlock + 4, kBlockLength - kFrame + 50);
  EXPECT_THAT(
      Errors(),
      HasSubstr(
          "RAWa at 1120: its length covers 2 frames and 50 of the 240 bytes of another frame\n"));
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
      "RAWa at 1120: a block that the end of the file cuts off, and whose offset is not in the "
      "header: its first commit was interrupted");
  Change([](Bytes& bytes) { bytes.resize(kBlock + 3); });
  ExpectWarning(
      " at 1120: 3 bytes of a block without its tag follow the last record: a first commit was "
      "interrupted");
}

// --resume and repair keep such a block, so check must not call it an interrupted first commit.
TEST_F(CheckFrames, ABlockOfSeveralFramesIsNoFirstCommit) {
  MakeRun("PROG");
  SetLong(kPositionAt, 0);
  Change([](Bytes& bytes) { bytes.resize(kFirstFrame + kFrame + 10); });
  ExpectError("RAWa at 1120: the record \"RAWa\" is cut short: 1 of 3 frames are there");
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
  ExpectError(" at 1120: 272 bytes follow the last record, and are not a known record");
}

TEST_F(CheckFrames, ATimeBlockOfAnotherSizeIsAnError) {
  MakeRun();
  Change([](Bytes& bytes) { bytes[kBlock + 11] = 14; });
  ExpectError("RAWa at 1120: its time block is of 14 bytes, not 12");
}

TEST_F(CheckFrames, RepeatedWellsAndWellsOffThePlateAreAWarning) {
  MakeRun();
  Change([](Bytes& bytes) { bytes[kBlock + 27] = 97; });
  ExpectWarning("RAWa at 1120: 1 of its wells is not on a plate of 96 wells");
  Change([](Bytes& bytes) { bytes[kBlock + 27] = 96; });
  ExpectSound();
  Change([](Bytes& bytes) { bytes[kBlock + 27] = 3; });
  ExpectWarning("RAWa at 1120: 1 of its wells is in it twice");
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
      "header at 68: the header's offset of RAWa is 1121, but the block is at byte 1120, and the "
      "run is in progress");
  SetStatus("DONE");
  ExpectError(
      "header at 68: the header's offset of RAWa is 1121, which is not where the block is, at "
      "byte 1120");
}

TEST_F(CheckPosition, JustPastTheBlockIsWhatAWholeSaveLeaves) {
  MakeRun("DONE");
  SetLong(kPositionAt, kEnd);
  ExpectSound();
  EXPECT_EQ(Notes(),
            "header at 68: the header's offset of RAWa is 1872, just past the block, as a save of "
            "the whole document leaves it\n");
  SetStatus("PROG");
  ExpectWarning(
      "header at 68: the header's offset of RAWa is 1872, just past the block at byte 1120, and "
      "the run is in progress");
}

TEST_F(CheckPosition, NoneForABlockIsWhatAFirstCommitLeavesThatWasInterrupted) {
  MakeRun("PROG");
  SetLong(kPositionAt, 0);
  ExpectWarning(
      "header at 68: the header's offset of RAWa is 0, but the block is at byte 1120, and the "
      "run is in progress");
  SetStatus("DONE");
  ExpectSound();
}

TEST_F(CheckPosition, WithoutABlockIsWorseWhileTheRunIsInProgress) {
  MakeRun("DONE");
  Change([](Bytes& bytes) { bytes.resize(kBlock); });
  ExpectWarning("header at 68: the header's offset of RAWa is 1120, but there is no such record");
  SetStatus("PROG");
  ExpectError("header at 68: the header's offset of RAWa is 1120, but there is no such record");
  SetLong(kPositionAt, 0);
  ExpectSound();
}

TEST_F(CheckPosition, OfTheProgramElsewhereThanItsRecordIsAnError) {
  Bytes records;
  AppendRecord(records, "TPro", {1, 2, 3});
  MakeDocument(records);
  SetLong(kProgramAt, 1025);
  ExpectError(
      "header at 24: the header's offset of TPro is 1025, which is not where its record is, at "
      "byte 1024");
  for (const unsigned long right : {0UL, 1024UL, 1035UL}) {
    SetLong(kProgramAt, right);
    ExpectSound();
  }
  Change([](Bytes& bytes) { bytes.resize(1024); });
  ExpectWarning("header at 24: the header's offset of TPro is 1035, but there is no such record");
}

TEST_F(CheckPosition, RecordsAfterTheBlockOfARunInProgressAreAWarning) {
  MakeRun("PROG");
  Bytes more;
  AppendRecord(more, "COMM", ToBytes("text"));
  Append(more);
  ExpectWarning("RAWa at 1120: the run is in progress, and 1 record follows its block");
  SetStatus("DONE");
  ExpectSound();
}

}  // namespace
}  // namespace vex2::test
