#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "lab/model/Document.h"
#include "lab/model/RunReader.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RunReaderTest : public TempFolderTest {
 protected:
  /// The error that opening the path throws.
  Error errorOf(const std::string& path) {
    try {
      const RunReader run(path);
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << path << " was read";
    return {ErrorCode::kDocument, ""};
  }

  std::string path_ = folder_ / "run.vex";
};

TEST_F(RunReaderTest, ReturnsWhatTheRecorderWrote) {
  const RunPlan plan = SmallRun();
  Record(plan, path_);
  const RunReader run(path_);
  EXPECT_EQ(run.Path(), path_);
  EXPECT_TRUE(run.IsWhole());
  EXPECT_THAT(run.Faults(), IsEmpty());
  EXPECT_EQ(run.State(), RunState::kDone);
  EXPECT_EQ(run.StatusCode(), "DONE");
  EXPECT_EQ(run.AssayCode(), "AbsQ");
  EXPECT_EQ(run.KindCode(), "Kest");
  EXPECT_FALSE(run.IsStudy());
  EXPECT_THAT(run.PlateNames(), IsEmpty());

  const Plate& plate = run.Plate();
  EXPECT_EQ(plate.rows, 8U);
  EXPECT_EQ(plate.columns, 12U);
  EXPECT_EQ(plate.type, "p9C");
  ASSERT_EQ(plate.wells.size(), 96U);
  EXPECT_EQ(plate.wells[0].name, "A1");
  EXPECT_EQ(plate.wells[95].name, "H12");
  for (const WellRow& row : plan.contents.rows) {
    const Well* well = plate.Find(row.well);
    ASSERT_NE(well, nullptr);
    EXPECT_EQ(plate.Find(well->name), well);
    EXPECT_EQ(well->sample, row.sample);
    ASSERT_EQ(well->targets.size(), 1U);
    EXPECT_EQ(well->targets[0].detector, row.target);
    EXPECT_EQ(well->targets[0].task, row.task);
    EXPECT_EQ(well->targets[0].reporter, row.reporter);
    EXPECT_EQ(well->targets[0].quantity.has_value(), row.HasQuantity());
    EXPECT_EQ(well->targets[0].quantity.value_or(row.quantity), row.quantity);
  }
  EXPECT_EQ(plate.Find(std::uint16_t{97}), nullptr);
  EXPECT_EQ(plate.Find("I1"), nullptr);

  EXPECT_THAT(run.Program()->text, testing::Optional(HasSubstr("cycle")));
  EXPECT_FALSE(run.Detectors().empty());
  EXPECT_FALSE(run.RequiredDyes().empty());
  EXPECT_EQ(run.Calibration().pureDyes->entries.size(), 4U);
  EXPECT_EQ(run.Calibration().background->entries[0].name, "background");
  EXPECT_EQ(run.FrameCount(), plan.frames.size());
  EXPECT_EQ(run.Wells(), plan.wells);
}

TEST_F(RunReaderTest, GivesTheTextsOfDocumentsInUtf8) {
  Vex2FileManager document;
  Vex2GlobalComplex settings;
  settings.SetComment("caf\xE9", 4);
  ASSERT_EQ(document.ReplaceGlobalComplexComp(&settings), 0);
  ASSERT_TRUE(document.AppendRequiredDyenfo("gr\xFCn"));
  Vex2Detector detector;
  detector.name = "T\xE4st";
  ASSERT_EQ(document.AppendDetectorInfo(&detector), 0);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const RunReader run(path_);
  EXPECT_THAT(run.Settings(), testing::Contains(SettingValue{"comment", "caf\xC3\xA9"}));
  EXPECT_THAT(run.RequiredDyes(), ElementsAre("gr\xC3\xBCn"));
  EXPECT_EQ(run.Detectors().at(0).name, "T\xC3\xA4st");
}

TEST_F(RunReaderTest, KnowsThePositionOfEachRecordedFrame) {
  const RunPlan plan = SmallRun(3, 2);
  Record(plan, path_);
  const std::vector<FramePosition> axis = RunReader(path_).Axis();
  ASSERT_EQ(axis.size(), plan.frames.size());
  for (std::size_t frame = 0; frame < axis.size(); ++frame) {
    const RunReading& first = plan.frames[frame][0];
    EXPECT_EQ(axis[frame].stage, first.melting ? Stage::kMelting : Stage::kAmplification);
    EXPECT_EQ(axis[frame].cycle, first.cycle);
    EXPECT_EQ(axis[frame].temperature, first.temperature / 100.0);
    EXPECT_EQ(axis[frame].time, first.time / 1000.0);
  }
}

TEST_F(RunReaderTest, ReturnsNoPositionsOfForeignReadings) {
  ForeignRun foreign(path_, 4);
  foreign.Begin();
  foreign.Append();
  foreign.Append();
  const RunReader run(path_);
  EXPECT_THAT(run.Axis(), ElementsAre(FramePosition{}, FramePosition{}));
  EXPECT_EQ(run.Frame(1).position, FramePosition{});
  EXPECT_THAT(run.Frame(1).wells[0].fluorescence, IsEmpty());
  EXPECT_FALSE(run.Blocks()[0].isRecorded);
  EXPECT_EQ(run.Blocks()[0].start, std::nullopt);
}

