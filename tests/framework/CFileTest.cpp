#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/CFile.h"

namespace {

using vex2::test::Bytes;
using vex2::test::FaultyFileSystem;
using vex2::test::FileCall;
using vex2::test::FirstDifference;
using vex2::test::ReadBytes;
using vex2::test::ToBytes;
using vex2::test::WriteBytes;

constexpr unsigned kWriteNew = CFile::modeWrite | CFile::modeCreate;
constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32U;

class File : public vex2::test::TempFolderTest {
 protected:
  std::string read(std::size_t count) {
    std::string text(count, '?');
    text.resize(file_.Read(text.data(), count));
    return text;
  }
  void holds(const std::string& text) { WriteBytes(path_, ToBytes(text)); }
  // Content in which every offset can be recognised by the bytes around it.
  static Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
      bytes[i] = static_cast<std::uint8_t>(i * 2654435761U >> 24U);
    }
    return bytes;
  }
  int errorOf(unsigned flags) {
    CFileException error;
    return file_.Open(path_.c_str(), flags, &error) ? 0 : error.GetError();
  }

  std::string path_ = folder_ / "file.tar.gz";
  CFile file_;
};

TEST_F(File, NamesComeFromThePath) {
  holds("");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  EXPECT_EQ(file_.GetFilePath(), path_.c_str());
  EXPECT_EQ(file_.GetFileName(), "file.tar.gz");
  EXPECT_EQ(file_.GetFileTitle(), "file.tar");
}

TEST_F(File, OpeningWhatIsNotThereFailsAndSaysWhy) {
  EXPECT_EQ(errorOf(CFile::modeRead), ENOENT);
  EXPECT_EQ(errorOf(CFile::modeWrite), ENOENT);
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_FALSE(file_.Open(nullptr, CFile::modeRead));
  CFileException error;
  EXPECT_FALSE(file_.Open(nullptr, CFile::modeRead, &error));
  EXPECT_EQ(error.GetError(), EINVAL);
  EXPECT_EQ(error.GetPath(), "");
  CFileStatus status;
  EXPECT_FALSE(file_.GetStatus(status));
}

TEST_F(File, CreatingEmptiesUnlessToldNotTo) {
  holds("content");
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew | CFile::modeNoTruncate));
  EXPECT_EQ(file_.GetLength(), 7U);
  EXPECT_EQ(file_.GetPosition(), 0U);
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  EXPECT_EQ(file_.GetLength(), 0U);
}

TEST_F(File, ThatCannotBeEmptiedIsNotOpened) {
  holds("content");
  FaultyFileSystem files;
  files.FailKind(FileCall::truncate, EIO);
  EXPECT_EQ(errorOf(kWriteNew), EIO);
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_FALSE(file_.Open(path_.c_str(), kWriteNew)) << "also for those who do not ask why";
  EXPECT_EQ(ReadBytes(path_).size(), 7U);
}

TEST_F(File, OpeningAnOpenFileClosesItFirst) {
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Write("abc", 3);
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead)) << "its own lock is gone";
  EXPECT_EQ(read(10), "abc");
  EXPECT_FALSE(file_.Open((folder_ / "none").c_str(), CFile::modeRead));
  EXPECT_FALSE(file_.IsOpen());
}

TEST_F(File, ReadsWhatThereIsAndNoMore) {
  holds("0123456789");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  EXPECT_EQ(read(4), "0123");
  EXPECT_EQ(file_.GetRemaining(), 6U);
  EXPECT_EQ(read(100), "456789");
  EXPECT_EQ(file_.GetPosition(), 10U);
  EXPECT_EQ(read(1), "");
  EXPECT_EQ(read(0), "");
}

TEST_F(File, SeeksFromBeginPositionAndEnd) {
  holds("0123456789");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  EXPECT_EQ(file_.Seek(7, CFile::begin), 7U);
  EXPECT_EQ(file_.Seek(-3, CFile::current), 4U);
  EXPECT_EQ(read(2), "45");
  EXPECT_EQ(file_.Seek(-1, CFile::end), 9U);
  EXPECT_EQ(read(2), "9");
  file_.SeekToBegin();
  EXPECT_EQ(read(1), "0");
  EXPECT_EQ(file_.SeekToEnd(), 10U);
}

