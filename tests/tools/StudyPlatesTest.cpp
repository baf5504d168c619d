#include "tests/tools/StudyFixture.h"
#include "vex2/study/KestorSpectrum.h"

using testing::HasSubstr;

namespace vex2::test {

/// Tests what the commands that show documents print for a study.
class StudyPlates : public StudyTest {
 protected:
  void SetUp() override {
    StudyTest::SetUp();
    makeStudy();
  }
};

TEST_F(StudyPlates, InfoHasAllOfThemOrOne) {
  const json info = JsonOutput({"info", "--json", study_});
  ASSERT_EQ(info["plates"].size(), 2U);
  EXPECT_EQ(info["plates"][1]["name"], "plate2");
  EXPECT_EQ(info["plates"][1]["settings"]["comment"], "second");
  EXPECT_FALSE(info["settings"].contains("comment"));
  const json plate = JsonOutput({"info", "--json", "--plate", "plate2", study_});
  EXPECT_EQ(plate["file"], study_);
  EXPECT_EQ(plate["settings"]["comment"], "second");
  EXPECT_EQ(plate["records"].back()["tag"], "EOPl");
  const std::string text = Output({"info", study_});
  EXPECT_THAT(text, HasSubstr("plates              2 in all\n"));
  EXPECT_THAT(text, HasSubstr(" plate2: 96 wells, 1 frame, ZERO, modified "));
  EXPECT_THAT(Output({"info", study_, "--plate", "plate1"}),
              testing::StartsWith(study_ + ", plate plate1\n  modified "));
  EXPECT_FALSE(JsonOutput({"info", "--json", plate1_}).contains("plates"));
}

TEST_F(StudyPlates, TheTreeOfOneIsThatOfADocument) {
  const json plate = TreeOutput({"--plate", "plate2", study_});
  EXPECT_EQ(content(plate), content(TreeOutput({plate2_})));
  EXPECT_EQ(plate.back()["tag"], "EOPl");
  EXPECT_THAT(Output({"tree", "--plate", "plate2", study_}), HasSubstr("  Path  plate name  "));
}

TEST_F(StudyPlates, AnExportOfOneIsThatOfItsDocument) {
  const std::string one = Output({"export", plate2_});
  EXPECT_EQ(Output({"export", study_, "--plate", "plate2"}), one);
  const std::string all = Output({"export", study_});
  EXPECT_THAT(all, testing::StartsWith("plate,well,stage,"));
  EXPECT_THAT(all, HasSubstr("\nplate1,A1,amplification,1,"));
  EXPECT_THAT(all, HasSubstr("\nplate2,A2,amplification,1,"));
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 5);
}

TEST_F(StudyPlates, AFrameIsThatOfEachOrOfOne) {
  const std::string one = Output({"frame", study_, "0", "--plate", "plate2"});
  EXPECT_THAT(one, testing::StartsWith(study_ + ", plate plate2: RAWa, frame 0 of 1, 2 wells\n"));
  const std::string all = Output({"frame", study_, "0"});
  EXPECT_THAT(all, HasSubstr(", plate plate1: RAWa"));
  EXPECT_THAT(all, HasSubstr("\n\n" + one));
  EXPECT_EQ(JsonOutput({"frame", study_, "0", "--json", "--plate", "plate1"})["plate"], "plate1");
  EXPECT_EQ(
      RunVex({"frame", study_, "1"}).errors,
      "vex: " + study_ + ": there is no frame 1; the data block \"RAWa\" has 1 frame, 0 to 0\n");
}

TEST_F(StudyPlates, ANameThatNoneHasIsRefused) {
  for (const VexProcess::Arguments& arguments :
       {VexProcess::Arguments{"info", study_, "--plate", "x"},
        VexProcess::Arguments{"tree", study_, "--plate", "x"},
        VexProcess::Arguments{"frame", study_, "0", "--plate", "x"},
        VexProcess::Arguments{"export", study_, "--plate", "x"},
        VexProcess::Arguments{"set", study_, "--plate", "x", "comment=a"},
        VexProcess::Arguments{"status", study_, "--plate", "x"},
        VexProcess::Arguments{"status", study_, "DONE", "--plate", "x"},
        VexProcess::Arguments{"copy", study_, path_, "--plate", "x"}}) {
    expectStudyRefuses(arguments, study_, 2, "no plate 'x'; its plates are 'plate1', 'plate2'");
  }
}

