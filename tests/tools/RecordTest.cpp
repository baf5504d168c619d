// Tests what a recording stores in its document, and what it refuses to record.

#include <gmock/gmock.h>

#include <limits>

#include "tests/tools/RecordFixture.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::uint16_t firstReading(const Vex2FileManager& document, int frame, int well) {
  Vex2WellRecord record;
  EXPECT_TRUE(document.GetAcqDataWellRecord(&record, frame, well, DataRAWa));
  return record.leading[4];
}

TEST_F(RecordTest, HoldsEveryReadingExactly) {
  const CommandResult result = RunVex(Record());
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.output + result.errors, "") << "quiet where there is no terminal";
  ExpectWhole();
}

TEST_F(RecordTest, LeavesNoFileButTheDocument) {
  RunVex(Record());
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
    names.push_back(entry.path().filename());
  }
  EXPECT_THAT(names, testing::ElementsAre("run.vex"));
}

TEST_F(RecordTest, HeaderHasThePlateAndTheWellsInUse) {
  RunVex(Record());
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  const Vex2HeaderData& header = document.GetHeaderData();
  EXPECT_EQ(std::string(header.plateTypeCode, 4), "p9C ");
  EXPECT_EQ(header.rows, 8);
  EXPECT_EQ(header.columns, 12);
  EXPECT_EQ(header.usage[0], 15U);
  EXPECT_EQ(header.usage[1], 15U);
  EXPECT_EQ(header.usage[2], 0U);
}

TEST_F(RecordTest, DataBlockIsTheLastRecord) {
  RunVex(Record());
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  CStringList tags;
  document.GetComponentTagList(tags);
  std::vector<std::string> names;
  for (POSITION at = tags.GetHeadPosition(); at != nullptr;) {
    names.emplace_back(tags.GetNext(at).GetString());
  }
  EXPECT_THAT(names, testing::ElementsAre("GLBL", "TPro", "CELS", "DETL", "RqDy", "RAWa"));
}

TEST_F(RecordTest, WellsAreNumberedByRowsFromOne) {
  RunVex(Record());
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  ASSERT_EQ(document.GetWellCount(DataRAWa), static_cast<int>(kWells));
  for (const int well : {1, 2, 3, 4, 13, 14, 15, 16}) {
    EXPECT_EQ(document.GetDataCntInWell(well, DataRAWa), kFrames) << well;
  }
}

TEST_F(RecordTest, OnlyTheFirstMeltingFrameHasTheMarker) {
  RunVex(Record());
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  for (int frame = 0; frame < kFrames; ++frame) {
    EXPECT_EQ(firstReading(document, frame, 1) == 65000, frame == 40) << frame;
  }
}

TEST_F(RecordTest, ReadingsThatLookLikeAMarkerAreRecordedWithoutBeingOne) {
  std::string readings =
      ReadingsWith("A1,amplification,1,20,60,0.313", "A1,amplification,1,20,60,0");
  const std::string line = "A1,amplification,2,59.5,60,0.317";
  readings.replace(readings.find(line), line.size(), "A1,amplification,2,59.5,60,65");
  ASSERT_EQ(RunVex(RecordFrom(File("odd.csv", readings))).exitCode, 0);
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  EXPECT_EQ(firstReading(document, 0, 1), 1);
  EXPECT_EQ(firstReading(document, 1, 1), 64999);
  EXPECT_EQ(RecordedReadings(Run()), ReadReadingsFile(folder_ / "odd.csv"));
}

TEST_F(RecordTest, PlaybackHasNoTimesUnlessTheStartIsGiven) {
  RunVex(Record());
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  TimeStamp time;
  ASSERT_TRUE(document.GetAcqDataStartTime(time, DataRAWa));
  EXPECT_EQ(time, TimeStamp());
  ASSERT_TRUE(document.GetAcqDataEndTime(time, DataRAWa));
  EXPECT_EQ(time, TimeStamp());
  EXPECT_THAT(RunVex({"info", Run()}).output, HasSubstr("start unknown"));
}

TEST_F(RecordTest, StartAndEndAreTheRunsOwn) {
  ASSERT_EQ(RunVex(Record({"--started", "2026-11-22T23:50:00+01:00"})).exitCode, 0);
  // The last reading was taken 1685.05 seconds after the start.
  const CommandResult info = RunVex({"info", "--json", Run()});
  EXPECT_THAT(info.output, testing::ContainsRegex("\"start\":\"2026-11-22.23:50:00\\+01:00\""));
  EXPECT_THAT(info.output, testing::ContainsRegex("\"end\":\"2026-11-23.00:18:05\\+01:00\""));
}

TEST_F(RecordTest, StartWithoutATimeZoneIsRefused) {
  const CommandResult result = RunVex(Record({"--started", "2026-11-22T08:00:00"}));
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors,
            "vex: --started 2026-11-22T08:00:00 is not a date and time with a time zone, like "
            "2026-11-22T08:00:00Z or 2026-11-22T09:00:00+01:00\n");
  EXPECT_FALSE(std::filesystem::exists(Run()));
}

TEST_F(RecordTest, AssayIsTheGivenOne) {
  for (const char* code : {"AllD", "+/-"}) {
    ASSERT_EQ(RunVex(Record({"--force", "--assay", code})).exitCode, 0);
    EXPECT_THAT(RunVex({"info", "--json", Run()}).output,
                HasSubstr(std::string("\"assay\":\"") + code + "\""));
  }
  EXPECT_EQ(TextOf(Run()).substr(8, 4), "+/- ");
  for (const char* code : {"RQSt", "absq", ""}) {
    const CommandResult result = RunVex(Record({"--force", "--assay", code}));
    EXPECT_EQ(result.exitCode, 2) << code;
    EXPECT_THAT(result.errors, HasSubstr("is not an assay; use one of AbsQ (absolute")) << code;
  }
}

