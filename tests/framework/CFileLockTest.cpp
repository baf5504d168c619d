#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/CFile.h"

namespace {

using namespace std::chrono_literals;
using vex2::test::FaultyFileSystem;
using vex2::test::FileCall;
using vex2::test::ReadBytes;
using vex2::test::ToBytes;
using vex2::test::WriteBytes;

constexpr unsigned kCreate = CFile::modeWrite | CFile::modeCreate;

// Files with a clock that advances only in `Pause`.
struct QuickFiles : FaultyFileSystem {
  std::int64_t now = 1000;
  int pauses = 0;
  std::function<void()> whileWaiting;

  std::int64_t Milliseconds() override { return now; }
  void Pause(int milliseconds) override {
    now += milliseconds;
    ++pauses;
    if (whileWaiting) whileWaiting();
  }
};

class FileLock : public vex2::test::TempFolderTest {
 protected:
  void SetUp() override { WriteBytes(path_, ToBytes("content")); }
  bool opens(unsigned flags) { return second_.Open(path_.c_str(), flags, &error_); }

  std::string path_ = folder_ / "file";
  QuickFiles files_;
  CFile first_;
  CFile second_;
  CFileException error_;
};

TEST_F(FileLock, ReadersShareTheFile) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeRead));
  EXPECT_TRUE(opens(CFile::modeRead));
  EXPECT_EQ(files_.pauses, 0);
}

TEST_F(FileLock, AWriterExcludesReadersAndWriters) {
  for (const unsigned held : {unsigned{CFile::modeWrite}, unsigned{CFile::modeReadWrite}}) {
    ASSERT_TRUE(first_.Open(path_.c_str(), held));
    for (const unsigned wanted : {unsigned{CFile::modeRead}, unsigned{CFile::modeWrite}, kCreate}) {
      EXPECT_FALSE(opens(wanted));
      EXPECT_EQ(error_.GetError(), EWOULDBLOCK);
      EXPECT_FALSE(second_.IsOpen());
    }
  }
}

TEST_F(FileLock, AReaderExcludesWriters) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeRead));
  EXPECT_FALSE(opens(CFile::modeWrite));
  EXPECT_FALSE(opens(CFile::modeReadWrite));
}

TEST_F(FileLock, IsWaitedForTwoSeconds) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeWrite));
  const auto start = files_.now;
  EXPECT_FALSE(opens(CFile::modeRead));
  EXPECT_EQ(files_.now - start, 2000);
}

TEST_F(FileLock, ThatIsGivenUpInTimeIsTaken) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeWrite));
  files_.whileWaiting = [&] {
    if (files_.pauses == 100) first_.Close();
  };
  EXPECT_TRUE(opens(CFile::modeWrite));
  EXPECT_EQ(files_.pauses, 100);
}

TEST_F(FileLock, LaterReadersDoNotOvertakeAWaitingWriter) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeRead));
  const int later = files_.Open(path_.c_str(), O_RDONLY, 0);
  int refused = 0;
  files_.whileWaiting = [&] {
    refused = files_.EnterGate(later, false);
    first_.Close();
  };
  EXPECT_TRUE(opens(CFile::modeWrite));
  EXPECT_EQ(refused, -EWOULDBLOCK);
  EXPECT_EQ(files_.EnterGate(later, false), 0);
  files_.Close(later);
}

TEST_F(FileLock, LaterWritersDoNotOvertakeAWaitingReader) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeWrite));
  const int later = files_.Open(path_.c_str(), O_RDWR, 0);
  int refused = 0;
  int together = -1;
  files_.whileWaiting = [&] {
    refused = files_.EnterGate(later, true);
    together = files_.EnterGate(later, false);
    files_.LeaveGate(later);
    first_.Close();
  };
  EXPECT_TRUE(opens(CFile::modeRead));
  EXPECT_EQ(refused, -EWOULDBLOCK);
  EXPECT_EQ(together, 0);
  files_.Close(later);
}

TEST_F(FileLock, IsAwaitedEvenAfterWaitingForOtherWaiters) {
  const int waiting = files_.Open(path_.c_str(), O_RDWR, 0);
  ASSERT_EQ(files_.EnterGate(waiting, true), 0);
  EXPECT_FALSE(opens(CFile::modeRead));
  EXPECT_EQ(error_.GetError(), EWOULDBLOCK);
  files_.whileWaiting = [&] { files_.LeaveGate(waiting); };
  EXPECT_TRUE(opens(CFile::modeRead));
  files_.Close(waiting);
}

TEST_F(FileLock, AFileIsEmptiedOnlyWhileItIsLocked) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeRead));
  EXPECT_FALSE(opens(kCreate));
  EXPECT_EQ(ReadBytes(path_), ToBytes("content"));
}

