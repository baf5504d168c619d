// Tests what `vex repair` repairs in place and what it leaves unchanged, and that it never loses a
// document.

#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "lab/check/RepairFile.h"
#include "lab/check/RepairPlan.h"
#include "lab/model/DocumentLock.h"
#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class Repair : public DamageTest {
 protected:
  /// Repairs the damaged document. Expects that it is then sound and has the bytes `repaired`.
  void ExpectRepaired(const Bytes& repaired) const {
    const Bytes before = ReadBytes(path_);
    const CommandResult result = RunVex({"repair", path_});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(FirstDifference(ReadBytes(path_), repaired), "");
    EXPECT_EQ(FirstDifference(ReadBytes(path_ + ".backup"), before), "");
    ExpectSound();
    fs::remove(path_ + ".backup");
  }
  void ExpectLeftAlone(int exitCode, const std::string& output, const std::string& errors) const {
    const Bytes before = ReadBytes(path_);
    const CommandResult result = RunVex({"repair", path_});
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, output);
    EXPECT_THAT(result.errors, HasSubstr(errors));
    EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
    EXPECT_FALSE(fs::exists(path_ + ".backup"));
  }
};

TEST_F(Repair, DoesNotChangeASoundDocument) {
  MakeRun("DONE");
  ExpectLeftAlone(0, path_ + ": there is nothing to repair\n", "");
  SetLong(kPositionAt, kEnd);
  ExpectLeftAlone(0, path_ + ": there is nothing to repair\n", "");
}

TEST_F(Repair, CutsOffPartOfAFrame) {
  for (const char* status : {"PROG", "DONE"}) {
    MakeRun(status);
    const Bytes whole = ReadBytes(path_);
    for (const std::size_t torn : {std::size_t{1}, kFrame - 1}) {
      WriteBytes(path_, whole);
      AppendFrameBytes(torn);
      ExpectRepaired(whole);
    }
  }
}

TEST_F(Repair, CutsOffAFrameOfZeros) {
  MakeRun("PROG");
  const Bytes whole = ReadBytes(path_);
  Append(Bytes(kFrame, 0));
  ExpectRepaired(whole);
}

TEST_F(Repair, CountsWholeFramesAfterTheBlock) {
  MakeRun("PROG");
  for (const unsigned frames : {1U, 2U}) {
    AppendFrameBytes(frames * kFrame);
    Bytes repaired = ReadBytes(path_);
    const std::uint32_t length = LongAt(repaired, kBlock + 4);
    SetLongAt(repaired, kBlock + 4, length + frames * kFrame);
    AppendFrameBytes(11);
    ExpectRepaired(repaired);
  }
}

TEST_F(Repair, SetsALengthThatCountsTooManyFramesToTheExistingOnes) {
  MakeRun("DONE");
  Bytes repaired = ReadBytes(path_);
  repaired.resize(kEnd - kFrame);
  SetLongAt(repaired, kBlock + 4, kBlockLength - kFrame);
  Change([](Bytes& bytes) { bytes.resize(kEnd - 1); });
  EXPECT_THAT(Output({"repair", "--dry-run", path_}),
              HasSubstr("cut off 239 bytes of a frame whose rest is missing"));
  ExpectRepaired(repaired);
}

TEST_F(Repair, SecondRepairFindsNothing) {
  const std::vector<std::size_t> sizes = {kEnd - kFrame - 1, kEnd - kFrame, kEnd - 1, kEnd,
                                          kEnd + 1,          kEnd + kFrame};
  for (const char* status : {"PROG", "DONE"}) {
    for (const std::size_t position : {std::size_t{0}, kBlock, kEnd, kEnd - 8}) {
      for (const std::size_t size : sizes) {
        SCOPED_TRACE(status + (" " + std::to_string(position)) + " of " + std::to_string(size));
        MakeRun(status);
        SetLong(kPositionAt, position);
        Change([&](Bytes& bytes) { bytes.resize(size, 1); });
        const lab::RepairPlan plan = lab::PlanRepair(path_);
        if (!plan.IsEmpty()) lab::ApplyRepair(plan, lab::BackUp(path_), path_);
        EXPECT_TRUE(lab::PlanRepair(path_).IsEmpty());
        ExpectSound();
      }
    }
  }
}

TEST_F(Repair, SetsALengthThatCountsHalfAFrame) {
  MakeRun("DONE");
  const Bytes whole = ReadBytes(path_);
  SetLong(kBlock + 4, kBlockLength - kFrame + 50);
  ExpectRepaired(whole);
  SetLong(kBlock + 4, 20);
  ExpectRepaired(whole);
}

TEST_F(Repair, SetsTheOffsetOfTheBlock) {
  MakeRun("PROG");
  const Bytes whole = ReadBytes(path_);
  for (const unsigned long position : {0UL, kBlock + 1UL, 1UL * kEnd, 0xFFFFFFFFUL}) {
    SetLong(kPositionAt, position);
    ExpectRepaired(whole);
  }
}

TEST_F(Repair, SetsTheOffsetOfTheProgram) {
  Bytes records;
  AppendRecord(records, "TPro", {1, 2, 3});
  MakeDocument(records);
  SetLong(kProgramAt, 1024);
  const Bytes whole = ReadBytes(path_);
  SetLong(kProgramAt, 1030);
  ExpectRepaired(whole);
}

