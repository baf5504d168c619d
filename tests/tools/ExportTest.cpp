#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/tools/DocumentFixture.h"

using testing::EndsWith;
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

  static std::string textOf(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }
};

TEST_F(Export, HasARowForEachWellAndFrame) {
  MakeRecordedRun();
  EXPECT_EQ(Output({"export", path_, "--format", "csv"}), kTable);
  EXPECT_EQ(Output({"export", path_}), kTable);
}

TEST_F(Export, OfSeveralDocumentsWritesAFileOfEach) {
  MakeRecordedRun();
  const std::string other = folder_ / "other.vex";
  std::filesystem::copy_file(path_, other);
  const std::string name = std::filesystem::path(path_).stem();
  const std::filesystem::path tables = folder_ / "new/tables";
  EXPECT_EQ(Output({"export", "-j", "2", path_, other, "-o", tables}), "");
  for (const std::string& each : {name, std::string("other")}) {
    EXPECT_EQ(textOf(tables / (each + ".csv")), kTable);
  }
  const std::string list = folder_ / "list.txt";
  std::ofstream(list) << path_ << '\n' << other << '\n';
  EXPECT_EQ(RunVex({"export", "@" + list, "--format", "rdes", "-o", tables}).exitCode, 0);
  for (const char* file : {"other.tsv", "other-melt.tsv"}) {
    EXPECT_TRUE(std::filesystem::exists(tables / file)) << file;
  }
}

TEST_F(Export, OfSeveralDocumentsRefusesBeforeItWritesAny) {
  MakeRecordedRun();
  const std::string other = folder_ / "other.vex";
  std::filesystem::copy_file(path_, other);
  const auto refusalOf = [&](const VexProcess::Arguments& arguments) {
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, 2) << result.errors;
    EXPECT_EQ(result.output, "");
    return result.errors;
  };
  EXPECT_EQ(refusalOf({"export", path_, other}),
            "vex: of several documents each gets a file of its own; name a folder with -o\n");
  const std::string tables = folder_ / "tables";
  EXPECT_EQ(refusalOf({"export", path_, other, "-o", tables, "--report", folder_ / "losses.json"}),
            "vex: --report is for one document; export them one by one\n");
  std::filesystem::create_directories(tables);
  const std::string inTheWay = tables + "/other.csv";
  std::ofstream(inTheWay) << "mine";
  EXPECT_EQ(refusalOf({"export", path_, other, "-o", tables}),
            "vex: " + inTheWay + ": already exists; use --force to overwrite it\n");
  std::filesystem::create_directories(folder_ / "again");
  std::filesystem::copy_file(path_, folder_ / "again/other.vex");
  EXPECT_THAT(refusalOf({"export", other, folder_ / "again/other.vex", "-o", tables, "--force"}),
              HasSubstr("is given for two outputs"));
  EXPECT_EQ(textOf(inTheWay), "mine");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tables), {}), 1);
}

TEST_F(Export, OfSeveralDocumentsGoesOnAfterAnError) {
  MakeRecordedRun();
  const std::string damaged = folder_ / "damaged.vex";
  std::ofstream(damaged) << "no document";
  const std::string tables = folder_ / "tables";
  const CommandResult result = RunVex({"export", "-j", "2", damaged, path_, "-o", tables});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, StartsWith("vex: " + damaged + ": "));
  const std::string name = std::filesystem::path(path_).stem();
  EXPECT_EQ(textOf(tables + "/" + name + ".csv"), kTable);
}

TEST_F(Export, InventsNothingForReadingsOfAnotherProgram) {
  for (const char* log : {"", "no scale", "scale=100\n", "frames=3\nscale=100\n",
                          "source=readings\nframes=3\nscale=100\nand more\n",
                          "source=readings\nscale=100\n", "source=other\nframes=3\nscale=100\n",
                          "source=readings\nframes=3\nscale=100\nscale=10\n"}) {
    MakeRun("DONE", log);
    const CommandResult result = RunVex({"export", path_});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output,
                StartsWith("well,frame,stage,cycle,time_s,temperature_c,fluorescence\n"
                           "A1,0,,,,,\nA1,1,,,,,\nA1,2,,,,,\nA2,0,,,,,\n"))
        << log;
    EXPECT_EQ(result.errors, "vex: " + path_ +
                                 ": leaves 9 of 9 readings empty: vex did not record them and does "
                                 "not know their meaning; use --raw for the stored values\n");
  }
}

TEST_F(Export, KnowsRecordedReadingsAfterOtherLinesOfTheLog) {
  MakeRun("DONE", std::string("operator=me\nscale=7\nfree text\n") + kRunLog);
  EXPECT_EQ(Output({"export", path_}), kTable);
}

TEST_F(Export, FramesOfOtherProgramsAreLeftEmpty) {
  MakeRun("DONE", "source=readings\nframes=2\nscale=100\n");
  const CommandResult result = RunVex({"export", path_});
  EXPECT_THAT(result.output, HasSubstr("A1,1,amplification,2,65.653,59.82,1.01\nA1,2,,,,,\n"));
  EXPECT_THAT(result.errors, HasSubstr("leaves 3 of 9 readings empty"));
}

