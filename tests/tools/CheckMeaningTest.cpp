// Tests what check finds in documents whose structure is correct but whose content is not.

#include <random>

#include "tests/tools/CheckFixture.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;

class CheckMeaning : public DamageTest {
 protected:
  /// Makes a recorded run of 96 wells and two frames, whose data block is the last record.
  void Simulate() const { ASSERT_EQ(RunVex({"simulate", path_, "--cycles", "2"}).exitCode, 0); }
  static constexpr std::size_t kRecord = 80;
  static constexpr std::size_t kRunFrame = 96 * kRecord;

  /// Calls `change` with the stored well records of each frame.
  void ChangeReadings(const std::function<void(std::uint8_t*)>& change) const {
    Change([&](Bytes& bytes) { change(bytes.data() + bytes.size() - 2 * kRunFrame); });
  }
  /// Sets the leading value `index` in each well record of a frame.
  static void SetLeading(std::uint8_t* frame, std::size_t index, unsigned value) {
    for (std::size_t well = 0; well < 96; ++well) {
      frame[well * kRecord + 2 * index] = static_cast<std::uint8_t>(value >> 8U);
      frame[well * kRecord + 2 * index + 1] = static_cast<std::uint8_t>(value);
    }
  }
  static constexpr std::size_t kCycle = 1;
  static constexpr std::size_t kTemperature = 2;
  static constexpr std::size_t kTimeHigh = 5;

  void SetUp96(const std::string& rows) const {
    const std::string wells = folder_ / "wells.csv";
    WriteBytes(wells, ToBytes("well,sample,target,task,quantity,reporter\n" + rows));
    ASSERT_EQ(RunVex({"wells", path_, "--from", wells}).exitCode, 0);
  }
};

TEST_F(CheckMeaning, SimulatedRunIsSound) {
  Simulate();
  ExpectSound();
}

TEST_F(CheckMeaning, RandomBytesInReadingsAreAnError) {
  Simulate();
  ChangeReadings([](std::uint8_t* readings) {
    std::minstd_rand random(7);
    for (std::size_t i = 0; i < 2 * kRunFrame; ++i) {
      readings[i] = static_cast<std::uint8_t>(random() >> 8U);
    }
  });
  EXPECT_THAT(Errors(), HasSubstr("the recorder that the log names did not write 192 readings of "
                                  "96 wells (A1 A2 A3 A4 A5 A6 ...), the first in frame 0"));
  EXPECT_EQ(RunVex({"check", path_}).exitCode, 1);
}

TEST_F(CheckMeaning, OneChangedReadingIsAnError) {
  Simulate();
  ChangeReadings([](std::uint8_t* readings) { readings[kRunFrame + 3 * kRecord + 17] ^= 1U; });
  EXPECT_THAT(Errors(), HasSubstr("1 reading of 1 well (A4), "));
  EXPECT_THAT(Errors(), HasSubstr("the first in frame 1"));
}

TEST_F(CheckMeaning, OtherProgramsReadingsMeanWhatTheyMean) {
  MakeRun();
  Change([](Bytes& bytes) { bytes[kFirstFrame + 60] = 77; });
  ExpectSound();
}

TEST_F(CheckMeaning, CyclesOutOfOrderAreAWarning) {
  Simulate();
  ChangeReadings([](std::uint8_t* readings) { SetLeading(readings, kCycle, 9); });
  EXPECT_THAT(Warnings(),
              HasSubstr("1 frame with a cycle that does not follow that of the previous "
                        "frame of its stage, the first is frame 1"));
}

TEST_F(CheckMeaning, TimesOutOfOrderAreAWarning) {
  Simulate();
  ChangeReadings([](std::uint8_t* readings) { SetLeading(readings, kTimeHigh, 99); });
  EXPECT_THAT(
      Warnings(),
      HasSubstr("1 frame with an earlier time than the previous frame, the first is frame 1"));
}

TEST_F(CheckMeaning, TemperaturesThatNoPlateHasAreAWarning) {
  Simulate();
  ChangeReadings([](std::uint8_t* readings) { SetLeading(readings, kTemperature, 12001); });
  EXPECT_THAT(Warnings(), HasSubstr("96 readings above 120 C, the first in frame 0"));
  EXPECT_EQ(Errors(), "");
  EXPECT_EQ(RunVex({"check", path_}).exitCode, 0);
  EXPECT_EQ(RunVex({"check", "--strict", path_}).exitCode, 1);
}

TEST_F(CheckMeaning, UnknownStatusIsAWarning) {
  MakeRun();
  SetStatus("Done");
  ExpectWarning("header at 64: the acquisition status 'Done' is none of ZERO, PROG, DONE");
}

TEST_F(CheckMeaning, WellsMeasuredButNotSetUpAreAWarning) {
  MakeRun();
  SetUp96("A1,x,T,UNKN,,F\nA3,y,T,UNKN,,F\n");
  EXPECT_THAT(Warnings(), HasSubstr("1 well (A2) measured, but not set up"));
  EXPECT_EQ(Errors(), "");
}

TEST_F(CheckMeaning, UnknownTasksAreAWarning) {
  MakeRun();
  SetUp96("A1,x,T,UNKN,,F\nA2,x,T,unknown,,F\nA3,y,T,IPC+,,F\n");
  EXPECT_THAT(Warnings(), HasSubstr("the task 'unknown' of 1 well (A2) is none of UNKN, "));
  EXPECT_EQ(Errors(), "");
}

TEST_F(CheckMeaning, DetectorThatIsNotListedIsAWarning) {
  MakeRun();
  SetUp96("A1,x,T,UNKN,,F\nA2,x,T,UNKN,,F\nA3,y,T,UNKN,,F\n");
  ExpectSound();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  Vex2PlateSetup setup;
  ASSERT_EQ(document.GetPlateSetupInfo(&setup), 0);
  POSITION first = setup.cells[1].detectors.GetHeadPosition();
  setup.cells[1].detectors.GetNext(first)->SetDetectorName("other", 5);
  ASSERT_EQ(document.ReplacePlateSetup(&setup), 0);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  EXPECT_THAT(Warnings(), HasSubstr("the detector 'other' of 1 well (A2) is not in the document's "
                                    "list of detectors"));
}

TEST_F(CheckMeaning, ErrorsComeBeforeWarningsAndNotes) {
  Simulate();
  SetStatus("none");
  ChangeReadings([](std::uint8_t* readings) { readings[17] ^= 1U; });
  const auto findings = lab::Check(path_).list;
  ASSERT_GE(findings.size(), 2U);
  EXPECT_EQ(findings[0].severity, lab::Severity::kError);
  EXPECT_EQ(findings[1].severity, lab::Severity::kWarning);
  EXPECT_GT(findings[0].offset, findings[1].offset);
}

TEST(Findings, ErrorIsKeptAfterMoreWarningsThanAreKept) {
  lab::Findings findings;
  for (std::size_t i = 0; i < lab::Findings::kMost; ++i) {
    findings.Add({lab::Severity::kWarning, "", i, "odd", "", ""});
  }
  findings.Add({lab::Severity::kError, "", 5000, "wrong", "", ""});
  EXPECT_EQ(findings.list.size(), lab::Findings::kMost);
  EXPECT_EQ(findings.list.front().problem, "wrong");
  EXPECT_EQ(findings.LeftOut(), 1U);
}

}  // namespace
}  // namespace vex2::test
