// Tests how much reading costs, and the results for damaged documents and failing systems.

#include <gmock/gmock.h>

#include <cerrno>
#include <numeric>

#include "lab/Text.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;

constexpr std::uint64_t kReadAhead = CFile::kBufferSize;

/// The calls that were made to the file system.
struct Cost {
  int calls = 0;
  std::uint64_t bytes = 0;  ///< bytes that were read
};

Cost costOf(const FaultyFileSystem& files) {
  Cost cost{files.CallCount(), 0};
  for (const FileOperation& operation : files.Log()) {
    if (operation.call == FileCall::read && operation.result > 0) {
      cost.bytes += static_cast<std::uint64_t>(operation.result);
    }
  }
  return cost;
}

/// A data block of 96 wells with `frames` frames of zeros.
Bytes emptyFrames(int frames) {
  Bytes block = StoredBlock("RAWa", 96, 0);
  const std::size_t size = 96 * 80 * static_cast<std::size_t>(frames);
  SetLongAt(block, 4, LongAt(block, 4) + size);
  block.resize(block.size() + size);
  return block;
}

class RunReaderCost : public TempFolderTest {
 protected:
  /// Writes a document with `frames` frames of 96 wells and with records before and after them.
  /// Returns its path.
  std::string documentOf(int frames) {
    const RunPlan plan = SmallRun(1, 0);
    Vex2FileManager document;
    StorePlan(document, plan);
    const std::string front = folder_ / "front.vex";
    EXPECT_EQ(document.SaveToFile(front.c_str()), 0);
    Vex2FileManager behind;
    EXPECT_EQ(behind.SetCalibrator("behind"), 0);
    const std::string back = folder_ / "back.vex";
    EXPECT_EQ(behind.SaveToFile(back.c_str()), 0);
    const Bytes end = ReadBytes(back);
    const std::string path = folder_ / (std::to_string(frames) + ".vex");
    WriteBytes(path,
               Join({ReadBytes(front), emptyFrames(frames), Slice(end, 1024, end.size() - 1024)}));
    return path;
  }
  /// The cost of the constructor for a document with `frames` frames.
  Cost openingOf(int frames) {
    const std::string path = documentOf(frames);
    FaultyFileSystem files;
    const RunReader run(path);
    const Cost cost = costOf(files);
    EXPECT_EQ(run.FrameCount(), static_cast<std::uint64_t>(frames));
    EXPECT_TRUE(run.IsWhole());
    return cost;
  }
};

TEST_F(RunReaderCost, OfOpeningDoesNotDependOnTheNumberOfFrames) {
  const Cost few = openingOf(60);
  const Cost many = openingOf(400);
  const Cost most = openingOf(2000);
  EXPECT_EQ(few.calls, many.calls);
  EXPECT_EQ(few.calls, most.calls);
  EXPECT_EQ(few.bytes, many.bytes);
  EXPECT_EQ(few.bytes, most.bytes);
}

TEST_F(RunReaderCost, OfOpeningIsThatOfAShortRunAndOneReadAhead) {
  const Cost two = openingOf(2);
  const Cost many = openingOf(400);
  EXPECT_LE(many.bytes, two.bytes + 2 * kReadAhead);
  EXPECT_LE(many.calls, two.calls + 4);
}

TEST_F(RunReaderCost, OfAFrameIsThatOfTheHeadAndTheFrame) {
  const std::string path = documentOf(400);
  const RunReader run(path);
  FaultyFileSystem files;
  static_cast<void>(run.Frame(399));
  constexpr std::uint64_t kFrame = 96 * 80;
  EXPECT_LE(costOf(files).bytes, 2 * 16 * 1024 + kFrame);
}

TEST_F(RunReaderCost, OfTheAxisOfForeignReadingsIsNothing) {
  const std::string path = folder_ / "foreign.vex";
  WriteBytes(path, Join({StoredHeader(), emptyFrames(400)}));
  const RunReader run(path);
  FaultyFileSystem files;
  EXPECT_EQ(run.Axis().size(), 400U);
  EXPECT_EQ(files.CallCount(), 0);
}

TEST_F(RunReaderCost, OfTheAxisIsOneReadOfAFrame) {
  RunPlan plan = SimulateRun({.wells = 384, .cycles = 50});
  const std::string path = folder_ / "run.vex";
  Record(plan, path);
  const RunReader run(path);
  FaultyFileSystem files;
  EXPECT_EQ(run.Axis().size(), 50U);
  const auto reads = std::count_if(files.Log().begin(), files.Log().end(),
                                   [](const auto& each) { return each.call == FileCall::read; });
  EXPECT_LE(reads, 51);
  EXPECT_LE(costOf(files).bytes, 51U * 16 * 1024);
}

TEST_F(RunReaderCost, OfAllReadingsIsOnePass) {
  const std::string path = documentOf(400);
  const RunReader run(path);
  FaultyFileSystem files;
  static_cast<void>(run.Readings());
  EXPECT_LE(costOf(files).bytes, std::filesystem::file_size(path));
}