TEST_F(Export, ReadingsChangedByOtherProgramsAreLeftEmpty) {
  for (const std::size_t fromEnd :
       {79U, 73U, 71U, 65U, 61U, 1U}) {  // before the end of the last record
    MakeRecordedRun();
    Bytes bytes = ReadBytes(path_);
    bytes[bytes.size() - fromEnd] = 9;
    WriteBytes(path_, bytes);
    const CommandResult result = RunVex({"export", path_});
    EXPECT_THAT(result.output, EndsWith("A3,1,amplification,2,65.653,59.82,3.01\nA3,2,,,,,\n"))
        << fromEnd;
  }
}

TEST_F(Export, PrintsStoredValuesOfAnyDocument) {
  for (const char* log : {kRunLog, ""}) {
    MakeRun("DONE", log);
    const std::string table = Output({"export", path_, "--raw"});
    EXPECT_THAT(table, StartsWith("well,number,frame,leading_0,leading_1,leading_2,leading_3,"
                                  "leading_4,leading_5,leading_6,leading_7,data_0,data_1,"));
    EXPECT_THAT(table, HasSubstr(",data_31\nA1,1,0,1,1,5982,0,100,0,117,0,100,0,0,"));
    EXPECT_THAT(table, HasSubstr("\nA3,3,2,1,1,5982,1,65000,2,117,0,302,0,"));
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 10);
    EXPECT_EQ(std::count(table.begin(), table.end(), ','), 10 * 42);
  }
}

TEST_F(Export, GoesToAFileToo) {
  MakeRecordedRun();
  const std::string table = folder_ / "run.csv";
  EXPECT_EQ(Output({"export", path_, "-o", table}), "");
  EXPECT_EQ(ReadBytes(table), ToBytes(kTable));
}

TEST_F(Export, NeverToItsOwnDocument) {
  MakeRecordedRun();
  const Bytes before = ReadBytes(path_);
  ExpectRefused({"export", path_, "-o", path_}, 2, "is also an input");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(Export, FailureToWriteIsTheSystemsFault) {
  MakeRecordedRun();
  const CommandResult full = RunVex({"export", path_, "-o", "/dev/full"});
  EXPECT_EQ(full.exitCode, 3);
  EXPECT_EQ(full.errors, "vex: /dev/full: No space left on device\n");
  EXPECT_EQ(RunVex({"export", path_, "-o", "/nowhere/run.csv"}).exitCode, 2);
}

TEST_F(Export, AFrameThatWasNotCommittedIsLeftOut) {
  MakeRecordedRun("PROG");
  Bytes bytes = ReadBytes(path_);
  bytes.insert(bytes.end(), bytes.end() - 240, bytes.end() - 100);
  WriteBytes(path_, bytes);
  const CommandResult result = RunVex({"export", path_});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, kTable);
  EXPECT_EQ(result.errors, "vex: " + path_ +
                               ": its run is in progress; the table ends with the last frame "
                               "committed so far\n");
}

TEST_F(Export, AMissingBlockIsAProblemInTheDocument) {
  MakeRecordedRun();
  ExpectRefused({"export", path_, "--block", "REPd"}, 1, "it has no data block \"REPd\"");
}

TEST_F(Export, ABlockThatIsLostIsSaidToBe) {
  MakeRecordedRun();
  Bytes bytes = ReadBytes(path_);
  bytes.pop_back();
  WriteBytes(path_, bytes);
  ExpectRefused({"export", path_}, 1, "2 of 3 frames are there");
}

/// Makes a document with a block of wells A1 and B2, of which only B2 has a reading.
void makeBlock(const std::string& path, Vex2DataType type) {
  Vex2FileManager document;
  const std::string log = "source=readings\nframes=1\nscale=1\n";
  Vex2GlobalComplex settings;
  settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  EXPECT_EQ(document.ReplaceGlobalComplexComp(&settings), kSuccess);
  const std::uint16_t wells[] = {1, 14};
  document.InitAcqDataWellNumberArray(wells, 2, type);
  const Vex2WellRecord record = lab::EncodeReading({.cycle = 1, .values = {5}}, false);
  ASSERT_TRUE(document.SetAcqDataWellRecord(&record, 0, 14, type));
  ASSERT_EQ(document.SaveToFile(path.c_str()), 0);
}

TEST_F(Export, AWellThatGaveNothingHasARowWithoutNumbers) {
  makeBlock(path_, DataRAWa);
  EXPECT_EQ(Output({"export", path_}),
            "well,stage,cycle,time_s,temperature_c,fluorescence\nA1,,,,,\n"
            "B2,amplification,1,0,0,5\n");
}

TEST_F(Export, ReportingBlocksAreAnotherProgramsInAnyDocument) {
  makeBlock(path_, DataREPt);
  EXPECT_EQ(RunVex({"export", path_, "--block", "REPt"}).output,
            "well,frame,stage,cycle,time_s,temperature_c,fluorescence\nA1,0,,,,,\nB2,0,,,,,\n");
}

}  // namespace vex2::test