TEST_F(Repair, CutsOffAFirstCommitThatWasInterrupted) {
  MakeRun("PROG");
  Bytes begun = ReadBytes(path_);
  SetLongAt(begun, kPositionAt, 0);
  begun.resize(kBlock);
  for (const std::size_t rest : {std::size_t{3}, std::size_t{12}, std::size_t{40}}) {
    MakeRun("PROG");
    SetLong(kPositionAt, 0);
    Change([=](Bytes& bytes) { bytes.resize(kBlock + rest); });
    const Bytes torn = ReadBytes(path_);
    ExpectRepaired(begun);
    // A first commit writes the tag last, so zeros in place of the tag are repaired, too.
    WriteBytes(path_, torn);
    Change([](Bytes& bytes) { std::fill_n(bytes.begin() + kBlock, 3, std::uint8_t{0}); });
    if (rest > 3) Change([](Bytes& bytes) { bytes[kBlock + 3] = 0; });
    ExpectRepaired(begun);
  }
}

TEST_F(Repair, RepairsTheLengthsOfRecordsThatAreReadByWhatTheyHold) {
  const auto settings = [](unsigned long list, unsigned long version) {
    return ByteString().Text("GLBL").Long(list).Short(1).Text("VERS").Long(version).Long(512);
  };
  MakeDocument(settings(14, 4));
  const Bytes whole = ReadBytes(path_);
  MakeDocument(settings(10, 2));
  ExpectRepaired(whole);
  MakeDocument(settings(14, 6));
  ExpectRepaired(whole);
}

TEST_F(Repair, RefusesWhatItCannotRepair) {
  MakeRun("DONE");
  Append(Bytes(kFrame + 1, 0));
  ExpectLeftAlone(1, "",
                  ": at byte 1872: not repaired: 1 whole frame and 1 of the 240 bytes of a frame");
  MakeDocument(ByteString().Text("GLBL").Long(14).Short(1).Text("VERS").Long(4).Short(2));
  ExpectLeftAlone(1, "",
                  "vex: " + path_ + ": 'vex recover' takes what is whole into a new document\n");
}

TEST_F(Repair, DryRunReportsAndChangesNothing) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  SetLong(kPositionAt, 0);
  const Bytes before = ReadBytes(path_);
  EXPECT_EQ(Output({"repair", "--dry-run", path_}),
            path_ +
                ": this would be repaired\n"
                "  byte 68: 0 -> 1120, the header's offset of RAWa, to lead to its tag\n"
                "  byte 1872: cut off 10 bytes of a frame that was not committed\n");
  EXPECT_EQ(ReadBytes(path_), before);
  EXPECT_FALSE(fs::exists(path_ + ".backup"));
}

TEST_F(Repair, NeverWritesOverABackup) {
  MakeRun("PROG");
  for (const char* name : {".backup", ".backup-2"}) {
    WriteBytes(path_ + name, ToBytes("kept"));
  }
  AppendFrameBytes(10);
  const Bytes before = ReadBytes(path_);
  EXPECT_THAT(Output({"repair", path_}), HasSubstr("as it was, it is "));
  EXPECT_EQ(ReadBytes(path_ + ".backup"), ToBytes("kept"));
  EXPECT_EQ(ReadBytes(path_ + ".backup-2"), ToBytes("kept"));
  EXPECT_EQ(ReadBytes(path_ + ".backup-3"), before);
}

TEST_F(Repair, RefusesADocumentThatIsBeingRecorded) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  const lab::DocumentLock lock(path_, lab::DocumentLock::Holder::kRecorder);
  ExpectRefused({"repair", path_}, 3, "is being recorded already");
}

TEST_F(Repair, WithoutRoomForTheBackupTheDocumentStays) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  const Bytes before = ReadBytes(path_);
  const CommandResult result = RunVex({"repair", path_}, {.input = "", .fileSize = 1000});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.errors, HasSubstr(path_ + ".backup: "));
  EXPECT_EQ(ReadBytes(path_), before);
  EXPECT_FALSE(fs::exists(path_ + ".backup"));
}

TEST_F(Repair, KilledAtAnyMomentItLeavesTheOldOrTheNewDocument) {
  MakeRun("PROG");
  const Bytes repaired = ReadBytes(path_);
  AppendFrameBytes(10);
  const Bytes spoilt = ReadBytes(path_);
  for (int round = 0; round < 8; ++round) {
    WriteBytes(path_, spoilt);
    VexProcess repair({"repair", path_});
    ::usleep(static_cast<useconds_t>(round * 6000));
    repair.Signal(SIGKILL);
    repair.Wait();
    const Bytes left = ReadBytes(path_);
    EXPECT_TRUE(left == spoilt || left == repaired) << round;
    if (left == repaired) {
      EXPECT_EQ(ReadBytes(path_ + ".backup"), spoilt);
    }
    for (const auto& entry : fs::directory_iterator(std::string(folder_ / "."))) {
      if (entry.path().filename() != "run.vex") fs::remove(entry.path());
    }
  }
}

}  // namespace
}  // namespace vex2::test
