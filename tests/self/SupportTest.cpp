// Tests the helpers that other tests use.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "tests/support/Files.h"
#include "tests/support/SampleData.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

TEST(TempFolder, IsEmptyAtFirstAndGoneAtTheEnd) {
  std::filesystem::path path;
  {
    TempFolder folder;
    path = folder.Path();
    EXPECT_TRUE(std::filesystem::is_empty(path));
    std::filesystem::create_directory(folder / "closed");
    WriteBytes(folder / "closed/file", {1});
    std::filesystem::permissions(folder / "closed", std::filesystem::perms::none);
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Files, ReadsWhatItWrote) {
  TempFolder folder;
  const Bytes bytes = {0, 255, '\n', '\r', 0, 26};
  WriteBytes(folder / "file", {1, 2, 3, 4, 5, 6, 7, 8});
  WriteBytes(folder / "file", bytes);
  EXPECT_EQ(ReadBytes(folder / "file"), bytes);
}

TEST(Files, ThrowsForWhatCannotBeReadOrWritten) {
  TempFolder folder;
  EXPECT_THROW(ReadBytes(folder / "absent"), std::system_error);
  EXPECT_THROW(WriteBytes(folder / "absent/file", {}), std::system_error);
}

TEST(Files, NamesTheFirstDifference) {
  EXPECT_EQ(FirstDifference({}, {}), "");
  EXPECT_EQ(FirstDifference({1, 2, 3}, {1, 2, 3}), "");
  EXPECT_EQ(FirstDifference({1, 2, 3}, {1, 9, 3}),
            "at byte 1 (of 3, expected 3): 01 [02] 03 in place of 01 [09] 03 ");
  EXPECT_EQ(FirstDifference({1}, {1, 9}),
            "at byte 1 (of 1, expected 2): 01 [end] in place of 01 [09] ");
}

// Runs in a separate process, in which expectations may fail.
TEST(NewFailures, CountsTheBadStatesOfASweepAlone) {
  const pid_t child = ::fork();
  if (child == 0) {
    static_cast<void>(std::freopen("/dev/null", "w", stdout));
    NewFailures failures;
    int bad = failures.Any() ? 100 : 0;
    for (int state = 0; state < 5; ++state) {
      EXPECT_NE(state, 1);
      EXPECT_NE(state, 3);
      EXPECT_NE(state * state, 9);
      if (failures.Any()) ++bad;
    }
    ::_exit(bad);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 2);
}

TEST_F(SampleDataTest, HoldsEachDocumentWithItsRoundTrip) {
  const auto documents = SampleFiles("golden", ".vex");
  const auto roundTrips = SampleFiles("golden", ".roundtrip.vex");
  EXPECT_GT(roundTrips.size(), 0U);
  EXPECT_EQ(documents.size(), 2 * roundTrips.size());
}

}  // namespace
}  // namespace vex2::test
