// Tests that the time of reading and writing is proportional to the size, whatever makes a document
// large.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <functional>

#include "tests/reliability/FilledDocuments.h"
#include "tests/reliability/ForkedProcess.h"
#include "tests/support/DocumentBytes.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {
namespace {

constexpr double kMostGrowth = 2.3;      // the most that the time may grow when the size doubles
constexpr double kEnoughSeconds = 0.05;  // the measurement may end then if the growth is allowed
constexpr std::size_t kFewestPairs = 3;
constexpr std::size_t kMostPairs = 41;

// The processor time of this process, so that other programs on the machine hardly matter.
double processorSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Files without syncs, because the time of the disk is not to be measured.
class UnsyncedFiles : public FileSystem {
 public:
  UnsyncedFiles() : before_(SetFileSystem(this)) {}
  ~UnsyncedFiles() override { SetFileSystem(before_); }
  UnsyncedFiles(const UnsyncedFiles&) = delete;
  UnsyncedFiles& operator=(const UnsyncedFiles&) = delete;

  int SyncData(int /*file*/) override { return 0; }
  int SyncAll(int /*file*/) override { return 0; }

 private:
  FileSystem* before_;
};

/// A kind of content that makes a document large, and how to make such a document.
struct Dimension {
  const char* name;
  int smallest;
  std::function<void(Vex2FileManager& document, int size)> fill = {};
  std::function<std::string(int size)> records = {};  ///< used instead: the bytes after the header
};

void PrintTo(const Dimension& dimension, std::ostream* out) {
  *out << dimension.name;
}

std::string repeated(const std::string& bytes, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += bytes;
  return all;
}

std::string unknownRecords(int size) {
  return repeated(Record("what", "unknown"), size);
}

std::string emptyUnknownRecords(int size) {
  return repeated(Record("what", ""), size);
}

std::string knownRecords(int size) {
  return repeated(Record("SVOL", BigEndian(25, 2)), size);
}

std::string deepLists(int size) {
  return repeated(NestedLists("DETL", 60), size);
}

std::string wideList(int size) {
  return ListRecord("CELS", size, repeated(ListRecord("CELL", 0, ""), size));
}

/// Does the measured work with `documents` documents of `size`. Returns the time in seconds.
using Timed = std::function<double(int size, int documents)>;

// Includes the work that the heap defers, because from some size on it does this work in one step.
double secondsOf(const std::function<void()>& operation) {
  const double begun = processorSeconds();
  operation();
  ::malloc_trim(0);
  return processorSeconds() - begun;
}

double middleOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Runs `work` in a child process with an unused heap. In a fragmented heap the work takes up to
// twice as long.
void inItsOwnProcess(const std::function<void()>& work) {
  const auto run = [&] {
    work();
    return testing::Test::HasFailure() ? 1 : 0;
  };
  EXPECT_EQ(EndOfProcess(run), 0);
}

double secondsInItsOwnProcess(const Timed& timed, int size, int documents) {
  SharedNumber<double> seconds;
  inItsOwnProcess([&] { *seconds = timed(size, documents); });
  return *seconds;
}

// Returns the time for `size` divided by the time for half of it. One document is compared with two
// documents of half its size: both need the same memory, so they profit equally from the
// processor's caches. They are measured in turn, so that the load of the machine affects both
// equally. The result is the median of the pairs, because a single pair is not reliable on a busy
// machine.
double growthTo(int size, const Timed& timed) {
  std::vector<double> growths;
  double spent = 0;
  double growth = 0;
  do {
    const double halves = secondsInItsOwnProcess(timed, size / 2, 2);
    const double whole = secondsInItsOwnProcess(timed, size, 1);
    spent += halves + whole;
    growths.push_back(whole / (halves / 2));
    growth = middleOf(growths);
  } while (growths.size() < kFewestPairs ||
           (growths.size() < kMostPairs && (spent < kEnoughSeconds || growth > kMostGrowth)));
  return growth;
}

// Doubles the size `doublings` times. Returns the number of steps at which the time grew too much.
std::uint64_t countBadSteps(int smallest, int doublings, const Timed& read, const Timed& write) {
  std::uint64_t bad = 0;
  for (int step = 1; step <= doublings; ++step) {
    const int size = smallest << step;
    const double reading = growthTo(size, read);
    const double writing = growthTo(size, write);
    if (std::max(reading, writing) <= kMostGrowth) continue;
    ++bad;
    std::printf("from %d to %d: reading takes %.2f, writing %.2f times as long\n", size / 2, size,
                reading, writing);
  }
  return bad;
}

void report(const std::string& what, int doublings, std::uint64_t bad) {
  const auto steps = static_cast<std::uint64_t>(doublings);
  ReportSweep({"large input", "reading and writing twice as much: " + what, steps, 2 * steps, bad});
}

class LargeDocument : public TempFolderTest {
 protected:
  std::string pathOf(const char* name, int number) const {
    return folder_ / (name + std::to_string(number) + ".vex");
  }