TEST_F(RecordTest, ScaleIsAPowerOfTenWhereOneKeepsTheReadings) {
  const struct {
    const char* reading;
    const char* scale;
  } cases[] = {{"65.535", "scale=1000\n"}, {"65.536", "scale=1000\noffset=0.31\n"}};
  for (const auto& [reading, scale] : cases) {
    const std::string file =
        File("large.csv", ReadingsWith("60,0.313", std::string("60,") + reading));
    std::filesystem::remove(Run());
    const CommandResult result = RunVex(RecordFrom(file, {"--exact"}));
    ASSERT_EQ(result.exitCode, 0) << reading << result.errors;
    EXPECT_EQ(result.errors, "") << reading;
    EXPECT_THAT(TextOf(Run()), HasSubstr(scale)) << reading;
    EXPECT_EQ(RecordedReadings(Run()), ReadReadingsFile(file));
  }
}

TEST_F(RecordTest, ReadingThatDoesNotFitNamesItsRow) {
  const std::string row3 = File("large.csv", ReadingsWith("60,0.317", "60,65535.5"));
  CommandResult result = RunVex(RecordFrom(row3, {"--scale", "1"}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("large.csv: row 3: "));
  EXPECT_FALSE(std::filesystem::exists(Run()));
  result = RunVex(Record({"--scale", "100000"}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("run-readings.csv: row "));
  EXPECT_EQ(RunVex(Record({"--scale", "10"})).exitCode, 0);
}

TEST_F(RecordTest, MissingReadingNamesWellAndFrame) {
  const std::string file =
      File("less.csv", ReadingsWith("B2,amplification,7,257,60,", "B2,amplification,41,257,60,"));
  const CommandResult result = RunVex(RecordFrom(file));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("less.csv: well B2 has no reading in amplification cycle 7"));
  EXPECT_FALSE(std::filesystem::exists(Run()));
}

TEST_F(RecordTest, SecondReadingOfAWellInAFrameNamesBothRows) {
  const std::string file =
      File("more.csv", ReadingsWith("A1,amplification,2,59.5,", "A1,amplification,1,59.5,"));
  const CommandResult result = RunVex(RecordFrom(file));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("more.csv: row 3: well A1 has a second reading in "
                                       "amplification cycle 1, the first is in row 2"));
}

TEST_F(RecordTest, WellThatTheWellsFileLacksNamesItsRow) {
  const CommandResult result = RunVex(RecordFrom(File("odd.csv", ReadingsWith("\nA2,", "\nC2,"))));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("odd.csv: row 50: well 'C2' is not in the wells file"));
}

TEST_F(RecordTest, NumbersThatAreNoneNameTheirRow) {
  const struct {
    const char* field;
    const char* error;
  } cases[] = {{"nan", "is not a number"},  {"inf", "is not a number"},
               {"-inf", "is not a number"}, {"1e999", "is not a number"},
               {"0.3x", "is not a number"}, {"na", "is not a number"},
               {"0x10", "is not a number"}, {"1e300", "does not fit"},
               {"-1e13", "does not fit"},   {"\"\"\"\"", "is not a number"}};
  for (const auto& [field, error] : cases) {
    const std::string file = File("bad.csv", ReadingsWith("60,0.317", std::string("60,") + field));
    const CommandResult result = RunVex(RecordFrom(file));
    EXPECT_EQ(result.exitCode, 1) << field;
    EXPECT_THAT(result.errors, HasSubstr("bad.csv: row 3: ")) << field;
    EXPECT_THAT(result.errors, HasSubstr(error)) << field;
  }
}

TEST_F(RecordTest, TimesAndTemperaturesThatDoNotFitNameTheirRow) {
  for (const char* fields : {"4294968,60,", "-1,60,", "59.5,655.36,", "59.5,-1,"}) {
    const std::string file = File("bad.csv", ReadingsWith("59.5,60,", fields));
    const CommandResult result = RunVex(RecordFrom(file));
    EXPECT_EQ(result.exitCode, 1) << fields;
    EXPECT_THAT(result.errors, HasSubstr("bad.csv: row 3: ")) << fields;
  }
}

TEST_F(RecordTest, StandardInputCanHoldReadings) {
  const CommandResult result = RunVex(RecordFrom("-"), {.input = TextOf(Readings())});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  ExpectWhole();
  EXPECT_EQ(RunVex({"record", Run(), "--readings", "-", "--wells", "-", "--force"}).exitCode, 2);
}

TEST_F(RecordTest, ExistingFileStaysUnlessForced) {
  const std::string before = "somebody's";
  WriteBytes(Run(), ToBytes(before));
  const CommandResult refused = RunVex(Record());
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_THAT(refused.errors, HasSubstr(Run() + ": "));
  EXPECT_EQ(TextOf(Run()), before);
  EXPECT_EQ(RunVex(Record({"--force"})).exitCode, 0);
  ExpectWhole();
}

TEST_F(RecordTest, MissingFolderIsAUsageError) {
  CommandResult result =
      RunVex({"record", folder_ / "none/run.vex", "--readings", Readings(), "--wells", Wells()});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("none/run.vex: No such file"));
  result = RunVex({"record", Run(), "--readings", folder_ / "none.csv", "--wells", Wells()});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("none.csv: No such file"));
}

}  // namespace
}  // namespace vex2::test
