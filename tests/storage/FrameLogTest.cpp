// Tests that a commit overwrites the uncommitted bytes of an interrupted commit, and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/MemoryFiles.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::test {
namespace {

constexpr const char* kPath = "/run.vex";
constexpr std::uint32_t kHeader = 1024;
constexpr std::size_t kFrame = 160;  // of two wells

class FrameLog : public testing::Test {
 protected:
  // Makes a run of two wells with one frame in memory.
  void SetUp() override {
    const auto numbers = WellNumbers(2);
    manager_.InitAcqDataWellNumberArray(numbers.data(), 2, DataRAWa);
    for (const int position : {0, 1}) {
      const Vex2WellRecord record = MakeRecord(0, position);
      ASSERT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, position + 1, DataRAWa));
    }
  }
  // Writes a new file, because the manager remembers files to which it committed.
  void put(const Bytes& document) {
    files_.Clear();
    files_.Put(kPath, document);
  }
  int commit() { return manager_.CommitAcqDataFrame(kPath, 0, DataRAWa); }
  const Bytes& file() const { return files_.Content(kPath); }

  // Commits to a document with these records. Returns the offset of the new block.
  std::size_t placeBehind(const std::vector<Bytes>& records) {
    put(Join({StoredHeader(), Join(records)}));
    EXPECT_EQ(commit(), kSuccess);
    const std::size_t place = LongAt(file(), 68);
    EXPECT_EQ(FirstDifference(Slice(file(), place, file().size() - place), whole_), "");
    return place;
  }
  std::size_t lengthOf(const std::vector<Bytes>& records) { return kHeader + Join(records).size(); }
  // Commits a frame to a document with `block` followed by `left`. Returns whether the commit kept
  // the bytes of `left`.
  bool staysBehind(const Bytes& block, const Bytes& left) {
    const Bytes before = Join({StoredHeader(kHeader), block, left});
    put(before);
    EXPECT_EQ(commit(), kSuccess);
    const std::size_t at = before.size() - left.size();
    const bool stays = Slice(file(), at, left.size()) == left;
    EXPECT_EQ(file().size(), (stays ? before.size() : at) + kFrame);
    return stays;
  }

  // Whether these bytes after a header count as an interrupted first commit for a plate of two
  // wells.
  bool isFirstCommit(const Bytes& left) {
    put(Join({StoredHeader(), left}));
    CFile opened;
    EXPECT_TRUE(opened.Open(kPath, CFile::modeRead));
    return IsFirstCommit(opened, kHeader, 2);
  }

  MemoryFiles files_;
  SilentHost host_;
  OpenedManager manager_;
  const Bytes whole_ = StoredBlock("RAWa", 2, 1);
  const Bytes empty_ = StoredBlock("RAWa", 2, 0);
  const Bytes noTag_ = StoredBlock(std::string_view("\0\0\0\0", 4), 2, 1);
  const Bytes torn_ = Bytes(40, 0xA5);
};

Bytes changed(Bytes bytes, std::size_t at, std::uint8_t value) {
  bytes.at(at) = value;
  return bytes;
}

// The block with two more bytes in its times; its length counts them.
Bytes withLongerTimes(Bytes block) {
  block = changed(changed(std::move(block), 7, 24), 11, 14);
  block.insert(block.begin() + 12, {0, 0});
  return block;
}

TEST_F(FrameLog, CommitOverwritesPartOfAFrame) {
  EXPECT_FALSE(staysBehind(empty_, torn_));
  EXPECT_FALSE(staysBehind(empty_, Bytes(kFrame, 0)));
  EXPECT_FALSE(staysBehind(empty_, ToBytes("text, but no record")));
}

TEST_F(FrameLog, CommitKeepsMoreThanOneFrame) {
  EXPECT_TRUE(staysBehind(empty_, Bytes(kFrame + 1, 0xA5)));
}

TEST_F(FrameLog, CommitReadsAFileAgainThatHasChanged) {
  put(StoredHeader());
  ASSERT_EQ(commit(), kSuccess);
  const std::size_t committed = file().size();
  files_.Put(kPath, Join({file(), torn_}));
  ASSERT_EQ(commit(), kSuccess);
  EXPECT_EQ(file().size(), committed + kFrame) << "the uncommitted bytes were overwritten";
}

TEST_F(FrameLog, CommitKeepsRecordsAfterTheFrames) {
  EXPECT_TRUE(staysBehind(empty_, ByteString().Text("COMM").Long(3).Text("abc")));
  EXPECT_TRUE(staysBehind(empty_, ByteString().Text("Xyz0").Long(3).Text("abc")));
  EXPECT_FALSE(staysBehind(empty_, ByteString().Text("Xyz0").Long(99).Text("abc")));
  EXPECT_FALSE(staysBehind(empty_, ByteString().Text("Xyz\x7f").Long(3).Text("abc")));
}

