#include "tests/tools/DocumentFixture.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace vex2::test {

class Export : public DocumentTest {
 protected:
  static constexpr const char* kTable =
      "well,stage,cycle,time_s,temperature_c,fluorescence\n"
      "A1,amplification,1,0.117,59.82,1\n"
      "A1,amplification,2,65.653,59.82,1.01\n"
      "A1,melt,1,131.189,59.82,1.02\n"
      "A2,amplification,1,0.117,59.82,2\n"
      "A2,amplification,2,65.653,59.82,2.01\n"
      "A2,melt,1,131.189,59.82,2.02\n"
      "A3,amplification,1,0.117,59.82,3\n"
      "A3,amplification,2,65.653,59.82,3.01\n"
      "A3,melt,1,131.189,59.82,3.02\n";
};

TEST_F(Export, HasARowForEachWellAndFrame) {
  MakeRun();
  EXPECT_EQ(Output({"export", path_, "--format", "csv"}), kTable);
  EXPECT_EQ(Output({"export", path_}), kTable);
}

TEST_F(Export, WithoutAScaleValuesAreAsStored) {
  MakeRun("DONE", "no scale");
  EXPECT_THAT(Output({"export", path_}), HasSubstr("A1,amplification,2,65.653,59.82,101\n"));
}

TEST_F(Export, GoesToAFileToo) {
  MakeRun();
  const std::string table = folder_ / "run.csv";
  EXPECT_EQ(Output({"export", path_, "-o", table}), "");
  EXPECT_EQ(ReadBytes(table), ToBytes(kTable));
}

TEST_F(Export, NeverToItsOwnDocument) {
  MakeRun();
  const Bytes before = ReadBytes(path_);
  ExpectRefused({"export", path_, "-o", path_}, 2, "would take the place of its own document");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(Export, FailureToWriteIsTheSystemsFault) {
  MakeRun();
  const CommandResult full = RunVex({"export", path_, "-o", "/dev/full"});
  EXPECT_EQ(full.exitCode, 3);
  EXPECT_EQ(full.errors, "vex: /dev/full: No space left on device\n");
  EXPECT_EQ(RunVex({"export", path_, "-o", "/nowhere/run.csv"}).exitCode, 2);
}

TEST_F(Export, AFrameThatWasNotCommittedIsLeftOut) {
  MakeRun("PROG");
  Bytes bytes = ReadBytes(path_);
  bytes.insert(bytes.end(), bytes.end() - 240, bytes.end() - 100);
  WriteBytes(path_, bytes);
  EXPECT_EQ(Output({"export", path_}), kTable);
}

TEST_F(Export, ABlockThatIsNotThereIsTheDocumentsFault) {
  MakeRun();
  ExpectRefused({"export", path_, "--block", "REPd"}, 1, "it has no data block \"REPd\"");
}

TEST_F(Export, ABlockThatIsLostIsSaidToBe) {
  MakeRun();
  Bytes bytes = ReadBytes(path_);
  bytes.pop_back();
  WriteBytes(path_, bytes);
  ExpectRefused({"export", path_}, 1, "2 of 3 frames are there");
}

TEST_F(Export, AWellThatGaveNothingHasARowWithoutNumbers) {
  Vex2FileManager document;
  const std::uint16_t wells[] = {1, 14};
  document.InitAcqDataWellNumberArray(wells, 2, DataREPt);
  const Vex2WellRecord record = tool::EncodeReading({.cycle = 1, .value = 5}, false);
  ASSERT_TRUE(document.SetAcqDataWellRecord(&record, 0, 14, DataREPt));
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(Output({"export", path_, "--block", "REPt"}),
            "well,stage,cycle,time_s,temperature_c,fluorescence\nA1,,,,,\n"
            "B2,amplification,1,0,0,5\n");
}

}  // namespace vex2::test