TEST_F(RunReaderTest, TakesThePositionFromTheFirstWellThatHasOne) {
  Record(SmallRun(2, 0), path_);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  const Vex2WellRecord empty;
  ASSERT_TRUE(document.SetAcqDataWellRecord(&empty, 1, 1, DataRAWa));
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const RunReader run(path_);
  EXPECT_EQ(run.Axis()[1].cycle, 2);
  EXPECT_EQ(run.Frame(1).position, run.Axis()[1]);
  EXPECT_EQ(run.Readings().Axis(), run.Axis());
}

TEST_F(RunReaderTest, ReadsFramesOfFinishedDocuments) {
  Record(SmallRun(), path_);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  // After a save, the offset in the header leads just past the data block.
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  ExpectReadings(RunReader(path_), document);
}

TEST_F(RunReaderTest, SeesTheFramesThatWereCommittedWhenItWasMade) {
  ForeignRun run(path_, 5);
  run.Begin();
  EXPECT_EQ(RunReader(path_).FrameCount(), 0U);
  run.Append();
  const RunReader early(path_);
  EXPECT_EQ(early.FrameCount(), 1U);
  run.Append();
  run.Append();
  EXPECT_EQ(early.FrameCount(), 1U);
  EXPECT_EQ(early.Readings().FrameCount(), 1U);
  ExpectFrame(early.Frame(0), *BlockOf(run.Document(), "RAWa"));
  ExpectReadings(RunReader(path_), run.Document());
  EXPECT_EQ(RunReader(path_).FrameCount(), 3U);
}

TEST_F(RunReaderTest, LeavesOutUncommittedBytes) {
  ForeignRun run(path_, 5);
  run.Begin();
  run.Append();
  Bytes bytes = ReadBytes(path_);
  const std::uint64_t committed = bytes.size();
  bytes.resize(bytes.size() + 200, 7);
  WriteBytes(path_, bytes);
  const RunReader reader(path_);
  ExpectReadings(reader, run.Document());
  ASSERT_EQ(reader.Faults().size(), 1U);
  EXPECT_EQ(reader.Faults()[0].offset, committed);
  EXPECT_THAT(reader.Faults()[0].what, HasSubstr("200 bytes of a frame that was not committed"));
}

TEST_F(RunReaderTest, RefusesFramesOfADocumentThatWasReplaced) {
  Record(SmallRun(), path_);
  const RunReader run(path_);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  try {
    static_cast<void>(run.Frame(0));
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Code(), ErrorCode::kDocument);
    EXPECT_THAT(error.what(), HasSubstr("changed it since it was read; open it again"));
  }
  EXPECT_THROW(static_cast<void>(run.Readings()), Error);
  EXPECT_EQ(run.FrameCount(), 5U);
}

TEST_F(RunReaderTest, RefusesAFrameBeyondTheCount) {
  Record(SmallRun(1, 0), path_);
  const RunReader run(path_);
  for (const std::string_view block : {"RAWa", "REPr"}) {
    try {
      static_cast<void>(run.Frame(1, block));
      FAIL();
    } catch (const Error& error) {
      EXPECT_EQ(error.Code(), ErrorCode::kNoSuchFrame);
      EXPECT_EQ(error.File(), path_);
    }
  }
  EXPECT_THAT(run.Axis("REPr"), IsEmpty());
  EXPECT_THAT(run.Wells("REPr"), IsEmpty());
  EXPECT_EQ(run.Readings("REPr").FrameCount(), 0U);
}

TEST_F(RunReaderTest, ReportsWhyADocumentCannotBeOpened) {
  EXPECT_EQ(errorOf(folder_ / "none.vex").Code(), ErrorCode::kNoSuchFile);
  EXPECT_EQ(errorOf(folder_ / "none.vex").SystemErrorNumber(), ENOENT);
  EXPECT_EQ(errorOf("").Code(), ErrorCode::kUsage);
  EXPECT_EQ(errorOf(folder_.Path()).Code(), ErrorCode::kNotAFile);
  WriteBytes(path_, ToBytes("well,sample\n"));
  EXPECT_EQ(errorOf(path_).Code(), ErrorCode::kNoDocument);
  EXPECT_EQ(errorOf(path_).Offset(), 0U);
  EXPECT_EQ(errorOf(path_).File(), path_);
}

TEST_F(RunReaderTest, ReadsADocumentWithoutAnything) {
  Vex2FileManager document;
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const RunReader run(path_);
  EXPECT_TRUE(run.IsWhole());
  EXPECT_EQ(run.State(), RunState::kNotStarted);
  EXPECT_EQ(run.Plate().rows, 8U);
  EXPECT_THAT(run.Plate().wells, IsEmpty());
  EXPECT_EQ(run.Program(), std::nullopt);
  EXPECT_TRUE(run.Calibration().IsEmpty());
  EXPECT_THAT(run.Blocks(), IsEmpty());
  EXPECT_THAT(run.Axis(), IsEmpty());
  EXPECT_EQ(run.Readings().Values().size(), 0U);
}

