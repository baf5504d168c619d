#include <gtest/gtest.h>

#include "lab/model/RunLog.h"
#include "lab/record/MeasuredRun.h"
#include "lab/record/RunPlan.h"
#include "lab/record/SimulatedRun.h"

using namespace vex2::lab;

TEST(RunLog, IsFoundInWhatTheRecorderWrites) {
  const RunPlan plan = SimulateRun({});
  const auto log = RunLog::Find(LogText(plan));
  ASSERT_TRUE(log);
  EXPECT_EQ(log->frames, plan.frames.size());
  EXPECT_EQ(log->scale, plan.scale);
}

TEST(RunLog, IsTheEndOfTheLog) {
  const std::string stated = "source=readings\nframes=4\nscale=10\n";
  EXPECT_TRUE(RunLog::Find(stated));
  EXPECT_TRUE(RunLog::Find("source=readings\nframes=4\nscale=10"));
  EXPECT_TRUE(RunLog::Find("anything\n" + stated));
  EXPECT_FALSE(RunLog::Find(stated + "anything\n"));
  EXPECT_FALSE(RunLog::Find(stated + "\n"));
  EXPECT_FALSE(RunLog::Find("x" + stated));
  EXPECT_FALSE(RunLog::Find(""));
}

TEST(RunLog, NeedsAUsableScaleAndCountOnce) {
  for (const char* log :
       {"source=readings\nframes=4\nscale=0\n", "source=readings\nframes=4\nscale=1000000000001\n",
        "source=readings\nframes=x\nscale=1\n", "source=readings\nframes=-1\nscale=1\n",
        "source=readings\nscale=1\n", "source=readings\nframes=4\n",
        "source=readings\nframes=4\nframes=4\nscale=1\n", "frames=4\nscale=1\nsource=readings\n"}) {
    EXPECT_FALSE(RunLog::Find(log)) << log;
  }
}

TEST(RunLog, StatesFurtherLinesIfNeeded) {
  const auto log = RunLog::Find(
      "source=readings\nframes=unknown\nstarted=2026-11-22T08:00:00Z\nchannels=FAM,VIC\n"
      "scale=1000/3\noffset=-12.5\n");
  ASSERT_TRUE(log);
  EXPECT_FALSE(log->frames);
  EXPECT_EQ(log->started, RunStart::Parse("2026-11-22T08:00:00Z"));
  EXPECT_EQ(log->channels, (std::vector<std::string>{"FAM", "VIC"}));
  EXPECT_EQ(log->scale.ScaleText(), "1000/3");
  EXPECT_EQ(log->scale.OffsetText(), "-12.5");
  EXPECT_EQ(RunLog::Find("source=readings\n" + log->Text())->Text(), log->Text());
  for (const char* line :
       {"offset=x", "offset=1\noffset=1", "started=today", "channels=A,", "channels=A\nchannels=A",
        "channels=1,2,3,4,5,6,7,8,9,0,1,2,3,4,5,6,7"}) {
    EXPECT_FALSE(RunLog::Find(std::string("source=readings\nframes=4\nscale=1\n") + line)) << line;
  }
}

TEST(RunLog, ANewLogKeepsIt) {
  const std::string stated = "source=simulation\nframes=4\nscale=10\n";
  EXPECT_EQ(LogKeepingRun("new", "old\n" + stated), "new\n" + stated);
  EXPECT_EQ(LogKeepingRun("", stated), stated);
  EXPECT_EQ(LogKeepingRun("new", "old"), "new");
  const std::string other = "source=readings\nframes=1\nscale=1\n";
  EXPECT_EQ(LogKeepingRun(other, stated), other);
}