TEST_F(FileLock, OnAFileThatWasReplacedIsTakenOnTheNewOne) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeWrite));
  files_.whileWaiting = [&] {
    if (files_.pauses != 3) return;
    WriteBytes(folder_ / "new", ToBytes("new content"));
    std::filesystem::rename(folder_ / "new", path_);
    first_.Close();
  };
  ASSERT_TRUE(opens(CFile::modeRead));
  char text[11];
  EXPECT_EQ(second_.Read(text, sizeof text), 11U);
  EXPECT_EQ(std::string(text, 11), "new content");
}

TEST_F(FileLock, WaitEndsIfTheFileIsReplacedAgainAndAgain) {
  // Replaces the file at the path each time after it was opened.
  struct Replacing : QuickFiles {
    int StatPath(const char* path, struct stat& info) override {
      now += 500;
      const int status = QuickFiles::StatPath(path, info);
      ++(isOnOtherDisk ? info.st_dev : info.st_ino);
      return status;
    }
    bool isOnOtherDisk = false;
  } files;
  for (const bool other : {false, true}) {
    files.isOnOtherDisk = other;
    const std::int64_t before = files.now;
    EXPECT_FALSE(opens(CFile::modeRead));
    EXPECT_EQ(error_.GetError(), EWOULDBLOCK);
    EXPECT_EQ(files.now - before, 2500);
  }
}

TEST_F(FileLock, OnAFileThatWasRemovedFails) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeWrite));
  files_.whileWaiting = [&] {
    std::filesystem::remove(path_);
    first_.Close();
  };
  EXPECT_FALSE(opens(CFile::modeRead));
  EXPECT_EQ(error_.GetError(), ENOENT);
}

TEST_F(FileLock, IsGivenUpByEveryWayOfClosing) {
  ASSERT_TRUE(first_.Open(path_.c_str(), CFile::modeWrite));
  first_.Close();
  EXPECT_TRUE(opens(CFile::modeWrite));
  second_.Abort();
  {
    CFile third;
    EXPECT_TRUE(third.Open(path_.c_str(), CFile::modeWrite));
  }
  EXPECT_TRUE(opens(CFile::modeWrite));
  EXPECT_EQ(files_.pauses, 0);
}

TEST_F(FileLock, IsNotNeededIfTheFileSystemHasNone) {
  for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EINVAL}) {
    files_.FailKind(FileCall::lock, error);
    EXPECT_TRUE(opens(CFile::modeWrite));
  }
  files_.FailKind(FileCall::lock, EIO);
  EXPECT_FALSE(opens(CFile::modeWrite));
}

TEST(FileLockOfAnotherProcess, Counts) {
  const vex2::test::TempFolder folder;
  const std::string path = folder / "file";
  WriteBytes(path, ToBytes("content"));
  int go[2];
  int ready[2];
  ASSERT_EQ(pipe(go) + pipe(ready), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  char byte = 0;
  if (child == 0) {
    CFile file;
    const bool held = file.Open(path.c_str(), CFile::modeWrite);
    byte = held ? 'y' : 'n';
    const bool told = write(ready[1], &byte, 1) == 1 && read(go[0], &byte, 1) == 1;
    _exit(told ? 0 : 1);
  }
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_EQ(byte, 'y');
  CFile file;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 1900ms);
  // A process releases its lock when it ends, in whatever way it ends.
  std::thread ending([&] {
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(write(go[1], "g", 1), 1);
  });
  EXPECT_TRUE(file.Open(path.c_str(), CFile::modeRead));
  ending.join();
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const int end : {go[0], go[1], ready[0], ready[1]}) close(end);
}

TEST(FileLockOfManyThreads, HidesIncompleteWrites) {
  const vex2::test::TempFolder folder;
  const std::string path = folder / "file";
  constexpr std::size_t kSize = 1000;
  WriteBytes(path, vex2::test::Bytes(kSize, 'a'));
  std::atomic<int> torn{0};
  std::atomic<int> reads{0};
  const auto readOften = [&] {
    for (int i = 0; i < 50; ++i) {
      CFile file;
      std::string text(kSize, '?');
      if (!file.Open(path.c_str(), CFile::modeRead)) continue;
      text.resize(file.Read(text.data(), text.size()));
      ++reads;
      if (text != std::string(kSize, text.empty() ? '?' : text[0])) ++torn;
    }
  };
  const auto writeOften = [&](char letter) {
    for (int i = 0; i < 50; ++i) {
      CFile file;
      if (!file.Open(path.c_str(), kCreate)) continue;
      for (std::size_t at = 0; at < kSize; at += 100) {
        file.Write(std::string(100, letter).data(), 100);
        file.Flush();
      }
    }
  };
  std::thread threads[] = {std::thread(readOften), std::thread(writeOften, 'b'),
                           std::thread(writeOften, 'c'), std::thread(readOften)};
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(torn, 0);
  EXPECT_GT(reads, 0);
}

}  // namespace
