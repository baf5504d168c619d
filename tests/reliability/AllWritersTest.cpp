// Runs every operation that writes to files, so that a memory checker can find uninitialised bytes
// that would get into a document. Without a memory checker it tests that all of these operations
// work.
#include <gtest/gtest.h>

#include "tests/reliability/FilledDocuments.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

class AllWriters : public TempFolderTest {
 protected:
  // Makes a document with all kinds of records. Fields that need not be set keep their default
  // values.
  static void fill(Vex2FileManager& document) {
    FillProgram(document, 3);
    FillWells(document, 2);
    FillDetectors(document, 2);
    FillDyes(document, 2);
    FillCalibration(document, 2);
    Vex2GlobalComplex settings;
    ASSERT_EQ(document.ReplaceGlobalComplexComp(&settings), kSuccess);
  }

  SilentHost host_;
  std::string path_ = folder_ / "document.vex";
  const char* file_ = path_.c_str();
};

TEST_F(AllWriters, SaveDocuments) {
  Vex2FileManager document;
  ASSERT_EQ(document.SaveToFile(file_), kSuccess);
  fill(document);
  FillFrames(document, 2);
  EXPECT_EQ(document.SaveToFile(file_), kSuccess);
  EXPECT_EQ(document.SaveSetupInfo(file_), kSuccess);
  EXPECT_EQ(document.SaveCalibrationInfo(file_), kSuccess);
  EXPECT_EQ(document.SaveHeader(file_, Vex2HeaderData()), kSuccess);
  Vex2FileManager study;
  FillStudy(study, 2);
  fill(study);
  EXPECT_EQ(study.SaveToFile(file_), kSuccess);
  Vex2FileManager reader;
  EXPECT_EQ(reader.ReadFromFile(file_), kSuccess);
  EXPECT_EQ(reader.GetRQPlateCount(), 2);
  EXPECT_EQ(reader.SaveToFile(file_), kSuccess);
}

TEST_F(AllWriters, RecordRuns) {
  OpenedManager document;
  fill(document);
  ASSERT_EQ(document.SaveToFile(file_), kSuccess);
  EXPECT_EQ(document.SetAcquisitionStatus(file_, "PROG"), kSuccess);
  const auto numbers = WellNumbers(96);
  document.InitAcqDataWellNumberArray(numbers.data(), 96, DataRAWa);
  Vex2WellRecord record;
  record.leading[0] = 1;
  for (int frame = 0; frame < 3; ++frame) {  // one well of each frame is filled
    EXPECT_TRUE(document.SetAcqDataWellRecord(&record, frame, 7, DataRAWa));
    EXPECT_EQ(document.CommitAcqDataFrame(file_, frame, DataRAWa), kSuccess);
  }
  Vex2FrameData shorter(5);
  EXPECT_EQ(document.AppendAcquisitionDataFrame(file_, &shorter, DataRAWa), kSuccess);
  EXPECT_EQ(document.SetAcquisitionStatus(file_, "DONE"), kSuccess);
  Vex2FileManager reader;
  EXPECT_EQ(reader.ReadFromFile(file_), kSuccess);
  EXPECT_EQ(reader.GetDataFrameCount(DataRAWa), 4);
}

TEST_F(AllWriters, AppendAndReplaceRecords) {
  OpenedManager document;
  fill(document);
  ASSERT_EQ(document.SaveToFile(file_), kSuccess);
  Vex2GlobalComplex settings;
  EXPECT_EQ(document.AppendGlobalComplexComp(file_, &settings), kSuccess);
  EXPECT_EQ(document.AppendDetectorListToFile(file_), kSuccess);
  EXPECT_EQ(document.AppendRequiredDyeListToFile(file_), kSuccess);
  const Vex2PureDye dyes;
  EXPECT_EQ(document.AppendPureDye(file_, &dyes), kSuccess);
  Vex2BGC background;
  background.SetEntryCount(1);
  EXPECT_EQ(document.AppendBackground(file_, &background), kSuccess);
  EXPECT_EQ(document.ReplaceBackground(file_, &background), kSuccess);
  Vex2FrameData frame(2);
  Vex2AcquisitionData data;
  data.frames = &frame;
  data.frameCount = 1;
  for (const auto type : {DataREPr, DataREPn, DataREPr, DataRAWa, DataRAWa}) {
    EXPECT_EQ(document.ReplaceAcquisitionDataBlock(file_, &data, type), kSuccess);
  }
  EXPECT_EQ(document.AppendAcquisitionDataBlock(file_, &data), kSuccess);
}

// A write of uninitialised bytes, to see that the memory checker reports it.
TEST_F(AllWriters, DISABLED_WriteWhatWasNeverSet) {
  const std::unique_ptr<char[]> never(new char[16]);
  CFile file;
  ASSERT_TRUE(file.Open(file_, CFile::modeWrite | CFile::modeCreate));
  file.Write(never.get(), 16);
  file.Close();
}

}  // namespace
}  // namespace vex2::test