TEST_F(FrameLog, CommitKeepsBytesAfterABlockItCannotHaveWritten) {
  EXPECT_TRUE(staysBehind(changed(empty_, 0, 'X'), torn_)) << "another tag";
  EXPECT_TRUE(staysBehind(changed(empty_, 9, 1), torn_)) << "another version";
  EXPECT_TRUE(staysBehind(changed(empty_, 11, 11), torn_)) << "other times";
  EXPECT_TRUE(staysBehind(withLongerTimes(empty_), torn_)) << "longer times";
  EXPECT_TRUE(staysBehind(changed(empty_, 25, 3), torn_)) << "other wells";
  EXPECT_TRUE(staysBehind(StoredBlock("RAWa", 3, 0), torn_)) << "a plate of another size";
  EXPECT_TRUE(staysBehind(changed(empty_, 25, 0), torn_)) << "no wells";
  EXPECT_TRUE(staysBehind(changed(empty_, 7, 23), torn_)) << "no whole frames";
  EXPECT_TRUE(staysBehind(changed(empty_, 7, 3), torn_)) << "less than its head";
}

TEST_F(FrameLog, FirstCommitOverwritesABlockWithoutTagCutAnywhere) {
  const Bytes other = ByteString().Text("COMM").Long(3).Text("abc");
  for (std::size_t length = 1; length <= noTag_.size(); ++length) {
    EXPECT_EQ(placeBehind({other, Slice(noTag_, 0, length)}), lengthOf({other})) << length;
  }
}

// The write of the tag can also be interrupted.
TEST_F(FrameLog, FirstCommitOverwritesABlockWithPartOfItsTag) {
  for (std::size_t written = 1; written < 4; ++written) {
    Bytes begun = noTag_;
    std::copy_n(whole_.begin(), written, begun.begin());
    EXPECT_EQ(placeBehind({begun}), kHeader) << written;
    EXPECT_EQ(placeBehind({Slice(begun, 0, written)}), kHeader) << written;
  }
}

TEST_F(FrameLog, FirstCommitLeavesNothingOfALongerBlockWithoutTag) {
  EXPECT_EQ(placeBehind({StoredBlock(std::string_view("\0\0\0\0", 4), 2, 2)}), kHeader);
}

TEST_F(FrameLog, FirstCommitOverwritesABlockWithHeldFramesOnly) {
  EXPECT_EQ(placeBehind({whole_}), kHeader);
  EXPECT_EQ(placeBehind({Slice(whole_, 0, whole_.size() - 1)}), kHeader);
}

TEST_F(FrameLog, FirstCommitKeepsBlocksOfAnotherRun) {
  const Bytes second = StoredBlock("RAWa", 2, 2);
  Bytes emptySecond = second;
  std::fill_n(emptySecond.end() - kFrame, kFrame, std::uint8_t{0});
  const Bytes other = ByteString().Text("COMM").Long(3).Text("abc");
  for (const auto& records : std::vector<std::vector<Bytes>>{{changed(whole_, 9, 1)},
                                                             {changed(whole_, 25, 3)},
                                                             {changed(whole_, 11, 200)},
                                                             {changed(whole_, 40, 0xEE)},
                                                             {changed(whole_, 100, 0xEE)},
                                                             {second},
                                                             {emptySecond},
                                                             {whole_, other},
                                                             {noTag_, other}}) {
    EXPECT_EQ(placeBehind(records), lengthOf(records));
  }
}

TEST_F(FrameLog, FirstCommitKeepsBytesAfterDamagedRecords) {
  const Bytes binary = ByteString().Text("\1\2\3\4").Long(3).Text("abc");
  const Bytes high = ByteString().Text("abc\xE4").Long(3).Text("abc");
  const Bytes tornRecord = ByteString().Text("COMM").Long(1000);
  for (const Bytes& first : {binary, high, tornRecord, ToBytes("COM")}) {
    EXPECT_EQ(placeBehind({first, noTag_}), lengthOf({first, noTag_}));
  }
}

TEST_F(FrameLog, FirstCommitIsABlockOfOneFrameOrItsBeginning) {
  EXPECT_TRUE(isFirstCommit(whole_));
  for (std::size_t length = 1; length <= noTag_.size(); ++length) {
    EXPECT_TRUE(isFirstCommit(Slice(noTag_, 0, length))) << length;
  }
  EXPECT_TRUE(isFirstCommit(changed(noTag_, 25, 0))) << "the head is not on the disk";
}

TEST_F(FrameLog, OtherBytesAreNotAFirstCommit) {
  EXPECT_FALSE(isFirstCommit({})) << "nothing";
  EXPECT_FALSE(isFirstCommit(StoredBlock("RAWa", 2, 2))) << "two frames";
  EXPECT_FALSE(isFirstCommit(StoredBlock("RAWa", 3, 1))) << "more wells than the plate";
  EXPECT_FALSE(isFirstCommit(changed(Join({whole_, {0}}), 25, 1))) << "more than one well's frame";
  EXPECT_FALSE(isFirstCommit(ByteString().Text("COMM").Long(3).Text("abc"))) << "a record";
}

}  // namespace
}  // namespace vex2::test
