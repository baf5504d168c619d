// Tests the functions Check, Repair and Recover.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "lab/Error.h"
#include "lab/check/Check.h"
#include "lab/check/Repair.h"
#include "lab/check/RepairFile.h"
#include "lab/check/RepairPlan.h"
#include "lab/record/RunRecorder.h"
#include "lab/recover/Recover.h"
#include "tests/lab/ErrorOf.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using lab::ErrorClass;
using lab::ErrorCode;
using lab::Severity;

class CheckRepairRecover : public TempFolderTest {
 protected:
  void SetUp() override {
    lab::RecordingPlan plan;
    plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
    lab::RunRecorder recorder(path_, plan);
    for (std::uint16_t i = 1; i <= 3; ++i) {
      const lab::RawRecord record{.well = 1, .leading = {1, i, 6000, 0, 7}, .readings = {i}};
      recorder.Append(std::span(&record, 1));
    }
  }

  // Appends uncommitted bytes, as an interrupted commit leaves them.
  void leaveUncommittedBytes(std::size_t count = 20) {
    Bytes bytes = ReadBytes(path_);
    bytes.insert(bytes.end(), count, 0);
    WriteBytes(path_, bytes);
  }

  std::string path_ = folder_ / "run.vex";
  std::string target_ = folder_ / "new.vex";
};

TEST_F(CheckRepairRecover, CheckFindsUncommittedBytes) {
  EXPECT_EQ(lab::Check(path_).Count(Severity::kWarning), 0U);
  const Bytes before = ReadBytes(path_);
  leaveUncommittedBytes();
  const lab::Findings findings = lab::Check(path_);
  ASSERT_EQ(findings.Count(Severity::kWarning), 1U);
  EXPECT_EQ(findings.list.front().offset, before.size());
}

TEST_F(CheckRepairRecover, CheckThrowsForMissingFile) {
  EXPECT_EQ(ErrorOf([&] { lab::Check(folder_ / "none.vex"); }).Code(), ErrorCode::kNoSuchFile);
}

// Damages one byte of the document at a time: each eleventh byte in turn.
TEST_F(CheckRepairRecover, CheckAdvisesNoRepairThatWouldFindNothingToDo) {
  const Bytes sound = ReadBytes(path_);
  int advised = 0;
  int others = 0;
  for (std::size_t at = 0; at < sound.size(); at += 11) {
    for (const int value : {0, 1, 255}) {
      Bytes bytes = sound;
      bytes[at] = static_cast<std::uint8_t>(value);
      WriteBytes(path_, bytes);
      const lab::Findings findings = lab::Check(path_, {.repair = "R!", .resume = "S!"});
      bool isAdvised = false;
      for (const lab::Finding& finding : findings.list) {
        const bool resumes = finding.remedy.find("S!") != std::string::npos;
        isAdvised = isAdvised || (!resumes && finding.remedy.find("R!") != std::string::npos);
      }
      ++(isAdvised ? advised : others);
      if (!isAdvised) continue;
      EXPECT_FALSE(lab::Repair(path_, {.dryRun = true}).plan.IsEmpty())
          << "byte " << at << " is " << value;
    }
  }
  EXPECT_GT(advised, 0);
  EXPECT_GT(others, 0);
}

TEST_F(CheckRepairRecover, DryRunOfRepairChangesNothing) {
  leaveUncommittedBytes();
  const Bytes before = ReadBytes(path_);
  const lab::RepairReport report = lab::Repair(path_, {.dryRun = true});
  EXPECT_FALSE(report.isRepaired);
  EXPECT_FALSE(report.plan.IsEmpty());
  EXPECT_EQ(ReadBytes(path_), before);
}