TEST_F(File, SeekingOutOfBoundsThrowsAndChangesNothing) {
  holds("0123456789");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  file_.Seek(3, CFile::begin);
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  EXPECT_THROW(file_.Seek(-4, CFile::current), CFileException);
  EXPECT_THROW(file_.Seek(-1, CFile::begin), CFileException);
  EXPECT_THROW(file_.Seek(-11, CFile::end), CFileException);
  EXPECT_THROW(file_.Seek(kMost, CFile::current), CFileException);
  EXPECT_THROW(file_.Seek(std::numeric_limits<std::int64_t>::min(), CFile::end), CFileException);
  EXPECT_EQ(file_.GetPosition(), 3U);
  EXPECT_EQ(file_.Seek(kMost, CFile::begin), static_cast<std::uint64_t>(kMost));
  EXPECT_EQ(read(1), "");
  EXPECT_EQ(file_.GetRemaining(), 0U);
}

TEST_F(File, WritingWhereNoFileReachesThrowsAndChangesNothing) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Seek(kMost - 1, CFile::begin);
  EXPECT_THROW(file_.Write("xy", 2), CFileException);
  EXPECT_EQ(file_.GetPosition(), static_cast<std::uint64_t>(kMost) - 1);
  EXPECT_THROW(file_.SetLength(std::uint64_t{kMost} + 1), CFileException);
  EXPECT_EQ(file_.GetLength(), 0U);
}

TEST_F(File, WritingPastTheEndLeavesZeros) {
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Seek(3, CFile::begin);
  file_.Write("x", 1);
  EXPECT_EQ(file_.GetLength(), 4U);
  file_.Close();
  EXPECT_EQ(ReadBytes(path_), (Bytes{0, 0, 0, 'x'}));
}

TEST_F(File, WritesAreGatheredUntilFlushed) {
  FaultyFileSystem files;
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  for (int i = 0; i < 1000; ++i) file_.Write("ten bytes.", 10);
  EXPECT_EQ(files.Changes(), "L");
  EXPECT_EQ(file_.GetLength(), 10000U);
  EXPECT_TRUE(ReadBytes(path_).empty());
  file_.Flush();
  EXPECT_EQ(files.Changes(), "LW");
  EXPECT_EQ(ReadBytes(path_).size(), 10000U);
  file_.Close();
  EXPECT_EQ(files.Changes(), "LW");
}

TEST_F(File, AbortDropsWhatWasNotWrittenOut) {
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Write("kept", 4);
  file_.Flush();
  file_.Write("lost", 4);
  file_.Abort();
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_EQ(ReadBytes(path_), ToBytes("kept"));
}

TEST_F(File, OverwritingInPlaceIsSeenByReading) {
  holds("0123456789");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite));
  EXPECT_EQ(read(10), "0123456789");
  file_.Seek(2, CFile::begin);
  file_.Write("ab", 2);
  EXPECT_EQ(read(2), "45");
  file_.Write("cd", 2);
  file_.SeekToBegin();
  EXPECT_EQ(read(10), "01ab45cd89");
}

TEST_F(File, SetLengthCutsAndExtendsAndKeepsThePosition) {
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite | CFile::modeCreate));
  file_.Write("0123456789", 10);
  file_.SetLength(4);
  EXPECT_EQ(file_.GetPosition(), 10U);
  EXPECT_EQ(file_.GetLength(), 4U);
  file_.SetLength(6);
  file_.SeekToBegin();
  EXPECT_EQ(read(10), std::string("0123\0\0", 6));
  EXPECT_THROW(file_.SetLength(~std::uint64_t{0}), CFileException);
  EXPECT_EQ(file_.GetLength(), 6U);
}

