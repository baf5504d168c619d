// Tests the recorded values: rounding is reported, and readings that are not whole numbers from 0
// to 65535 are exported unchanged.

#include <gmock/gmock.h>

#include <array>

#include "lab/json/Json.h"
#include "tests/tools/RecordFixture.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kReadingColumns = "well,stage,cycle,time_s,temperature_c,fluorescence\n";
constexpr const char* kWithChannels =
    "well,channel,stage,cycle,time_s,temperature_c,fluorescence\n";

class RecordValuesTest : public RecordTest {
 protected:
  /// Records a run of wells A1 and A2 with these rows and a first row of column names.
  CommandResult RecordRows(const std::string& rows, const VexProcess::Arguments& more = {},
                           const char* columns = kReadingColumns) const {
    VexProcess::Arguments arguments = {
        "record",
        Run(),
        "--readings",
        File("rows.csv", columns + rows),
        "--wells",
        File("two.csv",
             "well,sample,target,task,quantity,reporter\nA1,a,t,UNKN,,green\n"
             "A2,b,t,UNKN,,green\n"),
        "--force"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunVex(arguments);
  }

  /// The rows of such a run: `readings` are those of two cycles of A1, then of two cycles of A2.
  static std::string Rows(const std::array<std::string, 4>& readings) {
    return "A1,amplification,1,20,60," + readings[0] + "\nA1,amplification,2,59.5,60," +
           readings[1] + "\nA2,amplification,1,20,60," + readings[2] +
           "\nA2,amplification,2,59.5,60," + readings[3] + "\n";
  }

  std::string Exported() const {
    const CommandResult result = RunVex({"export", Run()});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }

  /// Expects that these readings are kept exactly, and that no rounding is reported.
  void ExpectKept(const std::array<std::string, 4>& readings) const {
    std::filesystem::remove(Run());
    const CommandResult result = RecordRows(Rows(readings), {"--exact"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(Exported(), kReadingColumns + Rows(readings));
  }
};

TEST_F(RecordValuesTest, RoundedReadingsAreReported) {
  const CommandResult result =
      RecordRows(Rows({"0.313", "0.3135", "1", "2.0004"}), {"--scale", "1000"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, "vex: " + (folder_ / "rows.csv") +
                               ": 2 readings rounded to 0.001, largest change 0.0005\n");
}

TEST_F(RecordValuesTest, RoundedTimesAndTemperaturesAreReported) {
  const CommandResult result =
      RecordRows("A1,amplification,1,20.0004,60.123,1\nA2,amplification,1,20,60.004,1\n");
  EXPECT_EQ(result.exitCode, 0);
  const std::string file = "vex: " + (folder_ / "rows.csv");
  EXPECT_EQ(result.errors, file + ": 1 time rounded to 0.001, largest change 0.0004\n" + file +
                               ": 2 temperatures rounded to 0.01, largest change 0.004\n");
}

TEST_F(RecordValuesTest, ExactRefusesWhatWouldBeRounded) {
  const struct {
    std::string rows;
    std::string error;
  } cases[] = {
      {Rows({"0.313", "0.3135", "1", "2"}),
       "row 3: the reading 0.3135 would be rounded to 0.314; leave out --exact to accept that\n"},
      {"A1,amplification,1,20.0004,60,1\nA2,amplification,1,20,60,1\n",
       "row 2: the time 20.0004 would be rounded to 20; leave out --exact to accept that\n"},
      {"A1,amplification,1,20,60,1\nA2,amplification,1,20,60.005,1\n",
       "row 3: the temperature 60.005 would be rounded to 60.01; leave out --exact to accept "
       "that\n"}};
  for (const auto& [rows, error] : cases) {
    const CommandResult result = RecordRows(rows, {"--exact", "--scale", "1000"});
    EXPECT_EQ(result.exitCode, 1) << rows;
    EXPECT_THAT(result.errors, HasSubstr("rows.csv: " + error)) << rows;
    EXPECT_FALSE(std::filesystem::exists(Run())) << rows;
  }
}

TEST_F(RecordValuesTest, ReadingsThatSomeScaleKeepsComeBackAsTheyWere) {
  ExpectKept({"0.0003", "0.3", "15", "19.6605"});
  ExpectKept({"2", "131070", "70000", "0"});
  ExpectKept({"1000000.001", "1000000.002", "1000000.003", "1000065"});
  ExpectKept({"0.25", "16383.75", "100", "0.5"});
}

TEST_F(RecordValuesTest, NegativeReadingsComeBackAsTheyWere) {
  ExpectKept({"-0.013", "0.25", "-3", "62.5"});
  ExpectKept({"-100000", "-99999", "-50000", "-34465"});
}

TEST_F(RecordValuesTest, LargeReadingsComeBackAsTheyWere) {
  ExpectKept({"65536", "70000", "123456", "8000"});
  ExpectKept({"655350000000", "0", "500000000000", "70000000"});
}

TEST_F(RecordValuesTest, LossOfLargeReadingsIsSmallAndReported) {
  const CommandResult result = RecordRows(Rows({"65537", "70001", "123456", "8001"}));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, HasSubstr("3 readings rounded to 1.76176, largest change 0.44\n"));
}

TEST_F(RecordValuesTest, MissingReadingsComeBackMissing) {
  ExpectKept({"NA", "0.25", "-3", "NA"});
  ExpectKept({"NA", "NA", "NA", "NA"});
  ASSERT_EQ(RecordRows(Rows({"", "0.25", "0", ""})).exitCode, 0);
  EXPECT_EQ(Exported(), kReadingColumns + Rows({"NA", "0.25", "0", "NA"}));
  EXPECT_EQ(RecordedFrames(Run()), 2);
}

TEST_F(RecordValuesTest, MissingReadingsLookLikeNoMeltingStage) {
  ASSERT_EQ(RecordRows(Rows({"NA", "NA", "0.5", "1"})).exitCode, 0);
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  int frames = 0;
  int melting = 0;
  document.FindPCRMeltingParams(nullptr, frames, melting);
  EXPECT_EQ(frames, 2);
  EXPECT_EQ(melting, -1);
}

TEST_F(RecordValuesTest, ChannelsComeBackInTheirColumn) {
  const std::string rows =
      "A1,FAM,amplification,1,20,60,0.5\nA1,VIC,amplification,1,20,60,-1.25\n"
      "A1,FAM,melt,1,60,61.5,0.25\nA1,VIC,melt,1,60,61.5,NA\n"
      "A2,FAM,amplification,1,21,60,3\nA2,VIC,amplification,1,21,60,12\n"
      "A2,FAM,melt,1,60,61.5,0.125\nA2,VIC,melt,1,60,61.5,0\n";
  const CommandResult result = RecordRows(rows, {"--exact"}, kWithChannels);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(Exported(), kWithChannels + rows);
}

TEST_F(RecordValuesTest, ChannelsHaveTheGivenOrder) {
  const std::string rows =
      "A1,FAM,amplification,1,20,60,0.5\nA1,VIC,amplification,1,20,60,1\n"
      "A2,FAM,amplification,1,21,60,3\nA2,VIC,amplification,1,21,60,12\n";
  ASSERT_EQ(RecordRows(rows, {"--channels", "VIC,FAM"}, kWithChannels).exitCode, 0);
  EXPECT_THAT(Exported(), HasSubstr("A1,VIC,amplification,1,20,60,1\nA1,FAM,"));
  const CommandResult other = RecordRows(rows, {"--channels", "VIC,ROX"}, kWithChannels);
  EXPECT_EQ(other.exitCode, 1);
  EXPECT_THAT(other.errors, HasSubstr("row 2: channel 'FAM' is not one of the run's channels"));
  for (const char* names : {"", "A,", "A,A", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17"}) {
    EXPECT_EQ(RecordRows(rows, {"--channels", names}, kWithChannels).exitCode, 2) << names;
  }
}

TEST_F(RecordValuesTest, EachWellHasAReadingOfEachChannel) {
  CommandResult result = RecordRows(
      "A1,FAM,amplification,1,20,60,1\nA1,VIC,amplification,1,20,60,1\n"
      "A2,FAM,amplification,1,20,60,1\n",
      {}, kWithChannels);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("channel VIC of well A2 has no reading in amplification cycle 1; a row "
                        "with NA stands for a reading that is missing"));
  result = RecordRows("A1,FAM,amplification,1,20,60,1\nA1,FAM,amplification,1,20,60,1\n", {},
                      kWithChannels);
  EXPECT_THAT(result.errors, HasSubstr("row 3: channel FAM of well A1 has a second reading"));
  result = RecordRows("A1,FAM,amplification,1,20,60,1\nA1,VIC,amplification,1,20.5,60,1\n", {},
                      kWithChannels);
  EXPECT_THAT(result.errors, HasSubstr("row 3: the channels of well A1 in amplification cycle 1 "
                                       "must have one time and temperature; row 2 has others"));
}

TEST_F(RecordValuesTest, NegativeReadingNeedsAnOffsetWhenTheScaleIsGiven) {
  const std::string rows = Rows({"-0.5", "0.25", "1", "2"});
  const CommandResult result = RecordRows(rows, {"--scale", "1000"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("row 2: the reading -0.5 does not fit in 16 bits with the scale 1000; no "
                        "reading can be below the --offset\n"));
  ASSERT_EQ(RecordRows(rows, {"--scale", "1000", "--offset", "-1"}).exitCode, 0);
  EXPECT_EQ(Exported(), kReadingColumns + rows);
}

TEST_F(RecordValuesTest, ScalesAndOffsetsThatAreNoneAreRefused) {
  for (const char* scale : {"0", "-1", "x", "1/0"}) {
    const CommandResult result = RecordRows(Rows({"1", "1", "1", "1"}), {"--scale", scale});
    EXPECT_EQ(result.exitCode, 2) << scale;
    EXPECT_THAT(result.errors, HasSubstr("it takes a number above 0, or a fraction")) << scale;
  }
  EXPECT_EQ(RecordRows(Rows({"1", "1", "1", "1"}), {"--offset", "x"}).exitCode, 2);
}

TEST_F(RecordValuesTest, DocumentsOfEarlierVersionsReadTheSame) {
  // Checks the log of such a document and the values that hold its readings.
  ASSERT_EQ(RecordRows(Rows({"0.313", "0.25", "1", "65.535"})).exitCode, 0);
  EXPECT_THAT(TextOf(Run()), HasSubstr("source=readings\nframes=2\nscale=1000\n"));
  EXPECT_THAT(TextOf(Run()), testing::Not(HasSubstr("offset=")));
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(Run().c_str()), kSuccess);
  Vex2WellRecord record;
  ASSERT_TRUE(document.GetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  Vex2WellRecord expected;
  const std::uint16_t leading[8] = {1, 1, 6000, 0, 313, 0, 20000, 0};
  std::copy(std::begin(leading), std::end(leading), expected.leading);
  expected.data[0] = 313;
  EXPECT_EQ(record, expected);
}

TEST_F(RecordValuesTest, DefaultsOfDetectorsAreMarked) {
  ASSERT_EQ(RecordRows(Rows({"1", "1", "1", "1"})).exitCode, 0);
  EXPECT_THAT(RunVex({"detectors", Run()}).output, HasSubstr("6-15 (default)"));
  EXPECT_THAT(RunVex({"detectors", Run()}).output, HasSubstr("0.2 (default)"));
  ASSERT_EQ(RunVex({"detectors", Run(), "--add", "name=t", "threshold=0.5"}).exitCode, 0);
  EXPECT_THAT(RunVex({"detectors", Run()}).output, testing::Not(HasSubstr("0.5 (default)")));
  const auto json = nlohmann::json::parse(RunVex({"detectors", "--json", Run()}).output);
  EXPECT_EQ(json["detectors"][0]["defaults"], nlohmann::json({"baseline-start", "baseline-end"}));
}

TEST_F(RecordValuesTest, AssayIsSetByItsCode) {
  ASSERT_EQ(RecordRows(Rows({"1", "1", "1", "1"})).exitCode, 0);
  const CommandResult result = RunVex({"set", Run(), "assay=+/-"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.output, "assay: AbsQ -> +/-\n");
  EXPECT_EQ(TextOf(Run()).substr(8, 4), "+/- ");
  const CommandResult refused = RunVex({"set", Run(), "assay=RQSt"});
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_THAT(refused.errors, HasSubstr("it takes AbsQ, RelQ, AllD, +/-, BGND or PDye"));
}

}  // namespace
}  // namespace vex2::test
