#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>
#include <set>

#include "lab/compare/Diff.h"
#include "lab/model/DocumentEditor.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class DiffTest : public TempFolderTest {
 protected:
  void SetUp() override {
    Record(SmallRun(), one_);
    copy();
  }

  void copy() { WriteBytes(other_, ReadBytes(one_)); }

  std::string one_ = folder_ / "one.vex";
  std::string other_ = folder_ / "other.vex";
};

TEST_F(DiffTest, DocumentDoesNotDifferFromItself) {
  EXPECT_THAT(Diff(one_, one_), IsEmpty());
  EXPECT_THAT(Diff(one_, other_), IsEmpty());
  for (const auto& sample : SampleFiles("golden", ".vex")) {
    EXPECT_THAT(Diff(sample, sample), IsEmpty()) << sample;
  }
}

TEST_F(DiffTest, EqualDifferencesAreOne) {
  DocumentEditor editor(other_);
  for (Well& well : editor.Wells()) well.sample = "same";
  editor.Save();
  const auto differences = Diff(one_, other_);
  std::uint64_t count = 0;
  for (const Difference& difference : differences) {
    EXPECT_EQ(difference.section, "wells");
    EXPECT_EQ(difference.what, "sample");
    EXPECT_EQ(difference.other, "same");
    EXPECT_LE(difference.places.size(), 3U);
    count += difference.count;
  }
  EXPECT_EQ(count, 96U);
  EXPECT_LT(differences.size(), 40U);
}

TEST_F(DiffTest, ReadingsAreComparedWithinTheTolerance) {
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(other_.c_str()), 0);
  const double step = RunReader(one_).Readings().Meaning()->scale.Step();
  for (const std::uint16_t well : {std::uint16_t{3}, std::uint16_t{7}}) {
    Vex2WellRecord record;
    ASSERT_TRUE(document.GetAcqDataWellRecord(&record, 1, well, DataRAWa));
    RunReading reading = DecodeReading(record);
    reading.values[0] = static_cast<std::uint16_t>(reading.values[0] + 5);
    record = EncodeReading(reading, false);
    ASSERT_TRUE(document.SetAcqDataWellRecord(&record, 1, well, DataRAWa));
  }
  ASSERT_EQ(document.SaveToFile(other_.c_str()), 0);
  const auto differences = Diff(one_, other_);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].section, "readings");
  EXPECT_EQ(differences[0].count, 2U);
  EXPECT_THAT(differences[0].places,
              ElementsAre(HasSubstr("A3 frame 1: "), HasSubstr("A7 frame 1: ")));
  EXPECT_NEAR(differences[0].largest, 5 * step, step / 100);
  EXPECT_THAT(Diff(one_, other_, {.tolerance = 5.01 * step}), IsEmpty());
  EXPECT_THAT(Diff(one_, other_, {.tolerance = 4.9 * step}), SizeIs(1));
  EXPECT_THAT(Diff(one_, other_, {.readings = false}), IsEmpty());
}