// --- Damage ---

class DamagedRunTest : public TempFolderTest {
 protected:
  /// Reads everything that can be read of the document. Returns whether it is whole.
  bool readAll(const std::string& path) {
    const RunReader run(path);
    for (const FileFault& fault : run.Faults()) {
      EXPECT_FALSE(fault.what.empty());
      EXPECT_LE(fault.offset, std::filesystem::file_size(path));
    }
    readBlocks(run);
    for (const std::string& name : run.PlateNames()) readBlocks(run.Plate(name));
    return run.IsWhole();
  }
  void readBlocks(const RunReader& run) {
    for (const BlockInfo& block : run.Blocks()) {
      EXPECT_EQ(run.Readings(block.tag).FrameCount(), run.FrameCount(block.tag));
      EXPECT_EQ(run.Axis(block.tag).size(), run.FrameCount(block.tag));
      if (run.FrameCount(block.tag) > 0) static_cast<void>(run.Frame(0, block.tag));
    }
  }

  std::string path_ = folder_ / "damaged.vex";
};

TEST_F(DamagedRunTest, CutAnywhereIsReadAsFarAsItGoes) {
  Vex2FileManager document;
  StorePlan(document, SmallRun(1, 0));
  const std::string front = folder_ / "front.vex";
  ASSERT_EQ(document.SaveToFile(front.c_str()), 0);
  const Bytes whole = Join({ReadBytes(front), StoredBlock("RAWa", 3, 2)});
  for (std::size_t size = 4; size < whole.size(); size += size < 100 ? 1 : 23) {
    WriteBytes(path_, Slice(whole, 0, size));
    Vex2FileManager reference;
    ASSERT_EQ(reference.ReadFromFile(path_.c_str()), 0);
    EXPECT_EQ(readAll(path_), reference.IsWhole()) << size;
    const RunReader run(path_);
    ExpectReadings(run, reference);
    EXPECT_EQ(run.Blocks().size(), reference.GetDataFrameCount(DataRAWa) > 0 ? 1U : 0U);
  }
}

TEST_F(DamagedRunTest, AnyChangedByteIsHandled) {
  Vex2FileManager document;
  StorePlan(document, SmallRun(1, 0));
  const std::string front = folder_ / "front.vex";
  ASSERT_EQ(document.SaveToFile(front.c_str()), 0);
  const Bytes whole = Join({ReadBytes(front), StoredBlock("RAWa", 3, 2)});
  for (std::size_t at = 4; at < whole.size(); at += at < 80 ? 1 : 37) {
    Bytes bytes = whole;
    bytes[at] ^= 0xFF;
    WriteBytes(path_, bytes);
    Vex2FileManager reference;
    ASSERT_EQ(reference.ReadFromFile(path_.c_str()), 0);
    EXPECT_TRUE(reference.IsWhole() || !readAll(path_)) << at;
  }
}

TEST_F(DamagedRunTest, FaultsTellWhereAndWhy) {
  const Bytes whole = Join({StoredHeader(), StoredBlock("RAWa", 3, 2)});
  WriteBytes(path_, Slice(whole, 0, whole.size() - 1));
  const RunReader run(path_);
  ASSERT_EQ(run.Faults().size(), 1U);
  EXPECT_EQ(run.Faults()[0].offset, 1024U);
  EXPECT_EQ(run.Faults()[0].what, "the record \"RAWa\" is cut short: 1 of 2 frames are there");
}

TEST_F(DamagedRunTest, ABlockThatShrankSinceIsAnError) {
  const Bytes whole = Join({StoredHeader(), StoredBlock("RAWa", 3, 2)});
  WriteBytes(path_, whole);
  const RunReader run(path_);
  std::filesystem::resize_file(path_, whole.size() - 1);
  EXPECT_EQ(run.Frame(0).wells.size(), 3U);
  EXPECT_THROW(static_cast<void>(run.Frame(1)), Error);
  EXPECT_THAT(ErrorOf([&] { static_cast<void>(run.Readings()); }).what(),
              testing::HasSubstr("the readings are cut short"));
}

class RefusedRunTest : public DamagedRunTest {};

TEST_F(RefusedRunTest, OnlyErrorsLeaveTheReader) {
  Record(SmallRun(1, 0), path_);
  int refused = 0;
  for (int call = 0;; ++call) {
    FaultyFileSystem files;
    files.FailCall(call, EIO);
    try {
      static_cast<void>(readAll(path_));
    } catch (const Error& error) {
      ++refused;
      EXPECT_EQ(error.File(), path_);
      EXPECT_EQ(error.SystemErrorNumber(), EIO) << error.what();
      EXPECT_EQ(error.Code(), ErrorCode::kSystem);
    }
    if (!files.HasFailed()) break;
  }
  EXPECT_GT(refused, 5);
}