TEST_F(CheckRepairRecover, RepairCutsOffUncommittedBytes) {
  const Bytes sound = ReadBytes(path_);
  leaveUncommittedBytes();
  const Bytes before = ReadBytes(path_);
  const lab::RepairReport report = lab::Repair(path_);
  EXPECT_TRUE(report.isRepaired);
  EXPECT_EQ(report.plan.newSize, sound.size());
  EXPECT_EQ(ReadBytes(path_), sound);
  EXPECT_EQ(ReadBytes(report.backup), before);
  EXPECT_TRUE(lab::Repair(path_).plan.IsEmpty());
}

TEST_F(CheckRepairRecover, RepairRefusesWhileRecorded) {
  lab::RecordingPlan plan;
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
  const lab::RunRecorder recorder(path_, plan, {.resume = true});
  EXPECT_THAT(ErrorOf([&] { lab::Repair(path_); }).what(),
              testing::HasSubstr("is being recorded already"));
}

TEST_F(CheckRepairRecover, RepairRefusesPlanOfAnotherContent) {
  leaveUncommittedBytes();
  Bytes changed;
  const auto change = [&](const lab::RepairPlan&) {
    leaveUncommittedBytes(5);
    changed = ReadBytes(path_);
    return true;
  };
  EXPECT_THAT(ErrorOf([&] { lab::Repair(path_, {.confirm = change}); }).what(),
              testing::HasSubstr("another program changed it meanwhile; it is left alone"));
  EXPECT_EQ(ReadBytes(path_), changed);
}

TEST_F(CheckRepairRecover, RepairRefusesDocumentChangedSinceBackup) {
  leaveUncommittedBytes();
  const lab::RepairPlan plan = lab::PlanRepair(path_);
  const std::string backup = lab::BackUp(path_);
  Bytes changed = ReadBytes(path_);
  changed[300] ^= 1;
  WriteBytes(path_, changed);
  EXPECT_THAT(
      ErrorOf([&] { lab::ApplyRepair(plan, backup, path_); }).what(),
      testing::HasSubstr("another program has changed it meanwhile, and it was left alone"));
  EXPECT_EQ(ReadBytes(path_), changed);
}

TEST_F(CheckRepairRecover, RecoverKeepsWhatIsWhole) {
  Bytes bytes = ReadBytes(path_);
  bytes.resize(bytes.size() - 10);
  WriteBytes(path_, bytes);
  const lab::RecoverReport report = lab::Recover(path_, target_);
  EXPECT_EQ(report.frames, 2U);
  EXPECT_FALSE(report.IsWhole());
  EXPECT_EQ(lab::Check(target_).Count(Severity::kError), 0U);
  EXPECT_EQ(ReadBytes(path_), bytes);
}

TEST_F(CheckRepairRecover, RecoverLeavesTargetUnlessAsked) {
  const Bytes old = ToBytes("kept");
  WriteBytes(target_, old);
  EXPECT_EQ(ErrorOf([&] { lab::Recover(path_, target_); }).Code(), ErrorCode::kExists);
  EXPECT_EQ(ReadBytes(target_), old);
  EXPECT_EQ(ErrorOf([&] { lab::Recover(path_, path_, {.replace = true}); }).Class(),
            ErrorClass::kUsage);
  EXPECT_EQ(lab::Recover(path_, target_, {.replace = true}).frames, 3U);
}

TEST_F(CheckRepairRecover, CancelledRecoverSavesNothing) {
  const auto cancel = [](std::uint64_t, std::uint64_t) { return false; };
  const lab::RecoverOptions options{.progress = cancel};
  EXPECT_EQ(ErrorOf([&] { lab::Recover(path_, target_, options); }).Class(),
            ErrorClass::kInterrupted);
  EXPECT_FALSE(std::filesystem::exists(target_));
}

TEST_F(CheckRepairRecover, RecoverRefusesFileWithNothingInIt) {
  WriteBytes(path_, Bytes(5000, 0xFF));
  EXPECT_THAT(ErrorOf([&] { lab::Recover(path_, target_); }).what(),
              testing::HasSubstr("nothing to recover"));
  EXPECT_FALSE(std::filesystem::exists(target_));
}

}  // namespace
}  // namespace vex2::test