// Makes one edit at a time, each of one value, and checks that Diff reports exactly this edit.
TEST_F(DiffTest, NamesExactlyTheEdits) {
  std::mt19937 random(7);
  const auto below = [&](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  for (int round = 0; round < 30; ++round) {
    copy();
    std::multiset<std::string> expected;
    std::set<std::size_t> edited;
    DocumentEditor editor(other_);
    const std::size_t edits = 1 + below(6);
    for (std::size_t edit = 0; edit < edits; ++edit) {
      const std::string value = "value " + std::to_string(edit);
      Well& well = editor.Wells()[below(editor.Wells().size())];
      switch (below(4)) {
        case 0:
          if (!edited.insert(well.number).second) break;
          well.sample = value;
          expected.insert("wells/sample/" + well.name + "/" + value);
          break;
        case 1:
          if (well.targets.empty() || !edited.insert(1000U + well.number).second) break;
          well.targets[0].quantity = 0.5F + static_cast<float>(edit);
          expected.insert("wells/quantity/" + well.name + " " + well.targets[0].detector + "/" +
                          std::to_string(edit) + ".5");
          break;
        case 2:
          if (!edited.insert(2000).second) break;
          editor.Set("comment", value);
          expected.insert("settings/comment//" + value);
          break;
        default:
          if (!edited.insert(2001).second) break;
          editor.Detectors()[0].owner = value;
          expected.insert("detectors/owner/" + editor.Detectors()[0].name + "/" + value);
      }
    }
    editor.Save();
    std::multiset<std::string> found;
    for (const Difference& one : Diff(one_, other_)) {
      ASSERT_EQ(one.count, 1U) << TextOf(one);
      found.insert(one.section + "/" + one.what + "/" + (one.places.empty() ? "" : one.places[0]) +
                   "/" + one.other.value_or("none"));
    }
    EXPECT_EQ(found, expected) << "round " << round;
  }
}

// The kinds of edits of a reading, as Diff names them.
constexpr std::array kEditKinds = {"values",       "missing", "times",
                                   "temperatures", "cycles",  "stages"};

// Changes a reading of a run with one channel in one way.
RunReading edited(RunReading reading, std::string_view kind, std::uint16_t change) {
  if (kind == "values") {
    reading.values[0] = static_cast<std::uint16_t>(reading.values[0] + change);
  } else if (kind == "missing") {
    reading.missing = 1;
    reading.values[0] = 0;
  } else if (kind == "times") {
    reading.time += 1000U * change;
  } else if (kind == "temperatures") {
    reading.temperature = static_cast<std::uint16_t>(reading.temperature + change);
  } else if (kind == "cycles") {
    reading.cycle = static_cast<std::uint16_t>(reading.cycle + change);
  } else {
    reading.melting = !reading.melting;
  }
  return reading;
}

// Edits random readings of a copy, and checks that Diff names these and no others.
TEST_F(DiffTest, NamesExactlyTheEditedReadings) {
  std::mt19937 random(8);
  const auto below = [&](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  const RunReader run(one_);
  const auto wells = run.Wells();
  const std::size_t frames = run.FrameCount();
  ASSERT_EQ(wells.size(), 96U);
  ASSERT_EQ(frames, 5U);
  for (int round = 0; round < 25; ++round) {
    copy();
    Vex2FileManager document;
    ASSERT_EQ(document.ReadFromFile(other_.c_str()), 0);
    // By the name of the difference: frame and well of each edit, in the order of the file.
    std::map<std::string, std::set<std::pair<std::size_t, std::uint16_t>>> expected;
    for (std::size_t edit = 1 + below(40); edit > 0; --edit) {
      const std::string kind = kEditKinds[below(kEditKinds.size())];
      const std::size_t frame = below(frames);
      const std::uint16_t well = wells[below(wells.size())];
      const auto name = "RAWa " + (kind == "missing" ? "values" : kind);
      if (!expected[name].insert({frame, well}).second) continue;
      const auto number = static_cast<int>(frame);
      Vex2WellRecord record;
      ASSERT_TRUE(document.GetAcqDataWellRecord(&record, number, well, DataRAWa));
      const RunReading reading = DecodeReading(record);
      const RunReading changed = edited(reading, kind, static_cast<std::uint16_t>(1 + below(500)));
      const bool beginsMelting = record == EncodeReading(reading, true) && changed.melting;
      record = EncodeReading(changed, beginsMelting);
      ASSERT_TRUE(document.SetAcqDataWellRecord(&record, number, well, DataRAWa));
    }
    ASSERT_EQ(document.SaveToFile(other_.c_str()), 0);
    const auto differences = Diff(one_, other_);
    ASSERT_EQ(differences.size(), expected.size()) << "round " << round;
    for (const Difference& one : differences) {
      EXPECT_EQ(one.section, "readings");
      const auto& places = expected[one.what];
      EXPECT_EQ(one.count, places.size()) << one.what;
      ASSERT_EQ(one.places.size(), std::min<std::size_t>(places.size(), 3)) << one.what;
      auto place = places.begin();
      for (const std::string& found : one.places) {
        EXPECT_THAT(found, StartsWith(WellName(place->second, 12) + " frame " +
                                      std::to_string(place->first) + ": "))
            << one.what;
        ++place;
      }
    }
  }
}

TEST_F(DiffTest, MarkOfTheFirstMeltingFrameIsCompared) {
  constexpr int kFirstMeltingFrame = 3;
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(other_.c_str()), 0);
  std::uint64_t marks = 0;
  const RunReader run(one_);
  for (const std::uint16_t well : run.Wells()) {
    Vex2WellRecord record;
    ASSERT_TRUE(document.GetAcqDataWellRecord(&record, kFirstMeltingFrame, well, DataRAWa));
    const RunReading reading = DecodeReading(record);
    if (record != EncodeReading(reading, true)) continue;
    ++marks;
    record = EncodeReading(reading, false);
    ASSERT_TRUE(document.SetAcqDataWellRecord(&record, kFirstMeltingFrame, well, DataRAWa));
  }
  ASSERT_EQ(document.SaveToFile(other_.c_str()), 0);
  ASSERT_GT(marks, 0U);
  const auto differences = Diff(one_, other_);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].what, "RAWa marks of the first melting frame");
  EXPECT_EQ(differences[0].count, marks);
}