  SilentHost host_;
  UnsyncedFiles files_;
};

class LargeInput : public LargeDocument, public testing::WithParamInterface<Dimension> {
 protected:
  void make(int size) const {
    const std::string path = pathOf("large", size);
    if (GetParam().records) {
      WriteBytes(path, DocumentOf(GetParam().records(size)));
    } else {
      Vex2FileManager document;
      GetParam().fill(document, size);
      EXPECT_EQ(document.SaveToFile(path.c_str()), kSuccess);
    }
  }

  void read(std::vector<Vex2FileManager>& documents, int size) const {
    for (auto& document : documents) {
      ASSERT_EQ(document.ReadFromFile(pathOf("large", size).c_str()), kSuccess);
    }
  }

  void save(std::vector<Vex2FileManager>& documents) const {
    int number = 0;
    for (auto& document : documents) {
      ASSERT_EQ(document.SaveToFile(pathOf("saved", ++number).c_str()), kSuccess);
    }
  }
};

TEST_P(LargeInput, TakesTimeInProportionToItsSize) {
  const int doublings = InFullSweeps(8, 3);
  for (int step = 0; step <= doublings; ++step) {
    inItsOwnProcess([&] { make(GetParam().smallest << step); });
  }
  const auto reading = [this](int size, int documents) {
    return secondsOf([&] {
      std::vector<Vex2FileManager> copies(static_cast<std::size_t>(documents));
      read(copies, size);
    });
  };
  const auto saving = [this](int size, int documents) {
    std::vector<Vex2FileManager> copies(static_cast<std::size_t>(documents));
    read(copies, size);
    return secondsOf([&] { save(copies); });
  };
  const auto bad = countBadSteps(GetParam().smallest, doublings, reading, saving);
  EXPECT_EQ(bad, 0U);
  report(GetParam().name, doublings, bad);
}

class LongRun : public LargeDocument {
 protected:
  static void record(Vex2FileManager& manager, const std::string& path, int frames) {
    ASSERT_EQ(manager.SaveToFile(path.c_str()), kSuccess);
    for (int i = 0; i < frames; ++i) {
      const Vex2FrameData frame = MakeFrame(24, i);
      ASSERT_EQ(manager.AppendAcquisitionDataFrame(path.c_str(), &frame, DataRAWa), kSuccess);
    }
  }

  // Reads each frame separately from the file.
  static void readFrames(const std::string& path, int frames) {
    Vex2FileManager manager;
    Vex2FrameData frame;
    for (int i = 0; i < frames; ++i) {
      ASSERT_EQ(manager.ReadDataFrame(path.c_str(), i, &frame, DataRAWa), kSuccess);
    }
  }
};

TEST_F(LongRun, TakesTheSameTimeForEachFrame) {
  constexpr int kFewestFrames = 8;
  const int doublings = InFullSweeps(8, 3);
  for (int step = 0; step <= doublings; ++step) {
    const int frames = kFewestFrames << step;
    inItsOwnProcess([&] {
      Vex2FileManager manager;
      record(manager, pathOf("run", frames), frames);
    });
  }
  const auto reading = [this](int frames, int runs) {
    return secondsOf([&] {
      for (int i = 0; i < runs; ++i) readFrames(pathOf("run", frames), frames);
    });
  };
  const auto recording = [this](int frames, int runs) {
    return secondsOf([&] {
      std::vector<Vex2FileManager> managers(static_cast<std::size_t>(runs));
      for (int i = 0; i < runs; ++i) {
        record(managers[static_cast<std::size_t>(i)], pathOf("recorded", i), frames);
      }
    });
  };
  const auto bad = countBadSteps(kFewestFrames, doublings, reading, recording);
  EXPECT_EQ(bad, 0U);
  report("commits, and frames read alone", doublings, bad);
}

TEST(LargeInputMeasure, NoticesWhatGrowsWithTheSquareOfTheSize) {
  const auto square = [](int size, int documents) {
    return secondsOf([=] {
      const volatile int one = 1;
      int count = 0;
      while (count < documents * size * size) count += one;
    });
  };
  EXPECT_EQ(countBadSteps(600, 1, square, square), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Of, LargeInput,
    testing::Values(Dimension{"frames", 64, FillFrames}, Dimension{"wells", 96, FillWells},
                    Dimension{"detectors of a well", 128, FillDetectorsOfAWell},
                    Dimension{"detectors", 100, FillDetectors}, Dimension{"dyes", 200, FillDyes},
                    Dimension{"calibration spectra", 100, FillCalibration},
                    Dimension{"plates of a study", 3, FillStudy},
                    Dimension{"bytes of the program", 20'000, FillProgram},
                    Dimension{"unknown records", 1000, {}, unknownRecords},
                    Dimension{"empty unknown records", 1000, {}, emptyUnknownRecords},
                    Dimension{"records", 500, {}, knownRecords},
                    Dimension{"lists in lists", 10, {}, deepLists},
                    Dimension{"records of a list", 200, {}, wideList}),
    [](const auto& dimension) {
      std::string name = dimension.param.name;
      std::replace(name.begin(), name.end(), ' ', '_');
      return name;
    });

}  // namespace
}  // namespace vex2::test
