#include "tests/tools/DocumentFixture.h"
#include "vex2/format/RecordKinds.h"

using testing::HasSubstr;

namespace vex2::test {

class Copy : public DocumentTest {
 protected:
  const std::string copy_ = folder_ / "copy.vex";
};

TEST_F(Copy, IsWhatReadingAndSavingGives) {
  MakeRun();
  EXPECT_EQ(Output({"copy", path_, copy_}), "");
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  const std::string expected = folder_ / "expected.vex";
  ASSERT_EQ(document.SaveToFile(expected.c_str()), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(copy_), ReadBytes(expected)), "");
}

TEST_F(Copy, OfARunInProgressIsAllowedElsewhereAndSaysSo) {
  MakeRun("PROG");
  const CommandResult result = RunVex({"copy", path_, copy_});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, HasSubstr("its run is in progress"));
  EXPECT_EQ(Output({"status", copy_}), "PROG\n");
}

TEST_F(Copy, NeitherOntoItselfNorOntoAnotherRunInProgress) {
  MakeRun("PROG");
  const Bytes before = ReadBytes(path_);
  ExpectRefused({"copy", path_, path_, "--force"}, 2, "is also an input");
  std::filesystem::create_symlink(path_, copy_);
  EXPECT_EQ(RunVex({"copy", path_, copy_, "--force"}).exitCode, 2);
  Vex2FileManager other;
  const std::string source = folder_ / "other.vex";
  ASSERT_EQ(other.SaveToFile(source.c_str()), 0);
  ExpectRefused({"copy", source, path_, "--force"}, 1, "its run is in progress");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(Copy, RefusesADocumentThatCannotBeReadWhole) {
  MakeRun();
  Bytes bytes = ReadBytes(path_);
  bytes.resize(bytes.size() - 80);
  WriteBytes(path_, bytes);
  const auto block = std::search(bytes.begin(), bytes.end(), "RAWa", "RAWa" + 4) - bytes.begin();
  ExpectRefused({"copy", path_, copy_}, 1,
                "at byte " + std::to_string(block) +
                    ": the record \"RAWa\" is cut short: 2 of 3 frames are there");
  EXPECT_FALSE(std::filesystem::exists(copy_));
}

TEST_F(Copy, RefusesADocumentWhoseListHidesWhatFollows) {
  Bytes records;
  AppendRecord(records, "GLBL", {0, 0});
  records[7] = 200;  // more bytes than the file has, so the reader stops after this record
  AppendRecord(records, "COMM", ToBytes("lost"));
  MakeDocument(records);
  ExpectRefused({"copy", path_, copy_}, 1, "at byte 1034: the record \"COMM\" could not be read");
}

TEST_F(Copy, SaysWhatItLeavesOut) {
  Bytes records;
  AppendRecord(records, "Zzzz", {1, 2, 3});
  AppendRecord(records, "COMM", ToBytes("kept"));
  records.insert(records.end(), {'a', 'b', 'c'});
  MakeDocument(records);
  const CommandResult result = RunVex({"copy", path_, copy_});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(
      result.errors,
      "vex: " + path_ +
          ": at byte 1024: left out: the record \"Zzzz\" of 3 bytes, which is of no known kind\n"
          "vex: " +
          path_ + ": at byte 1047: left out: 3 bytes at the end that are no record\n");
  EXPECT_EQ(ReadBytes(copy_).size(), 1024U + 12U);
  ExpectRefused({"copy", path_, path_, "--force", "--drop-unknown"}, 2, "is also an input");
}

TEST_F(Copy, BlocksOfTheOldVersionNeedToBeUpgraded) {
  const std::string old = SourcePath("tests/data/old-block.vex");
  const CommandResult refused = RunVex({"copy", old, copy_});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.errors, HasSubstr("at byte 1024"));
  EXPECT_THAT(refused.errors, HasSubstr("--upgrade"));
  EXPECT_FALSE(std::filesystem::exists(copy_));
  EXPECT_EQ(Output({"copy", "--upgrade", old, copy_}), "");
  EXPECT_EQ(Output({"export", copy_, "--block", "REPn", "--raw"}),
            Output({"export", old, "--block", "REPn", "--raw"}));
}

TEST_F(Copy, RefusesAPlateThatASavedHeaderCannotHold) {
  MakeDocument(Bytes(72 + 4 * 239));
  Bytes bytes = ReadBytes(path_);
  bytes[21] = 239;
  WriteBytes(path_, bytes);
  ExpectRefused({"copy", path_, copy_}, 1, "239 rows");
}

TEST_F(Copy, TargetThatCannotBeWrittenIsNamed) {
  MakeRun();
  const CommandResult result = RunVex({"copy", path_, "/nowhere/copy.vex"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors, "vex: /nowhere/copy.vex: No such file or directory\n");
}

class CopyOfSamples : public SampleDataTest {
 protected:
  /// Whether the document has no unknown records, and all its data blocks can be read back after a
  /// save.
  static bool canBeSaved(const nlohmann::json& component) {
    if (component["kind"] == "data" && component["version"] < 2) return false;
    if (component["kind"] != "unknown" && !vex2::IsKnownTag(component["tag"].get<std::string>())) {
      return false;
    }
    const auto children = component.value("children", nlohmann::json::array());
    return std::all_of(children.begin(), children.end(), canBeSaved);
  }
};

TEST_F(CopyOfSamples, EqualTheirRoundTripsWhereAllKindsAreKnown) {
  int compared = 0;
  for (auto path : SampleFiles("golden", ".json")) {
    const Bytes text = ReadBytes(path);
    const auto components = nlohmann::json::parse(text.begin(), text.end())["components"];
    if (!std::all_of(components.begin(), components.end(), canBeSaved)) continue;
    const TempFolder folder;
    const std::string document = path.replace_extension(".vex");
    EXPECT_EQ(RunVex({"copy", document, folder / "copy.vex"}).exitCode, 0) << document;
    EXPECT_EQ(FirstDifference(ReadBytes(folder / "copy.vex"),
                              ReadBytes(path.replace_extension(".roundtrip.vex"))),
              "")
        << document;
    ++compared;
  }
  EXPECT_GE(compared, 4);
}

}  // namespace vex2::test