TEST_F(DiffTest, TemperatureThatDiffersIsShown) {
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(other_.c_str()), 0);
  Vex2WellRecord record;
  ASSERT_TRUE(document.GetAcqDataWellRecord(&record, 1, 3, DataRAWa));
  RunReading reading = DecodeReading(record);
  const double before = reading.temperature / 100.0;
  reading.temperature = static_cast<std::uint16_t>(reading.temperature + 50);
  record = EncodeReading(reading, false);
  ASSERT_TRUE(document.SetAcqDataWellRecord(&record, 1, 3, DataRAWa));
  ASSERT_EQ(document.SaveToFile(other_.c_str()), 0);
  const auto differences = Diff(one_, other_);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(TextOf(differences[0]),
            "readings: RAWa temperatures: 1 differ, by up to 0.5: A3 frame 1: " +
                PlainText(before) + " -> " + PlainText(before + 0.5));
}

TEST_F(DiffTest, BytesWithoutAKnownValueAreARecordThatDiffers) {
  Bytes bytes = ReadBytes(other_);
  const Bytes record = ToBytes(std::string_view("XYZa\0\0\0\3abc", 11));
  bytes.insert(bytes.end(), record.begin(), record.end());
  WriteBytes(other_, bytes);
  const auto differences = Diff(one_, other_);
  ASSERT_THAT(differences, SizeIs(1));
  EXPECT_EQ(differences[0].section, "records");
  EXPECT_THAT(differences[0].places, ElementsAre("XYZa"));
  EXPECT_EQ(differences[0].one, std::nullopt);
  EXPECT_EQ(differences[0].other, "3 bytes");
  EXPECT_THAT(Diff(one_, other_, {.records = false}), IsEmpty());
}

TEST_F(DiffTest, ReadingsOfUnknownMeaningAreComparedAsStored) {
  for (const std::string& path : {one_, other_}) {
    ForeignRun run(path, 2);
    run.Begin();
    run.Append();
    if (path == one_) continue;
    Vex2WellRecord record = MakeRecord(0, 1);
    ++record.leading[3];
    record.data[0] += 2;
    ASSERT_TRUE(run.Document().SetAcqDataWellRecord(&record, 0, 2, DataRAWa));
    ASSERT_EQ(run.Document().SaveToFile(path.c_str()), 0);
  }
  std::string text;
  for (const Difference& one : Diff(one_, other_, {.setup = false, .records = false})) {
    text += TextOf(one) + "\n";
  }
  EXPECT_THAT(text, HasSubstr("RAWa stored values: 1 differ, by up to 2: A2 frame 0: "));
  EXPECT_THAT(text, HasSubstr("RAWa stored leading values: 1 differ, by up to 1: A2 frame 0: "));
}

TEST_F(DiffTest, TimesAndFlagsAreCompared) {
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(other_.c_str()), 0);
  Vex2WellRecord record;
  ASSERT_TRUE(document.GetAcqDataWellRecord(&record, 1, 3, DataRAWa));
  RunReading reading = DecodeReading(record);
  reading.time += 1000;
  record = EncodeReading(reading, false);
  ASSERT_TRUE(document.SetAcqDataWellRecord(&record, 1, 3, DataRAWa));
  Vex2HeaderData header = document.GetHeaderData();
  header.usage[1] &= ~1U;
  document.SetHeaderData(header);
  Vex2PlateSetup setup;
  ASSERT_EQ(document.GetPlateSetupInfo(&setup), 0);
  setup.cells[2].detectors.GetHead()->used = false;
  ASSERT_EQ(document.ReplacePlateSetup(&setup), 0);
  ASSERT_EQ(document.SaveToFile(other_.c_str()), 0);
  std::string text;
  for (const Difference& one : Diff(one_, other_, {.records = false})) text += TextOf(one) + "\n";
  EXPECT_THAT(text, HasSubstr("wells in use: 'in use' -> 'not in use': B1\n"));
  EXPECT_THAT(text, HasSubstr("wells: flags of detectors: none -> '0': A3\n"));
  EXPECT_THAT(text, HasSubstr("RAWa times: 1 differ, by up to 1: A3 "));
}

TEST_F(DiffTest, DocumentThatCannotBeReadIsAnError) {
  Bytes bytes = ReadBytes(other_);
  bytes.resize(1100);
  WriteBytes(other_, bytes);
  EXPECT_EQ(ErrorOf([&] { Diff(one_, other_); }).Class(), ErrorClass::kDocument);
  EXPECT_EQ(ErrorOf([&] { Diff(one_, folder_ / "absent.vex"); }).Code(), ErrorCode::kNoSuchFile);
}

}  // namespace