TEST_F(StudyPlates, SettingsOfTheNamedOneAreSet) {
  EXPECT_EQ(Output({"set", study_, "--plate", "plate2", "comment=other"}),
            "comment: second -> other\n");
  const auto comment = [&](const char* plate) {
    return JsonOutput({"info", "--json", "--plate", plate, study_})["settings"]["comment"];
  };
  EXPECT_EQ(comment("plate1"), "first");
  EXPECT_EQ(comment("plate2"), "other");
  expectStudyRefuses({"set", study_, "comment=other"}, study_, 2,
                     "a study keeps no comment of its own; name the plate to change with --plate");
  EXPECT_EQ(Output({"set", study_, "calibrator=liver"}), "calibrator: none -> liver\n");
}

TEST_F(StudyPlates, StatusIsThatOfEachOrOfOne) {
  EXPECT_EQ(Output({"status", study_, "DONE", "--plate", "plate2", "--dry-run"}),
            "ZERO -> DONE\n(dry run: nothing was changed)\n");
  EXPECT_EQ(Output({"status", study_}), "ZERO  plate1\nZERO  plate2\n");
  EXPECT_EQ(Output({"status", study_, "DONE", "--plate", "plate2"}), "ZERO -> DONE\n");
  EXPECT_EQ(Output({"status", study_}), "ZERO  plate1\nDONE  plate2\n");
  EXPECT_EQ(Output({"status", study_, "--plate", "plate2"}), "DONE\n");
}

TEST_F(StudyPlates, CopyOfAPlateIsASeparateDocument) {
  Output({"copy", study_, path_, "--plate", "plate2"});
  EXPECT_EQ(content(TreeOutput({path_})), content(TreeOutput({plate2_})));
  expectStudyRefuses({"copy", study_, study_, "--plate", "plate2"}, study_, 2, "is also an input");
}

TEST_F(StudyPlates, DetectorsOfTheStudyComeBeforeThoseOfItsPlates) {
  Vex2Detector own;
  own.name = "of the study";
  Vex2FileManager study;
  ASSERT_EQ(study.ReadFromFile(study_.c_str()), 0);
  ASSERT_EQ(study.AppendDetectorInfo(&own), 0);
  ASSERT_EQ(study.SaveToFile(study_.c_str()), 0);
  Output({"detectors", study_, "--plate", "plate2", "--add", "name=of plate 2"});

  const json all = JsonOutput({"detectors", study_, "--json"});
  EXPECT_EQ(all["detectors"][0]["name"], "of the study");
  EXPECT_EQ(all["plates"][0]["detectors"].size(), 0U);
  EXPECT_EQ(all["plates"][1]["detectors"][0]["name"], "of plate 2");
  const std::string text = Output({"detectors", study_});
  EXPECT_THAT(text, testing::StartsWith("study\n"));
  EXPECT_THAT(text, HasSubstr("\n\nplate \"plate1\"\nno detectors\n"));
  EXPECT_THAT(Output({"detectors", study_, "--csv"}), HasSubstr("\n,of the study,"));
}

TEST_F(StudyPlates, StatusOfAPlainDocumentIsNotSetInADryRun) {
  EXPECT_EQ(Output({"status", plate1_, "DONE", "--dry-run"}),
            "ZERO -> DONE\n(dry run: nothing was changed)\n");
  EXPECT_EQ(Output({"status", plate1_}), "ZERO\n");
}

