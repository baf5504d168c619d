#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <variant>

#include "tests/support/Files.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/CWaitCursor.h"
#include "vex2/framework/Host.h"

namespace vex2::test {
namespace {

TEST(ConsoleHost, AnswersWhenNoHostIsInstalled) {
  EXPECT_NE(GetHost(), nullptr);
  EXPECT_EQ(SetHost(nullptr), nullptr);
}

TEST(ConsoleHost, WritesMessagesToStandardErrorOnly) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  GetHost()->ShowMessage("Cannot add it");
  GetHost()->Trace("not shown");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Cannot add it\n");
}

TEST(ConsoleHost, CancelsTheChooser) {
  ChooserResult result{"before", "before"};
  EXPECT_FALSE(GetHost()->ChooseFile({}, result));
  EXPECT_EQ(result.path, "before");
}

TEST(ConsoleHost, AllowsWaitsToNest) {
  const CWaitCursor outer;
  const CWaitCursor inner;
  EXPECT_NE(GetHost(), nullptr);
}

TEST_F(TempFolderTest, ConsoleHostReadsTheUsersSettings) {
  setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1);
  std::filesystem::create_directory(folder_ / "vex2");
  WriteBytes(folder_ / "vex2/settings.ini", ToBytes("[Software\\Maker\\Test]\nFlag = 7\n"));
  for (const bool localMachine : {false, true}) {
    EXPECT_EQ(GetHost()->QuerySetting(localMachine, "Software\\Maker\\Test", "Flag"),
              Setting(std::uint32_t{7}));
    EXPECT_EQ(GetHost()->QuerySetting(localMachine, "Software\\Maker\\Test", "Other"),
              Setting(NoValue()));
    EXPECT_EQ(GetHost()->QuerySetting(localMachine, "Software\\Maker", "Flag"), Setting());
  }
  unsetenv("XDG_CONFIG_HOME");
}

TEST(SetHost, ReturnsThePreviousHostAndNullInstallsTheConsole) {
  Host* const console = GetHost();
  Host mine;
  Host other;
  EXPECT_EQ(SetHost(&mine), nullptr);
  EXPECT_EQ(GetHost(), &mine);
  EXPECT_EQ(SetHost(&other), &mine);
  EXPECT_EQ(SetHost(nullptr), &other);
  EXPECT_EQ(GetHost(), console);
}

TEST(WaitCursor, BeginsAndEndsOneWait) {
  RecordingHost host;
  {
    const CWaitCursor outer;
    EXPECT_EQ(host.waitsBegun, 1);
    { const CWaitCursor inner; }
    EXPECT_EQ(host.waitsBegun, 2);
    EXPECT_EQ(host.waitsEnded, 1);
  }
  EXPECT_EQ(host.waitsEnded, 2);
}

TEST(WaitCursor, EndsOnTheHostThatItBeganOn) {
  RecordingHost first;
  {
    const CWaitCursor cursor;
    RecordingHost second;
    EXPECT_EQ(second.waitsBegun, 0);
  }
  EXPECT_EQ(first.waitsEnded, 1);
}

TEST(SilentHost, ShowsNothingAndIsInstalledWhileItLives) {
  {
    SilentHost host;
    EXPECT_EQ(GetHost(), &host);
    testing::internal::CaptureStderr();
    GetHost()->ShowMessage("text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(GetHost()->QuerySetting(true, "key", "name"), Setting());
  }
  EXPECT_EQ(SetHost(nullptr), nullptr);
}

TEST(RecordingHost, RecordsWhatItIsAskedAndAnswersAsPrepared) {
  RecordingHost host;
  host.setting = std::uint32_t{1};
  GetHost()->ShowMessage("message");
  GetHost()->Trace("trace\n");
  EXPECT_EQ(GetHost()->QuerySetting(true, "key", "name"), Setting(std::uint32_t{1}));
  ChooserResult result;
  ChooserRequest request;
  request.title = "Select";
  EXPECT_FALSE(GetHost()->ChooseFile(request, result));
  host.choice = ChooserResult{"/data/run1.vex", "run1.vex"};
  EXPECT_TRUE(GetHost()->ChooseFile(request, result));

  EXPECT_EQ(host.messages, std::vector<std::string>{"message"});
  EXPECT_EQ(host.traces, std::vector<std::string>{"trace\n"});
  EXPECT_EQ(host.settingQueries, (std::vector<RecordingHost::SettingQuery>{{true, "key", "name"}}));
  ASSERT_EQ(host.chooserRequests.size(), 2U);
  EXPECT_EQ(host.chooserRequests[1].title, "Select");
  EXPECT_EQ(result.path, "/data/run1.vex");
}

}  // namespace
}  // namespace vex2::test