TEST_F(File, LargeTransfersMeetSmallOnes) {
  const Bytes bytes = pattern(3 * CFile::kBufferSize + 77);
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite | CFile::modeCreate));
  std::size_t at = 0;
  for (const std::size_t part : {std::size_t{1}, CFile::kBufferSize - 1, std::size_t{5},
                                 CFile::kBufferSize + 3, std::size_t{60}}) {
    file_.Write(bytes.data() + at, part);
    at += part;
  }
  file_.Write(bytes.data() + at, bytes.size() - at);
  file_.SeekToBegin();
  Bytes back(bytes.size());
  at = file_.Read(back.data(), 3);
  at += file_.Read(back.data() + at, 2 * CFile::kBufferSize);
  at += file_.Read(back.data() + at, 10);
  at += file_.Read(back.data() + at, bytes.size());
  EXPECT_EQ(at, bytes.size());
  EXPECT_EQ(FirstDifference(back, bytes), "");
  file_.Close();
  EXPECT_EQ(FirstDifference(ReadBytes(path_), bytes), "");
}

TEST_F(File, PeekLooksWithoutMoving) {
  const Bytes bytes = pattern(2 * CFile::kBufferSize);
  WriteBytes(path_, bytes);
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  for (const std::size_t at :
       {std::size_t{0}, CFile::kBufferSize - 2, 2 * CFile::kBufferSize - 3}) {
    file_.Seek(static_cast<std::int64_t>(at), CFile::begin);
    const auto seen = file_.Peek(4);
    ASSERT_GE(seen.size(), std::min<std::size_t>(4, bytes.size() - at));
    EXPECT_EQ(seen[0], bytes[at]);
    EXPECT_EQ(seen[2], bytes[at + 2]);
    EXPECT_EQ(file_.GetPosition(), at);
  }
  EXPECT_EQ(file_.Peek(4).size(), 3U) << "the file ends";
  EXPECT_EQ(file_.Peek(CFile::kBufferSize).size(), 3U);
}

TEST_F(File, InterruptedAndPartialTransfersAreContinued) {
  FaultyFileSystem files;
  files.Shorten(7, true);
  const Bytes bytes = pattern(1000);
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite | CFile::modeCreate));
  file_.Write(bytes.data(), bytes.size());
  file_.SyncData();
  file_.SetLength(900);
  file_.SeekToBegin();
  Bytes back(1000);
  EXPECT_EQ(file_.Read(back.data(), 1000), 900U);
  back.resize(900);
  EXPECT_EQ(FirstDifference(back, Bytes(bytes.begin(), bytes.begin() + 900)), "");
}

TEST_F(File, SyncWritesOutWhatIsBufferedFirst) {
  FaultyFileSystem files;
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Write("new", 3);
  file_.SyncData();
  EXPECT_EQ(files.Changes(), "LWD");
}

TEST_F(File, ThatShrinksWhileItIsOpenReadsAsFarAsItGoes) {
  holds("0123456789");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  ASSERT_EQ(::truncate(path_.c_str(), 4), 0);
  EXPECT_EQ(read(10), "0123");
  EXPECT_EQ(read(1), "");
}

TEST_F(File, ADiskThatTakesNothingIsAFailureAndNoEndlessLoop) {
  struct Full : FaultyFileSystem {
    ssize_t WriteAt(int, const void*, std::size_t, std::uint64_t) override { return 0; }
  } files;
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Write("x", 1);
  try {
    file_.Flush();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const CFileException& error) {
    EXPECT_EQ(error.GetError(), EIO);
  }
  file_.Abort();
}

TEST_F(File, OffsetsPastFourGiBWork) {
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite | CFile::modeCreate));
  file_.Seek(kFourGiB + 5, CFile::begin);
  file_.Write("far", 3);
  EXPECT_EQ(file_.GetLength(), kFourGiB + 8);
  file_.Seek(-3, CFile::current);
  EXPECT_EQ(read(9), "far");
  file_.Seek(5, CFile::begin);
  EXPECT_EQ(read(3), std::string(3, '\0'));
  CFileStatus status;
  ASSERT_TRUE(file_.GetStatus(status));
  EXPECT_EQ(status.size, kFourGiB + 8);
}

