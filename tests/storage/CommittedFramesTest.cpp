// Tests which frames of a block count as committed, and how the bytes after them are recognised.
#include <gtest/gtest.h>

#include <ostream>

#include "vex2/storage/FrameLog.h"

namespace vex2 {

static bool operator==(const CommittedFrames& one, const CommittedFrames& other) {
  return one.count == other.count && one.inFile == other.inFile && one.end == other.end &&
         one.behind == other.behind;
}
static std::ostream& operator<<(std::ostream& out, const CommittedFrames& frames) {
  return out << frames.count << " of " << frames.inFile << " frames up to " << frames.end
             << ", behind them " << static_cast<int>(frames.behind);
}

namespace {

constexpr std::uint64_t kFirst = 1054;
constexpr std::uint64_t kSize = 160;  // of two wells

CommittedFrames find(std::uint64_t countedEnd, std::uint64_t fileEnd) {
  return FindCommittedFrames({kFirst, kSize, countedEnd, fileEnd});
}

TEST(CommittedFrames, AreThoseThatTheLengthCounts) {
  const std::uint64_t end = kFirst + 3 * kSize;
  EXPECT_EQ(find(end, end), (CommittedFrames{3, 3, end, Uncommitted::kNothing}));
  EXPECT_EQ(find(kFirst, kFirst), (CommittedFrames{0, 0, kFirst, Uncommitted::kNothing}));
}

TEST(CommittedFrames, EndBeforeAFrameThatTheFileEndsIn) {
  const std::uint64_t counted = kFirst + 3 * kSize;
  const std::uint64_t end = kFirst + 2 * kSize;
  EXPECT_EQ(find(counted, counted - 1), (CommittedFrames{2, 2, end, Uncommitted::kCommit}));
  EXPECT_EQ(find(counted, end), (CommittedFrames{2, 2, end, Uncommitted::kNothing}));
}

TEST(CommittedFrames, EndBeforePartOfAFrameThatTheLengthCounts) {
  const std::uint64_t end = kFirst + kSize;
  EXPECT_EQ(find(end + 7, end + 7), (CommittedFrames{1, 1, end, Uncommitted::kCommit}));
  EXPECT_EQ(find(kFirst - 9, kFirst), (CommittedFrames{0, 0, kFirst, Uncommitted::kNothing}))
      << "a length that is too small for the wells counts none";
  EXPECT_EQ(find(kFirst - 9, end), (CommittedFrames{0, 1, kFirst, Uncommitted::kCommit}));
}

TEST(CommittedFrames, AreFollowedByAtMostAFrameOfOneCommit) {
  const std::uint64_t end = kFirst + kSize;
  EXPECT_EQ(find(end, end + 1).behind, Uncommitted::kCommit);
  EXPECT_EQ(find(end, end + kSize).behind, Uncommitted::kCommit);
  EXPECT_EQ(find(end, end + kSize + 1).behind, Uncommitted::kMore);
}

TEST(CommittedFrames, CountNoWholeFrameAfterTheLength) {
  const std::uint64_t end = kFirst + kSize;
  EXPECT_EQ(find(end, end + kSize), (CommittedFrames{1, 2, end, Uncommitted::kCommit}));
}

TEST(CommittedFrames, OfABlockWithoutWellsAreNone) {
  const FrameRange range{kFirst, 0, kFirst + 7, kFirst + 7};
  EXPECT_EQ(FindCommittedFrames(range), (CommittedFrames{0, 0, kFirst, Uncommitted::kMore}));
}

TEST(CommittedFrames, OfAFirstCommitAreNoMoreThanABlockWithOneFrame) {
  EXPECT_EQ(FirstCommitSize(2), 8 + 18 + 2 * (2 + 80));
}

}  // namespace
}  // namespace vex2