TEST_F(RefusedRunTest, FailedReadReportsItsOffset) {
  Record(SmallRun(1, 0), path_);
  const RunReader run(path_);
  FaultyFileSystem files;
  files.FailKind(FileCall::read, EIO);
  try {
    static_cast<void>(run.Frame(0));
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Offset(), run.Blocks()[0].offset);
    EXPECT_EQ(error.SystemErrorNumber(), EIO);
  }
}

// --- Every sample document ---

class SampleRunTest : public SampleDataTest {
 protected:
  void expectSame(const RunReader& run, const Vex2FileManager& document) {
    // If the file cuts off the body of an unknown record in a list, the manager keeps only the
    // record's head and still reports the document as whole.
    const bool lacksBody =
        std::any_of(run.Faults().begin(), run.Faults().end(), [](const FileFault& fault) {
          return fault.what.find("within another, of no known kind") != std::string::npos;
        });
    EXPECT_EQ(run.IsWhole(), document.IsWhole() && !lacksBody);
    EXPECT_EQ(run.IsStudy(), document.IsRQS());
    EXPECT_EQ(run.Plate().rows * run.Plate().columns,
              static_cast<unsigned>(document.GetPlateSize()));
    expectWells(run, document);
    expectDetectors(run, document);
    expectProgram(run, document);
    expectBlocks(run, document);
    ExpectReadings(run, document);
  }
  void expectWells(const RunReader& run, const Vex2FileManager& document) {
    Vex2PlateSetup setup;
    static_cast<void>(document.GetPlateSetupInfo(&setup));
    ASSERT_EQ(run.Plate().wells.size(), setup.count);
    for (unsigned i = 0; i < setup.count; ++i) {
      const Vex2WellSetup& cell = setup.cells[i];
      const unsigned number = cell.coord1 * run.Plate().columns + cell.coord2 + 1U;
      const Well* well = run.Plate().Find(static_cast<std::uint16_t>(number));
      ASSERT_NE(well, nullptr);
      EXPECT_EQ(well->sample, ToUtf8({cell.name, static_cast<std::size_t>(cell.nameLength)}));
      ASSERT_EQ(well->targets.size(), static_cast<std::size_t>(cell.detectors.GetCount()));
    }
  }
  void expectDetectors(const RunReader& run, const Vex2FileManager& document) {
    int count = 0;
    static_cast<void>(document.GetNumberOfDetectors(count));
    ASSERT_EQ(run.Detectors().size(), static_cast<std::size_t>(count));
    Vex2Detector* list = nullptr;
    ASSERT_TRUE(count == 0 || document.GetDetectorListInfo(list) == 0);
    const std::unique_ptr<Vex2Detector[]> owner(list);
    for (int i = 0; i < count; ++i) {
      const Detector& detector = run.Detectors()[static_cast<std::size_t>(i)];
      EXPECT_EQ(detector.name, ToUtf8(list[i].name.View()));
      EXPECT_EQ(detector.reporterDye, ToUtf8(list[i].reporterDye.View()));
      EXPECT_EQ(detector.threshold, list[i].threshold);
      EXPECT_EQ(detector.baselineEnd, list[i].baselineEnd);
    }
  }
  void expectProgram(const RunReader& run, const Vex2FileManager& document) {
    ThermocycleProgram program;
    const bool hasProgram = document.GetThermocycleProgramInfo(&program) == 0;
    ASSERT_EQ(run.Program().has_value(), hasProgram);
    if (!hasProgram) return;
    const Bytes bytes(program.data, program.data + program.length);
    EXPECT_EQ(run.Program()->bytes, bytes);
  }
  void expectBlocks(const RunReader& run, const Vex2FileManager& document) {
    for (const BlockInfo& info : run.Blocks()) {
      const AcquisitionDataComp* block = BlockOf(document, info.tag);
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(info.version, block->GetVersion());
      EXPECT_TRUE(std::equal(info.storedStart.begin(), info.storedStart.end(),
                             block->GetStartTime().fields));
      EXPECT_TRUE(
          std::equal(info.storedEnd.begin(), info.storedEnd.end(), block->GetEndTime().fields));
    }
  }
};

TEST_F(SampleRunTest, EqualsWhatTheManagerSays) {
  std::size_t documents = 0;
  for (const auto& path : SampleFiles("golden", ".vex")) {
    SCOPED_TRACE(path);
    Vex2FileManager document;
    ASSERT_EQ(document.ReadFromFile(path.c_str()), 0);
    const RunReader run(path);
    expectSame(run, document);
    const CMultiPlateComp* plates = nullptr;
    for (int i = 0; i < document.GetAllComponentCount() && plates == nullptr; ++i) {
      plates = dynamic_cast<const CMultiPlateComp*>(document.GetComponent(i));
    }
    const std::vector<std::string> names = run.PlateNames();
    ASSERT_EQ(names.size(), static_cast<std::size_t>(plates ? plates->GetChildCount() : 0));
    for (std::size_t i = 0; i < names.size(); ++i) {
      expectSame(run.Plate(names[i]), *plates->GetPlateAt(static_cast<int>(i))->GetPlate());
    }
    ++documents;
  }
  EXPECT_GE(documents, 14U);
}

}  // namespace
