// Reading and writing take time in proportion to the size, whatever it is that makes a document
// large.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>

#include "tests/reliability/FilledDocuments.h"
#include "tests/support/DocumentBytes.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {
namespace {

constexpr double kMostGrowth = 2.3;       // for twice the size
constexpr double kClockSeconds = 0.0002;  // shorter times tell nothing
constexpr int kMostTries = 10;

// The processor's time of this process: what others do on the machine hardly counts.
double processorSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// The system's files without waiting for the disk, which is not what is measured.
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

/// What makes a document large, and how to make one.
struct Dimension {
  const char* name;
  int smallest;
  std::function<void(Vex2FileManager& document, int size)> fill = {};
  std::function<std::string(int size)> records = {};  ///< instead: the bytes behind the header
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

// The least time that an operation took, of a few tries at least and of as many as fit in a moment.
double secondsOf(const std::function<void()>& operation) {
  double least = 1e9;
  double sum = 0;
  for (int i = 0; i < 3 || (i < 40 && sum < 0.02); ++i) {
    const double begun = processorSeconds();
    operation();
    const double time = processorSeconds() - begun;
    least = std::min(least, time);
    sum += time;
  }
  return least;
}

/// What two operations take at one size.
struct Times {
  double read = 0;
  double write = 0;
};

bool isLinear(double half, double whole) {
  return whole <= kMostGrowth * half + kClockSeconds;
}

bool isLinear(const Times& half, const Times& whole) {
  return isLinear(half.read, whole.read) && isLinear(half.write, whole.write);
}

// Doubles the size so many times; the steps at which time grew by more than it may. On a machine
// that is busy it does so by chance: then both sizes are measured again, one right after the other.
std::uint64_t countBadSteps(int smallest, int doublings, const std::function<Times(int)>& measure) {
  std::uint64_t bad = 0;
  Times half = measure(smallest);
  for (int step = 1; step <= doublings; ++step) {
    const int size = smallest << step;
    Times whole = measure(size);
    for (int i = 0; i < kMostTries && !isLinear(half, whole); ++i) {
      half = measure(size / 2);
      whole = measure(size);
    }
    if (!isLinear(half, whole)) {
      ++bad;
      std::printf("from %d to %d: reading %.6f to %.6f s, writing %.6f to %.6f s\n", size / 2, size,
                  half.read, whole.read, half.write, whole.write);
    }
    half = whole;
  }
  return bad;
}

void report(const std::string& what, int doublings, std::uint64_t bad) {
  const auto steps = static_cast<std::uint64_t>(doublings);
  ReportSweep({"large input", "reading and writing twice as much: " + what, steps, 2 * steps, bad});
}

class LargeDocument : public TempFolderTest {
 protected:
  SilentHost host_;
  UnsyncedFiles files_;
  std::string path_ = folder_ / "large.vex";
  std::string saved_ = folder_ / "saved.vex";
};

class LargeInput : public LargeDocument, public testing::WithParamInterface<Dimension> {
 protected:
  Times measure(int size) {
    Vex2FileManager original;
    if (GetParam().records) {
      WriteBytes(path_, DocumentOf(GetParam().records(size)));
      EXPECT_EQ(original.ReadFromFile(path_.c_str()), kSuccess);
    } else {
      GetParam().fill(original, size);
      EXPECT_EQ(original.SaveToFile(path_.c_str()), kSuccess);
    }
    const auto read = [this] {
      Vex2FileManager document;
      ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
    };
    const auto save = [&] { ASSERT_EQ(original.SaveToFile(saved_.c_str()), kSuccess); };
    return {secondsOf(read), secondsOf(save)};
  }
};

TEST_P(LargeInput, TakesTimeInProportionToItsSize) {
  const int doublings = InFullSweeps(8, 3);
  const auto bad =
      countBadSteps(GetParam().smallest, doublings, [this](int size) { return measure(size); });
  EXPECT_EQ(bad, 0U);
  report(GetParam().name, doublings, bad);
}

class LongRun : public LargeDocument {
 protected:
  // Commits so many frames, and reads each of them alone.
  Times measureRun(int frames) {
    const auto record = [&] {
      Vex2FileManager manager;
      ASSERT_EQ(manager.SaveToFile(path_.c_str()), kSuccess);
      for (int i = 0; i < frames; ++i) {
        const Vex2FrameData frame = MakeFrame(24, i);
        ASSERT_EQ(manager.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa), kSuccess);
      }
    };
    const auto read = [&] {
      Vex2FileManager manager;
      Vex2FrameData frame;
      for (int i = 0; i < frames; ++i) {
        ASSERT_EQ(manager.ReadDataFrame(path_.c_str(), i, &frame, DataRAWa), kSuccess);
      }
    };
    Times times;
    times.write = secondsOf(record);
    times.read = secondsOf(read);
    return times;
  }
};

TEST_F(LongRun, TakesTheSameTimeForEachFrame) {
  const int doublings = InFullSweeps(8, 3);
  const auto bad = countBadSteps(8, doublings, [this](int frames) { return measureRun(frames); });
  EXPECT_EQ(bad, 0U);
  report("commits, and frames read alone", doublings, bad);
}

TEST(LargeInputMeasure, NoticesWhatGrowsWithTheSquareOfTheSize) {
  const auto square = [](int size) {
    volatile int last = 0;
    const double time = secondsOf([&] {
      for (int i = 0; i < size * size; ++i) last = i;
    });
    return Times{time, time};
  };
  EXPECT_GT(countBadSteps(1000, 1, square), 0U);
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