TEST_F(RunReaderTest, ReadsABlockWithoutFrames) {
  WriteBytes(path_, Join({StoredHeader(), StoredBlock("RAWa", 3, 0)}));
  const RunReader run(path_);
  EXPECT_TRUE(run.IsWhole());
  EXPECT_THAT(run.Wells(), ElementsAre(1, 2, 3));
  EXPECT_EQ(run.FrameCount(), 0U);
  EXPECT_EQ(run.Readings().WellCount(), 3U);
}

TEST_F(RunReaderTest, ReadsAsManyWellsAsABlockCanHave) {
  const Bytes block = StoredBlock("RAWa", 65535, 2);
  WriteBytes(path_, Join({StoredHeader(), block}));
  const RunReader run(path_);
  ASSERT_EQ(run.Wells().size(), 65535U);
  EXPECT_EQ(run.Wells().back(), 65535);
  const Readings readings = run.Readings();
  ASSERT_EQ(readings.FrameCount(), 2U);
  const Vex2WellRecord last = MakeRecord(1, 65534);
  EXPECT_TRUE(std::equal(last.data, last.data + 32, readings.Values(1, 65534).begin()));
  const Frame frame = run.Frame(1);
  EXPECT_TRUE(std::equal(last.leading, last.leading + 8, frame.wells.back().leading.begin()));
}

TEST_F(RunReaderTest, ADocumentReadWithoutFramesIsNotSaved) {
  Record(SmallRun(), path_);
  const Bytes before = ReadBytes(path_);
  Document document(path_, Document::Purpose::kReadHeads);
  EXPECT_NE(document.Content().SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(RunReaderTest, CanBeCopiedAndOutlivesTheOriginal) {
  Record(SmallRun(), path_);
  auto original = std::make_unique<RunReader>(path_);
  const RunReader copy = *original;
  const Plate& plate = copy.Plate();
  original.reset();
  EXPECT_EQ(plate.wells.size(), 96U);
  EXPECT_EQ(copy.Readings().FrameCount(), 5U);
}

TEST_F(RunReaderTest, IsReadByThreadsAtTheSameTime) {
  Record(SmallRun(), path_);
  const RunReader run(path_);
  const Readings expected = run.Readings();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int pass = 0; pass < 5; ++pass) {
        const Readings readings = run.Readings();
        EXPECT_TRUE(std::ranges::equal(readings.Values(), expected.Values()));
        EXPECT_EQ(run.Axis(), expected.Axis());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// --- Studies ---

class StudyReaderTest : public RunReaderTest {
 protected:
  void SetUp() override {
    Record(SmallRun(2, 0), folder_ / "one.vex");
    Record(SmallRun(3, 1), folder_ / "two.vex");
    Vex2FileManager study;
    Vex2HeaderData header = study.GetHeaderData();
    std::copy_n("RQSt", 4, header.assayCode);
    study.SetHeaderData(header);
    for (const char* name : {"one.vex", "two.vex"}) {
      Vex2FileManager plate;
      const std::string path = folder_ / name;
      ASSERT_EQ(plate.ReadFromFile(path.c_str()), 0);
      ASSERT_TRUE(study.AddRQPlate(&plate, "Mar 05, 2003 02:07 PM"));
    }
    ASSERT_EQ(study.SaveToFile(path_.c_str()), 0);
  }
};

TEST_F(StudyReaderTest, PlatesHaveTheSameOperations) {
  const RunReader study(path_);
  EXPECT_TRUE(study.IsStudy());
  EXPECT_EQ(study.FrameCount(), 0U);
  ASSERT_THAT(study.PlateNames(), ElementsAre("one", "two"));
  for (const std::string& name : study.PlateNames()) {
    const RunReader alone(folder_ / (name + ".vex"));
    const RunReader plate = study.Plate(name);
    EXPECT_TRUE(plate.IsWhole());
    EXPECT_FALSE(plate.IsStudy());
    EXPECT_EQ(plate.Plate(), alone.Plate());
    EXPECT_EQ(plate.Detectors(), alone.Detectors());
    EXPECT_EQ(plate.RequiredDyes(), alone.RequiredDyes());
    EXPECT_EQ(plate.Settings(), alone.Settings());
    EXPECT_EQ(plate.Program(), alone.Program());
    EXPECT_EQ(plate.Axis(), alone.Axis());
    EXPECT_TRUE(std::ranges::equal(plate.Readings().Values(), alone.Readings().Values()));
    EXPECT_EQ(plate.Frame(1).wells[7].values, alone.Frame(1).wells[7].values);
  }
}

TEST_F(StudyReaderTest, RefusesAPlateThatIsNotThere) {
  const RunReader study(path_);
  try {
    static_cast<void>(study.Plate("three"));
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Code(), ErrorCode::kNoSuchPlate);
    EXPECT_EQ(error.File(), path_);
  }
}

}  // namespace
