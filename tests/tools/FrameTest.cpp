#include <regex>

#include "tests/tools/DocumentFixture.h"

using nlohmann::json;
using testing::HasSubstr;

namespace vex2::test {

class Frame : public DocumentTest {};

/// `text` with one space between columns, instead of the spaces that align them.
std::string squeezed(const std::string& text) {
  return std::regex_replace(text, std::regex(" +"), " ");
}

constexpr const char* kStored =
    "well set l1 l2 l3 first l5 l6 l7 d0\n"
    "A1 1 2 5982 0 101 1 117 0 101\n"
    "A2 1 2 5982 0 201 1 117 0 201\n"
    "A3 1 2 5982 0 301 1 117 0 301\n";

TEST_F(Frame, NamesTheFieldsOfReadingsThatVexRecorded) {
  MakeRecordedRun();
  EXPECT_EQ(squeezed(Output({"frame", path_, "1"})),
            path_ +
                ": RAWa, frame 1 of 3, 3 wells\n"
                "well stage cycle time_s temperature_c fluorescence\n"
                "A1 amplification 2 65.653 59.82 1.01\n"
                "A2 amplification 2 65.653 59.82 2.01\n"
                "A3 amplification 2 65.653 59.82 3.01\n");
  EXPECT_THAT(squeezed(Output({"frame", path_, "1", "--raw"})), HasSubstr(kStored));
}

TEST_F(Frame, ShowsStoredValuesOfReadingsThatVexDidNotRecord) {
  MakeRun();
  EXPECT_EQ(squeezed(Output({"frame", path_, "1"})),
            path_ + ": RAWa, frame 1 of 3, 3 wells\n" + kStored);
  MakeRun("DONE", "source=readings\nframes=1\nscale=100\n");
  EXPECT_THAT(squeezed(Output({"frame", path_, "1"})), HasSubstr(kStored));
}

TEST_F(Frame, IsDrawnAsThePlateInTheUnitsOfTheExport) {
  MakeRecordedRun();
  const std::string text = squeezed(Output({"frame", path_, "1", "--grid"}));
  EXPECT_THAT(text, HasSubstr(": RAWa, frame 1 of 3, 3 wells, fluorescence\n"));
  EXPECT_THAT(text, HasSubstr("\nA 1.01 2.01 3.01 - "));
  EXPECT_THAT(text, HasSubstr("\nH - - - "));
  MakeRun();
  ExpectRefused({"frame", path_, "1", "--grid"}, 1,
                "frame 1 of the data block \"RAWa\" cannot be shown as a plate: vex did not record "
                "it and does not know the meaning of its values; leave out --grid for the stored "
                "values");
}

TEST_F(Frame, GridShowsEachChannel) {
  MakeRun("DONE", "source=readings\nframes=3\nscale=100\nchannels=FAM,VIC\n");
  const std::string text = squeezed(Output({"frame", path_, "1", "--grid"}));
  EXPECT_THAT(text, HasSubstr(": RAWa, frame 1 of 3, 3 wells, fluorescence FAM\n"));
  EXPECT_THAT(text, HasSubstr("\nA 1.01 2.01 3.01 - "));
  EXPECT_THAT(text, HasSubstr(": RAWa, frame 1 of 3, 3 wells, fluorescence VIC\n"));
  EXPECT_THAT(text, HasSubstr("\nA 0 0 0 - "));
}

TEST_F(Frame, JsonHasTheMeaningOfTheReadings) {
  MakeRecordedRun();
  const json frame = JsonOutput({"frame", path_, "2", "--json"});
  EXPECT_EQ(frame["version"], 1);
  EXPECT_EQ(frame["recorded"], true);
  EXPECT_EQ(frame["wells"][2]["reading"],
            json::parse(R"({"stage": "melt", "cycle": 1, "time_s": 131.189,
                            "temperature_c": 59.82, "fluorescence": 3.02})"));
  MakeRun();
  const json other = JsonOutput({"frame", path_, "2", "--json"});
  EXPECT_EQ(other["recorded"], false);
  EXPECT_TRUE(other["wells"][2]["reading"].is_null());
}

TEST_F(Frame, IsAnObjectForPrograms) {
  MakeRun();
  const json frame = JsonOutput({"frame", path_, "2", "--json"});
  EXPECT_EQ(frame["block"], "RAWa");
  EXPECT_EQ(frame["frame"], 2);
  EXPECT_EQ(frame["frames"], 3);
  EXPECT_EQ(frame["wells"][2]["well"], "A3");
  EXPECT_EQ(frame["wells"][2]["number"], 3);
  EXPECT_EQ(frame["wells"][2]["leading"], json({1, 1, 5982, 1, 65000, 2, 117, 0}));
  EXPECT_EQ(frame["wells"][2]["data"].size(), 32U);
  EXPECT_EQ(frame["wells"][2]["data"][0], 302);
}

TEST_F(Frame, IsFoundAfterASaveMovedTheOffsetPastTheBlock) {
  MakeRun();
  const std::string before = Output({"frame", path_, "2"});
  Output({"set", path_, "comment=saved"});
  const Bytes bytes = ReadBytes(path_);
  const std::uint32_t position = std::uint32_t{bytes[70]} << 8U | bytes[71];
  ASSERT_EQ(position, bytes.size());
  EXPECT_EQ(Output({"frame", path_, "2"}), before);
}

TEST_F(Frame, AMissingIndexIsAnError) {
  MakeRun();
  ExpectRefused({"frame", path_, "3"}, 2,
                "there is no frame 3; the data block \"RAWa\" has 3 frames");
  ExpectRefused({"frame", path_, "--", "-1"}, 2, "there is no frame -1");
  ExpectRefused({"frame", path_, "9000000000000000000"}, 2, "there is no frame");
  EXPECT_EQ(RunVex({"frame", path_, "99999999999999999999"}).exitCode, 2);
  EXPECT_EQ(RunVex({"frame", path_, "-1"}).exitCode, 2);
}

TEST_F(Frame, AMissingBlockIsAProblemInTheDocument) {
  MakeRun();
  ExpectRefused({"frame", path_, "0", "--block", "REPt"}, 1, "it has no data block \"REPt\"");
}

TEST_F(Frame, CutOffFrameIsReportedWithItsOffset) {
  MakeRun();
  Bytes bytes = ReadBytes(path_);
  bytes.resize(bytes.size() - 1);
  WriteBytes(path_, bytes);
  EXPECT_EQ(RunVex({"frame", path_, "1"}).exitCode, 0);
  ExpectRefused({"frame", path_, "2"}, 1, "at byte " + std::to_string(bytes.size() + 1 - 240));
}

TEST_F(Frame, BlocksOfTheOldVersionAreReadToo) {
  const std::string old = SourcePath("tests/data/old-block.vex");
  EXPECT_EQ(JsonOutput({"frame", old, "0", "--block", "REPn", "--json"})["wells"].size(), 8U);
}

TEST_F(Frame, WellsAndHeaderMayDisagree) {
  MakeRun();
  Bytes bytes = ReadBytes(path_);
  bytes[22] = bytes[23] = 0;  // no columns: wells have numbers only
  WriteBytes(path_, bytes);
  EXPECT_THAT(Output({"frame", path_, "0"}), HasSubstr("\n3 "));
}

class FrameOfSamples : public SampleDataTest {};

TEST_F(FrameOfSamples, AreThoseOfTheBlocks) {
  int compared = 0;
  for (const char* name : {"03-run-96", "04-readings-384", "05-reporting-blocks"}) {
    const Bytes text = ReadBytes(Sample(std::string("golden/") + name + ".json"));
    const json sidecar = json::parse(text.begin(), text.end());
    for (const json& block : sidecar["components"]) {
      if (block["kind"] != "data") continue;
      for (std::size_t i = 0; i < block["frames"].size(); ++i) {
        const CommandResult result =
            RunVex({"frame", Sample(std::string("golden/") + name + ".vex"), std::to_string(i),
                    "--block", block["tag"], "--json"});
        ASSERT_EQ(result.exitCode, 0) << result.errors;
        const json wells = json::parse(result.output)["wells"];
        ASSERT_EQ(wells.size(), block["wellNumbers"].size());
        for (std::size_t well = 0; well < wells.size(); ++well) {
          json values = wells[well]["leading"];
          values.insert(values.end(), wells[well]["data"].begin(), wells[well]["data"].end());
          EXPECT_EQ(values, block["frames"][i][well]);
          EXPECT_EQ(wells[well]["number"], block["wellNumbers"][well]);
          ++compared;
        }
      }
    }
  }
  EXPECT_GT(compared, 1000);
}

}  // namespace vex2::test
