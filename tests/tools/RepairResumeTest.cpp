// Tests that an interrupted and damaged recording can be resumed after a repair.

#include <csignal>

#include "lab/check/Check.h"
#include "tests/support/RunDocument.h"
#include "tests/tools/RecordFixture.h"

namespace vex2::test {
namespace {

class RepairResume : public RecordTest {};

TEST_F(RepairResume, RunCutOffWithAWrongOffsetResumesAfterARepair) {
  {
    VexProcess recorder(Record({"--pace", "0.01"}));
    ASSERT_TRUE(WaitForFrames(10));
    recorder.Signal(SIGKILL);
    recorder.Wait();
  }
  const int frames = RecordedFrames(Run());
  Bytes bytes = ReadBytes(Run());
  const std::uint32_t block = LongAt(bytes, 68);
  // Two frames that the length does not count, part of another frame, and an offset that is not
  // that of the tag.
  SetLongAt(bytes, block + 4, 18 + 2 * kWells + kFrameBytes * static_cast<std::size_t>(frames - 2));
  bytes.resize(block + 26 + 2 * kWells + kFrameBytes * static_cast<std::size_t>(frames));
  bytes.insert(bytes.end(), 100, 0);
  SetLongAt(bytes, 68, block + 1);
  WriteBytes(Run(), bytes);
  EXPECT_EQ(RunVex(Record({"--resume"})).exitCode, 1);

  const CommandResult repaired = RunVex({"repair", Run()});
  EXPECT_EQ(repaired.exitCode, 0) << repaired.errors;
  const lab::Findings findings = lab::Check(Run());
  EXPECT_EQ(findings.Count(lab::Severity::kError), 0U);
  EXPECT_EQ(findings.Count(lab::Severity::kWarning), 0U);
  EXPECT_EQ(RecordedFrames(Run()), frames);

  const CommandResult resumed = RunVex(Record({"--resume"}));
  EXPECT_EQ(resumed.exitCode, 0) << resumed.errors;
  ExpectWhole();
}

// A first commit writes the tag after the rest of the block, so a commit that was interrupted
// before that leaves zeros in place of the tag.
TEST_F(RepairResume, RunCutOffInItsFirstCommitResumesWithAndWithoutRepair) {
  {
    VexProcess recorder(Record({"--pace", "0.01"}));
    ASSERT_TRUE(WaitForFrames(1));
    recorder.Signal(SIGKILL);
    recorder.Wait();
  }
  Bytes begun = ReadBytes(Run());
  const std::uint32_t block = LongAt(begun, 68);
  const std::size_t head = 26 + 2 * kWells;
  SetLongAt(begun, 68, 0);
  std::fill_n(begun.begin() + block, 4, std::uint8_t{0});
  for (const std::size_t rest :
       {std::size_t{2}, std::size_t{4}, std::size_t{9}, head, head + 100, head + kFrameBytes}) {
    for (const bool repaired : {false, true}) {
      SCOPED_TRACE(rest);
      WriteBytes(Run(), Slice(begun, 0, block + rest));
      const lab::Findings findings = lab::Check(Run());
      EXPECT_EQ(findings.Count(lab::Severity::kError), 0U);
      EXPECT_EQ(findings.Count(lab::Severity::kWarning), 1U);
      if (repaired) {
        EXPECT_EQ(RunVex({"repair", Run()}).exitCode, 0);
        EXPECT_EQ(ReadBytes(Run()), Slice(begun, 0, block));
      }
      const CommandResult resumed = RunVex(Record({"--resume"}));
      EXPECT_EQ(resumed.exitCode, 0) << resumed.errors;
      ExpectWhole();
    }
  }
}

}  // namespace
}  // namespace vex2::test