class SpectrumCommand : public StudyTest {
 protected:
  // Makes a frame in which the fourth group of readings of well A1 has a smaller slope than a line
  // through 0.
  void makeBackground(const char* assay) const {
    Vex2FileManager plate;
    Vex2HeaderData header;
    std::copy_n(assay, 4, header.assayCode);
    plate.SetHeaderData(header);
    const std::uint16_t wells[] = {1};
    plate.InitAcqDataWellNumberArray(wells, 1, DataRAWa);
    Vex2WellRecord record;
    record.leading[0] = 5;
    for (std::uint16_t i = 0; i < 24; ++i)
      record.data[i] = static_cast<std::uint16_t>(i < 12 ? 100 + 10 * i : 16 + i);
    ASSERT_TRUE(plate.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
    ASSERT_EQ(plate.SaveToFile(path_.c_str()), 0);
  }
};

TEST_F(SpectrumCommand, HasTheReadingsOfOneWellInOneFrame) {
  const json spectrum = JsonOutput({"spectrum", plate1_, "--well", "A2", "--frame", "0", "--json"});
  EXPECT_EQ(spectrum["well"], "A2");
  EXPECT_EQ(spectrum["number"], 2);
  ASSERT_EQ(spectrum["readings"].size(), 36U);
  EXPECT_EQ(spectrum["readings"][0], 77);
  EXPECT_FALSE(spectrum.contains("rates"));
  const std::string text = Output({"spectrum", plate1_, "--well", "A2", "--frame", "0"});
  EXPECT_THAT(text, testing::StartsWith(plate1_ + ": well A2, frame 0 of 1"));
  EXPECT_THAT(text, testing::EndsWith("\n   0    77\nreadings 1 to 35 are 0\n"));
}

TEST_F(SpectrumCommand, IsDrawnUpToTheLastReadingThatIsNot0) {
  makeBackground("AbsQ");
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  Vex2WellRecord record;
  ASSERT_TRUE(document.GetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  std::fill(std::begin(record.data), std::end(record.data), std::uint16_t{0});
  record.data[2] = 5;
  ASSERT_TRUE(document.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const std::string text = Output({"spectrum", path_, "--well", "A1", "--frame", "0"});
  EXPECT_THAT(text, HasSubstr("█"));
  EXPECT_THAT(text, testing::EndsWith("\n   0     0     0     5\nreadings 3 to 35 are 0\n"));
}

TEST_F(SpectrumCommand, IsATableOfAllPlatesOfAStudy) {
  makeStudy();
  const std::string table = Output({"spectrum", study_, "--well", "A1", "--frame", "0", "--csv"});
  EXPECT_THAT(table,
              testing::StartsWith("plate,well,frame,kind,index,value\nplate1,A1,0,reading,0,77\n"));
  EXPECT_THAT(table, HasSubstr("\nplate2,A1,0,reading,35,0\n"));
  EXPECT_THAT(
      Output({"spectrum", study_, "--plate", "plate2", "--well", "A1", "--frame", "0", "--csv"}),
      testing::StartsWith("well,frame,kind,index,value\nA1,0,reading,0,77\n"));
}

TEST_F(SpectrumCommand, OfABackgroundDocumentHasTheRatesOfItsConversion) {
  makeBackground("BGND");
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  ASSERT_TRUE(document.IsBackground());
  KestorSpectrum expected(36);
  expected.well = 1;
  ASSERT_TRUE(document.LoadSpectrum(&expected, nullptr));
  const json spectrum = JsonOutput({"spectrum", path_, "--well", "A1", "--frame", "0", "--json"});
  EXPECT_EQ(spectrum["rates"], json({expected.values[24], expected.values[25], expected.values[26],
                                     expected.values[27]}));
  EXPECT_EQ(spectrum["wellValue"], 5);
  EXPECT_EQ(spectrum["readings"][24], 0);
  EXPECT_THAT(Output({"spectrum", path_, "--well", "A1", "--frame", "0"}),
              HasSubstr("\nbackground rates: " + std::to_string(expected.values[24]) + " "));
}

TEST_F(SpectrumCommand, MissingWellsAndFramesAreRefused) {
  const auto refused = [&](const char* well, const char* frame, const std::string& text) {
    expectStudyRefuses({"spectrum", plate1_, "--well", well, "--frame", frame}, plate1_, 2, text);
  };
  refused("A1", "1", "there is no frame 1; it has 1 frame");
  refused("A1", "-1", "there is no frame -1");
  refused("Z9", "0", "there is no well 'Z9' on its plate of 8 x 12 wells");
  refused("B1", "0", "the well B1 gave no readings");
}

}  // namespace vex2::test
