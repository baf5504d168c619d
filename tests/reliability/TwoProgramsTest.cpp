// Tests several programs and several threads that use one document.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <thread>

#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kTwoPrograms = "two programs at once";
constexpr int kReaders = 8;
constexpr std::uint16_t kWells = 2;

bool commit(Vex2FileManager& manager, const std::string& path, int index) {
  const Vex2FrameData frame = MakeFrame(kWells, index);
  return manager.AppendAcquisitionDataFrame(path.c_str(), &frame, DataRAWa) == kSuccess;
}

/// Numbers in shared memory with which the programs report to each other.
struct Notes {
  std::atomic<bool> isOver{false};
  std::atomic<int> reads{0};
  std::atomic<int> refused{0};  ///< the number of reads that were refused
  std::atomic<int> bad{0};
};

class SharedNotes {
 public:
  SharedNotes()
      : notes_(new (::mmap(nullptr, sizeof(Notes), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Notes) {}
  ~SharedNotes() { ::munmap(notes_, sizeof(Notes)); }
  SharedNotes(const SharedNotes&) = delete;
  SharedNotes& operator=(const SharedNotes&) = delete;
  Notes* operator->() { return notes_; }

 private:
  Notes* notes_;
};

bool isFrame(const Vex2FrameData& frame, int index) {
  return SameFrame(frame, MakeFrame(kWells, index));
}

/// Reads one document again and again, sometimes as a whole and sometimes only its last frame.
/// Checks that all frames are whole and that their number never falls.
class PrefixReader {
 public:
  PrefixReader(std::string path, SharedNotes& notes) : path_(std::move(path)), notes_(notes) {}

  void ReadOnce() {
    const int number = notes_->reads++;
    if (!(number % 16 == 0 ? readsWhole() : readsLast())) ++notes_->bad;
  }

 private:
  bool readsWhole() {
    Vex2FileManager document;
    if (document.ReadFromFile(path_.c_str()) != kSuccess) return refusal();
    const int count = document.GetDataFrameCount(DataRAWa);
    Vex2FrameData frame;
    for (int i = 0; i < count; ++i) {
      if (document.ReadDataFrame(i, &frame, DataRAWa) != kSuccess || !isFrame(frame, i)) {
        return false;
      }
    }
    return grows(count);
  }

  bool readsLast() {
    Vex2FileManager document;
    int count = 0;
    if (document.GetDataFrameCount(path_.c_str(), count, DataRAWa) != kSuccess) return refusal();
    if (!grows(count)) return false;
    if (count == 0) return true;
    Vex2FrameData frame;
    const int status = document.ReadDataFrame(path_.c_str(), count - 1, &frame, DataRAWa);
    if (status != kSuccess) return refusal();
    return isFrame(frame, count - 1);
  }

  bool grows(int count) {
    const bool isMore = count >= seen_;
    seen_ = count;
    return isMore;
  }

  bool refusal() {
    ++notes_->refused;
    return true;
  }

  std::string path_;
  SharedNotes& notes_;
  int seen_ = 0;
};

class TwoPrograms : public TempFolderTest {
 protected:
  void SetUp() override {
    Vex2FileManager manager;
    ASSERT_EQ(manager.SaveToFile(path_.c_str()), kSuccess);
  }

  SilentHost host_;
  std::string path_ = folder_ / "run.vex";
};

std::vector<pid_t> startReaders(const std::string& path, SharedNotes& notes) {
  std::vector<pid_t> readers;
  for (int i = 0; i < kReaders; ++i) {
    readers.push_back(::fork());
    if (readers.back() != 0) continue;
    PrefixReader reader(path, notes);
    while (!notes->isOver) reader.ReadOnce();
    ::_exit(0);
  }
  return readers;
}

TEST_F(TwoPrograms, ReadersSeeWholeFramesAndMakeNoCommitFail) {
  const int frames = InFullSweeps(10'000, 150);
  SharedNotes notes;
  const std::vector<pid_t> readers = startReaders(path_, notes);
  Vex2FileManager writer;
  int refusedCommits = 0;
  auto longest = Clock::duration::zero();
  for (int i = 0; i < frames && refusedCommits == 0; ++i) {
    const auto begun = Clock::now();
    if (!commit(writer, path_, i)) ++refusedCommits;
    longest = std::max(longest, Clock::now() - begun);
  }
  notes->isOver = true;
  for (const pid_t reader : readers) {
    int status = -1;
    EXPECT_EQ(::waitpid(reader, &status, 0), reader);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(refusedCommits, 0);
  EXPECT_EQ(notes->refused, 0);
  EXPECT_EQ(notes->bad, 0);
  EXPECT_GE(notes->reads, frames / 10);
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(longest).count();
  RecordProperty("reads", notes->reads);
  RecordProperty("longestCommitMilliseconds", static_cast<int>(milliseconds));
  std::printf("%d reads, longest commit %lld ms\n", notes->reads.load(),
              static_cast<long long>(milliseconds));
  const int bad = notes->bad + notes->refused + refusedCommits;
  ReportSweep({kTwoPrograms, "commits of one program, with eight others that read",
               static_cast<std::uint64_t>(frames), static_cast<std::uint64_t>(notes->reads),
               static_cast<std::uint64_t>(bad)});
}

/// Delays the rename at the end of a save until another program has asked for the lock of the old
/// file.
class HeldBackRename : public FileSystem {
 public:
  HeldBackRename() : before_(SetFileSystem(this)) {}
  ~HeldBackRename() override { SetFileSystem(before_); }
  HeldBackRename(const HeldBackRename&) = delete;
  HeldBackRename& operator=(const HeldBackRename&) = delete;

  std::atomic<bool> isHeld{false};

  int Lock(int file, bool exclusive) override {
    const int status = FileSystem::Lock(file, exclusive);
    if (isHeld && status == -EWOULDBLOCK) isAsked_ = true;
    return status;
  }
  int Rename(const char* from, const char* to) override {
    isHeld = true;
    while (!isAsked_) std::this_thread::yield();
    return FileSystem::Rename(from, to);
  }

 private:
  FileSystem* before_;
  std::atomic<bool> isAsked_{false};
};

TEST_F(TwoPrograms, WriterThatWaitedForASaveWritesToTheNewFile) {
  const int rounds = InFullSweeps(100, 5);
  int bad = 0;
  for (int round = 1; round <= rounds; ++round) {
    Vex2FileManager recorder;
    Vex2FileManager saver;
    ASSERT_EQ(saver.SaveToFile(path_.c_str()), kSuccess);
    saver.SetSampleVolume(static_cast<unsigned short>(round));
    bool isCommitted = false;
    bool isSaved = false;
    {
      HeldBackRename files;
      std::thread saving([&] { isSaved = saver.SaveToFile(path_.c_str()) == kSuccess; });
      while (!files.isHeld) std::this_thread::yield();
      isCommitted = commit(recorder, path_, round);
      saving.join();
    }
    Vex2FileManager reader;
    Vex2FrameData frame;
    const bool isWhole =
        isSaved && isCommitted && reader.ReadFromFile(path_.c_str()) == kSuccess &&
        reader.GetSampleVolume() == round && reader.GetDataFrameCount(DataRAWa) == 1 &&
        reader.ReadDataFrame(0, &frame, DataRAWa) == kSuccess && isFrame(frame, round);
    if (!isWhole) ++bad;
  }
  EXPECT_EQ(bad, 0);
  ReportSweep({kTwoPrograms, "a save that replaces the file under a writer who waits",
               static_cast<std::uint64_t>(rounds), static_cast<std::uint64_t>(rounds),
               static_cast<std::uint64_t>(bad)});
}

// The work of one thread: records a run, reads it back and saves it.
bool recordsARun(const std::string& path, int frames) {
  Vex2FileManager manager;
  manager.SetSampleVolume(25);
  Vex2PlateSetup setup;
  setup.Resize(96);
  if (manager.ReplacePlateSetup(&setup) != kSuccess) return false;
  if (manager.SaveToFile(path.c_str()) != kSuccess) return false;
  for (int i = 0; i < frames; ++i) {
    if (!commit(manager, path, i)) return false;
  }
  Vex2FileManager reader;
  if (reader.ReadFromFile(path.c_str()) != kSuccess) return false;
  Vex2FrameData frame;
  for (int i = 0; i < frames; ++i) {
    if (reader.ReadDataFrame(i, &frame, DataRAWa) != kSuccess || !isFrame(frame, i)) return false;
  }
  const Vex2FileManager copy(reader);
  return reader.SaveToFile((path + ".copy").c_str()) == kSuccess &&
         copy.GetDataFrameCount(DataRAWa) == frames && reader.GetSampleVolume() == 25;
}

class Threads : public TwoPrograms {};

TEST_F(Threads, WithAManagerEachWorkSideBySide) {
  constexpr int kThreads = 4;
  const int frames = InFullSweeps(200, 20);
  SharedNotes notes;
  std::atomic<int> bad{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, own = folder_ / ("own" + std::to_string(i) + ".vex")] {
      if (!recordsARun(own, frames)) ++bad;
    });
    threads.emplace_back([&] {
      PrefixReader reader(path_, notes);
      while (!notes->isOver) reader.ReadOnce();
    });
  }
  Vex2FileManager writer;
  for (int i = 0; i < frames; ++i) {
    if (!commit(writer, path_, i)) ++bad;
  }
  notes->isOver = true;
  for (std::thread& thread : threads) thread.join();
  const int found = bad + notes->bad + notes->refused;
  EXPECT_EQ(found, 0);
  ReportSweep({kTwoPrograms,
               "threads with a manager each, at documents of their own and a shared one",
               2 * kThreads + 1, static_cast<std::uint64_t>(notes->reads),
               static_cast<std::uint64_t>(found)});
}

}  // namespace
}  // namespace vex2::test
