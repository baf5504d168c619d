// Tests simulated runs.

#include <gmock/gmock.h>

#include <csignal>

#include "lab/record/SimulatedRun.h"
#include "tests/tools/RecordFixture.h"

namespace vex2::test {
namespace {

using lab::RunPlan;
using lab::SimulateRun;
using lab::SimulationParameters;
using testing::HasSubstr;

using SimulateTest = RecordTest;

double value(const RunPlan& plan, std::size_t frame, std::size_t well) {
  return plan.scale.Measured(plan.frames[frame][well].values[0]);
}

// The index, from 0, of the first cycle in which the well is above 2; the number of cycles if there
// is none.
std::size_t rise(const RunPlan& plan, std::size_t well, std::size_t cycles) {
  std::size_t cycle = 0;
  while (cycle < cycles && value(plan, cycle, well) < 2) ++cycle;
  return cycle;
}

TEST(SimulateRun, DilutionsByTenRiseOneAfterTheOtherAndControlsNever) {
  for (const std::uint32_t wells : {96U, 384U}) {
    const RunPlan plan = SimulateRun({.wells = wells});
    ASSERT_EQ(plan.wells.size(), wells);
    ASSERT_EQ(plan.frames.size(), 40U);
    const std::size_t replicates = plan.plate.columns / 6;
    for (std::size_t row = 0; row < plan.plate.rows; ++row) {
      std::size_t before = 0;
      for (std::size_t level = 0; level < 5; ++level) {
        const std::size_t first = row * plan.plate.columns + level * replicates;
        const std::size_t at = rise(plan, first, 40);
        for (std::size_t i = 1; i < replicates; ++i) {
          EXPECT_NEAR(static_cast<double>(rise(plan, first + i, 40)), static_cast<double>(at), 1);
        }
        // With the simulated efficiencies, a well with a tenth of the copies rises 3.3 to 3.8
        // cycles later.
        if (level > 0) {
          EXPECT_NEAR(static_cast<double>(at - before), 3.5, 1.6);
        }
        before = at;
      }
      EXPECT_EQ(rise(plan, (row + 1) * plan.plate.columns - 1, 40), 40U)
          << "control of row " << row;
    }
  }
}

TEST(SimulateRun, ReachesAPlateau) {
  const RunPlan plan = SimulateRun({});
  EXPECT_NEAR(value(plan, 39, 0), value(plan, 36, 0), 0.3);
  EXPECT_GT(value(plan, 39, 0), 6);
}

TEST(SimulateRun, MeltsMostSteeplyAroundATemperatureOfTheTargets) {
  const RunPlan plan = SimulateRun({.meltSteps = 141});
  for (std::size_t row = 0; row < 8; ++row) {
    double steepest = 0;
    double at = 0;
    for (std::size_t step = 41; step < 40 + 141; ++step) {
      const double fall = value(plan, step - 1, row * 12) - value(plan, step, row * 12);
      if (fall > steepest) {
        steepest = fall;
        at = plan.frames[step][0].temperature / 100.0;
      }
    }
    EXPECT_GT(at, 77) << row;
    EXPECT_LT(at, 89) << row;
  }
}

// The expected values were made on one machine. They must be the same on all others, so that a run
// can be resumed on another machine.
TEST(SimulateRun, IsTheSameEverywhere) {
  const RunPlan plan = SimulateRun({.meltSteps = 10, .seed = 42});
  std::uint64_t sum = 14695981039346656037U;
  for (const auto& frame : plan.frames) {
    for (const auto& reading : frame) sum = (sum ^ reading.values[0]) * 1099511628211U;
  }
  EXPECT_EQ(sum, 13751824114492536551U);
}

TEST(SimulateRun, OtherSeedsAreOtherRuns) {
  EXPECT_EQ(SimulateRun({.seed = 3}).frames, SimulateRun({.seed = 3}).frames);
  EXPECT_NE(SimulateRun({.seed = 3}).frames, SimulateRun({.seed = 4}).frames);
}

TEST(ReadParameters, LogThatNamesTooMuchIsNotFollowed) {
  SimulationParameters parameters;
  lab::ReadParameters("cycles=4000000000\nmelt=12\nwells=99999999999\nseed=5x\nseed=", parameters);
  EXPECT_EQ(parameters.cycles, 40U);
  EXPECT_EQ(parameters.meltSteps, 12U);
  EXPECT_EQ(parameters.wells, 96U);
  EXPECT_EQ(parameters.seed, 1U);
}

TEST_F(SimulateTest, RecordsWhatItWritesAsReadings) {
  const CommandResult result =
      RunVex({"simulate", Run(), "--cycles", "12", "--melt", "5", "--seed", "9", "--readings-out",
              folder_ / "readings.csv", "--wells-out", folder_ / "wells.csv"});
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  const auto readings = ReadReadingsFile(folder_ / "readings.csv");
  EXPECT_EQ(readings.size(), 96U * 17U);
  EXPECT_EQ(RecordedReadings(Run()), readings);
  ASSERT_EQ(RunVex({"record", folder_ / "again.vex", "--readings", folder_ / "readings.csv",
                    "--wells", folder_ / "wells.csv"})
                .exitCode,
            0);
  EXPECT_EQ(RecordedReadings(folder_ / "again.vex"), readings);
}

TEST_F(SimulateTest, ResumedRunKeepsItsParameters) {
  VexProcess simulation({"simulate", Run(), "--wells", "384", "--cycles", "60", "--melt", "4",
                         "--seed", "77", "--pace", "0.01"});
  ASSERT_TRUE(WaitForFrames(5));
  simulation.Signal(SIGKILL);
  simulation.Wait();
  ASSERT_EQ(RecordedStatus(Run()), "PROG");
  const CommandResult refused = RunVex({"simulate", Run(), "--resume", "--seed", "78"});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.errors, HasSubstr("was recorded with 'seed=77', not with 'seed=78'"));
  EXPECT_EQ(RunVex(Record({"--resume"})).exitCode, 1) << "measured readings are another run";
  ASSERT_EQ(RunVex({"simulate", Run(), "--resume"}).exitCode, 0);
  ASSERT_EQ(RunVex({"simulate", folder_ / "whole.vex", "--wells", "384", "--cycles", "60", "--melt",
                    "4", "--seed", "77"})
                .exitCode,
            0);
  EXPECT_EQ(RecordedStatus(Run()), "DONE");
  EXPECT_EQ(RecordedReadings(Run()), RecordedReadings(folder_ / "whole.vex"));
}

TEST_F(SimulateTest, FileThatCannotBeWrittenIsNamed) {
  const CommandResult result =
      RunVex({"simulate", Run(), "--readings-out", folder_ / "none/readings.csv"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("none/readings.csv: No such file or directory"));
}

TEST_F(SimulateTest, RefusesInvalidPlatesAndCycles) {
  EXPECT_EQ(RunVex({"simulate", Run(), "--wells", "48"}).exitCode, 2);
  EXPECT_EQ(RunVex({"simulate", Run(), "--cycles", "0"}).exitCode, 2);
  EXPECT_EQ(RunVex({"simulate", Run(), "--pace", "-1"}).exitCode, 2);
  EXPECT_EQ(RunVex({"simulate", Run(), "--resume", "--force"}).exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(Run()));
}

}  // namespace
}  // namespace vex2::test