TEST_F(File, SystemErrorsAreThrownWithPathAndOffset) {
  FaultyFileSystem files;
  holds("0123456789");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite));
  files.FailKind(FileCall::read, EIO);
  file_.Seek(4, CFile::begin);
  try {
    read(1);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const CFileException& error) {
    EXPECT_EQ(error.GetError(), EIO);
    EXPECT_EQ(error.GetPath(), path_);
    EXPECT_EQ(error.GetOffset(), 4U);
  }
  files.Heal(FileCall::read);
  EXPECT_EQ(read(1), "4") << "usable afterwards";
  files.FailKind(FileCall::truncate, EIO);
  EXPECT_THROW(file_.SetLength(3), CFileException);
  EXPECT_EQ(file_.GetLength(), 10U);
  files.FailKind(FileCall::syncData, EIO);
  EXPECT_THROW(file_.SyncData(), CFileException);
}

TEST_F(File, CloseThatCannotWriteThrowsAndClosesTheFile) {
  FaultyFileSystem files;
  ASSERT_TRUE(file_.Open(path_.c_str(), kWriteNew));
  file_.Write("x", 1);
  files.FailKind(FileCall::write, ENOSPC);
  EXPECT_THROW(file_.Close(), CFileException);
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_NO_THROW(file_.Close());
}

TEST_F(File, DestructionSwallowsWhatCannotBeWritten) {
  FaultyFileSystem files;
  files.FailKind(FileCall::write, ENOSPC);
  {
    CFile file;
    ASSERT_TRUE(file.Open(path_.c_str(), kWriteNew));
    file.Write("x", 1);
  }
  EXPECT_TRUE(ReadBytes(path_).empty());
}

TEST_F(File, OperationsOnAClosedFileThrow) {
  EXPECT_THROW(read(1), CFileException);
  EXPECT_THROW(read(CFile::kBufferSize), CFileException);
  EXPECT_THROW(file_.Write("x", 1), CFileException);
  EXPECT_THROW(file_.Write(pattern(CFile::kBufferSize).data(), CFile::kBufferSize), CFileException);
  EXPECT_THROW(file_.Seek(0, CFile::begin), CFileException);
  EXPECT_THROW(file_.SetLength(0), CFileException);
  EXPECT_THROW(file_.SyncData(), CFileException);
  EXPECT_EQ(file_.GetLength(), 0U);
  EXPECT_NO_THROW(file_.Close());
  EXPECT_NO_THROW(file_.Flush());
}

TEST_F(File, FoldersAreRefusedAndPipesReadAsEmpty) {
  CFileException error;
  EXPECT_FALSE(file_.Open(folder_.Path().c_str(), CFile::modeRead, &error));
  EXPECT_EQ(error.GetError(), EISDIR);
  EXPECT_FALSE(file_.Open(folder_.Path().c_str(), kWriteNew, &error));
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_TRUE(file_.Open(path_.c_str(), CFile::modeRead)) << "and without waiting for a writer";
  EXPECT_EQ(file_.GetLength(), 0U);
  EXPECT_EQ(read(4), "");
  file_.Close();
  EXPECT_FALSE(file_.Open(path_.c_str(), CFile::modeWrite)) << "and without waiting for a reader";
}

TEST_F(File, WhatIsNoFileNeedsNoSync) {
  ASSERT_TRUE(file_.Open("/dev/null", CFile::modeWrite));
  file_.Write("x", 1);
  EXPECT_NO_THROW(file_.SyncData());
}

TEST_F(File, AFullDeviceRefusesWhatIsWrittenOut) {
  ASSERT_TRUE(file_.Open("/dev/full", kWriteNew));
  file_.Write("x", 1);
  EXPECT_THROW(file_.Flush(), CFileException);
  EXPECT_THROW(file_.Close(), CFileException);
}

TEST_F(File, ReadingOnTakesEverLargerSteps) {
  WriteBytes(path_, Bytes(4 * CFile::kBufferSize));
  struct Counting : FaultyFileSystem {
    int reads = 0;
    ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) override {
      ++reads;
      return FaultyFileSystem::ReadAt(file, bytes, count, offset);
    }
  } files;
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
  while (!read(100).empty()) continue;
  EXPECT_LE(files.reads, 4 * 4 + 8);
}

}  // namespace
