// Tests a full disk, a limit on the size of files, and transfers that are incomplete or
// interrupted. Operations return a status, every committed frame is intact, and the run continues
// when there is room.
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/reliability/ForkedProcess.h"
#include "tests/reliability/RunOnDisk.h"
#include "tests/reliability/Works.h"

namespace vex2::test {
namespace {

constexpr const char* kDiskFull = "the disk is full, a write is cut short or interrupted";

class DiskFull : public RunOnDisk {
 protected:
  static SweepResult resultOf(const char* sweep) { return {.promise = kDiskFull, .sweep = sweep}; }
  // Appends frames from index `frames` on until a commit fails; returns the number of frames that
  // are then committed.
  int recordUntilRefused(OpenedManager& manager, int frames) {
    int status = kSuccess;
    while ((status = append(manager, frames)) == kSuccess && frames < 1000) ++frames;
    EXPECT_EQ(status, kWriteFailed);
    return frames;
  }
  // Checks that the file has `frames` frames, and that a save that fails leaves it unchanged.
  void expectIntact(OpenedManager& manager, int frames) {
    EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(frames)), "");
    EXPECT_EQ(readableFrames(), frames);
    EXPECT_EQ(manager.SaveToFile(path_.c_str()), kWriteFailed);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(frames)), "");
    // The failed save changed the offset only in memory, and closed the file.
    EXPECT_FALSE(manager.IsOpen());
  }
  void goOnWith(OpenedManager& manager, int frames) {
    EXPECT_EQ(manager.CommitAcqDataFrame(path_.c_str(), frames, DataRAWa), kSuccess);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(frames + 1)), "");
  }
};

// Limits the size of files in this process while the object exists.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : before_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &limit_);
    const rlimit limit{bytes, limit_.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &limit_);
    std::signal(SIGXFSZ, before_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit limit_{};
  void (*before_)(int);
};

TEST_F(DiskFull, LimitOnTheSizeOfFilesKeepsFramesAndRunCanContinue) {
  SweepResult result = resultOf("a limit on the size of files, in the midst of each call");
  const std::size_t frame = 80UL * wells_;
  const std::size_t head = documentOf(1).size() - frame;
  const std::size_t last = documentOf(3).size();
  const std::size_t step = FullSweeps() ? 1 : 23;
  FaultyFileSystem files;
  files.SkipSyncs();
  NewFailures failures;
  for (std::size_t limit = 1024; limit < last; limit += step) {
    SCOPED_TRACE(limit);
    OpenedManager manager;
    begin(manager);
    int frames = 0;
    {
      const FileSizeLimit limited(limit);
      frames = recordUntilRefused(manager, 0);
      EXPECT_EQ(frames, limit < head ? 0 : static_cast<int>((limit - head) / frame));
      expectIntact(manager, frames);
    }
    goOnWith(manager, frames);
    ++result.points;
    ++result.states;
    if (failures.Any()) ++result.bad;
  }
  ReportSweep(result);
}

TEST_F(DiskFull, TransfersThatAreCutShortAndInterruptedAreCarriedThrough) {
  SweepResult result = resultOf("every transfer cut to a few bytes and interrupted");
  FaultyFileSystem files;
  NewFailures failures;
  for (const std::size_t most : {1U, 3U, 7U, 79U, 4095U}) {
    SCOPED_TRACE(most);
    files.Restart();
    files.SkipSyncs();
    files.Shorten(most, true);
    OpenedManager manager;
    record(manager, 3);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(3)), "");
    EXPECT_EQ(readableFrames(), 3);
    result.points += files.Log().size();
    ++result.states;
    if (failures.Any()) ++result.bad;
    for (const Work& writer : WholeWriters()) {
      SCOPED_TRACE(writer.name);
      const auto write = [&](const std::string& path, bool shortened) {
        files.Restart();
        files.SkipSyncs();
        if (shortened) files.Shorten(most, true);
        Vex2FileManager plate;
        FillDocument(plate);
        WriteBytes(path, documentOf(3));
        EXPECT_EQ(writer.run(plate, path.c_str()), kSuccess);
        return ReadBytes(path);
      };
      const Bytes expected = write(folder_ / "whole.vex", false);
      EXPECT_EQ(FirstDifference(write(folder_ / "short.vex", true), expected), "");
      result.points += files.Log().size();
      ++result.states;
      if (failures.Any()) ++result.bad;
    }
  }
  ReportSweep(result);
}

TEST_F(DiskFull, AfterAnyPartOfAnyWriteKeepsFramesAndRunCanContinue) {
  SweepResult result = resultOf("ENOSPC after each part of each write");
  FaultyFileSystem files;
  const auto start = [&](OpenedManager& manager, std::size_t most) {
    files.Restart();
    files.SkipSyncs();
    begin(manager);
    files.Shorten(most, true);
  };
  NewFailures failures;
  for (const std::size_t most : {16U, 80U}) {
    for (int writes = 0;; ++writes) {
      SCOPED_TRACE(writes);
      OpenedManager manager;
      start(manager, most);
      files.FailKind(FileCall::write, ENOSPC, writes);
      int frames = 0;
      while (frames < 3 && append(manager, frames) == kSuccess) ++frames;
      if (frames == 3) break;
      files.Heal(FileCall::write);
      EXPECT_EQ(readableFrames(), frames);
      goOnWith(manager, frames);
      ++result.points;
      ++result.states;
      if (failures.Any()) ++result.bad;
    }
  }
  EXPECT_GE(result.points, 20U);
  ReportSweep(result);
}

// The exit code of a child process that cannot mount a file system. Otherwise the exit code is the
// number of bad states.
constexpr int kNoFileSystem = 77;

class SmallDisk : public DiskFull {
 protected:
  // Mounts a disk of 64 KiB at the folder, visible only in this process.
  bool mountDisk() const {
    const std::string folder = folder_.Path().string();
    if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    return ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
  }
  int fillAndGoOn() {
    if (!mountDisk()) return kNoFileSystem;
    NewFailures failures;
    int bad = 0;
    const std::string filler = folder_ / "filler";
    WriteBytes(filler, Bytes(16 * 1024));
    OpenedManager manager;
    begin(manager);
    const int frames = recordUntilRefused(manager, 0);
    EXPECT_GE(frames, 100);
    expectIntact(manager, frames);
    if (failures.Any()) ++bad;
    std::filesystem::remove(filler);
    goOnWith(manager, frames);
    const int more = recordUntilRefused(manager, frames + 1);
    EXPECT_GT(more, frames + 10);
    EXPECT_EQ(readableFrames(), more);
    if (failures.Any()) ++bad;
    return bad;
  }
};

TEST_F(SmallDisk, ThatIsFullKeepsFramesAndRunContinuesWhenThereIsRoom) {
  const int status = EndOfProcess([this] { return fillAndGoOn(); });
  ASSERT_TRUE(WIFEXITED(status)) << status;
  if (WEXITSTATUS(status) == kNoFileSystem) {
    GTEST_SKIP() << "this system lets no test mount a file system of its own";
  }
  SweepResult result = resultOf("a run until a disk of 64 KiB is full");
  result.points = result.states = 2;
  result.bad = static_cast<std::uint64_t>(WEXITSTATUS(status));
  ReportSweep(result);
  EXPECT_EQ(result.bad, 0U);
}

}  // namespace
}  // namespace vex2::test
