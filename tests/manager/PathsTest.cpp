// Tests the rules for all operations with a path: a null path changes nothing, and appending a
// record needs no permission to read.
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

struct PathOperation {
  const char* name;
  int withoutPath;  ///< the status for null
  std::function<int(OpenedManager&, const char*)> call;
};

void PrintTo(const PathOperation& operation, std::ostream* out) {
  *out << operation.name;
}

Vex2AcquisitionData blockOf(Vex2FrameData& frame) {
  return {&frame, 1};
}

// Names each test after its operation.
std::string named(const testing::TestParamInfo<PathOperation>& operation) {
  return operation.param.name;
}

const std::vector<PathOperation> kAppending = {
    {"AppendGlobalComplexComp", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       const Vex2GlobalComplex settings;
       return document.AppendGlobalComplexComp(path, &settings);
     }},
    {"AppendDetectorListToFile", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       return document.AppendDetectorListToFile(path);
     }},
    {"AppendRequiredDyeListToFile", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       return document.AppendRequiredDyeListToFile(path);
     }},
    {"AppendPureDye", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       const Vex2PureDye dyes;
       return document.AppendPureDye(path, &dyes);
     }},
    {"AppendBackground", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       const Vex2BGC background;
       return document.AppendBackground(path, &background);
     }},
};

const std::vector<PathOperation> kOthers = {
    {"SafeOpenForReading", 0,
     [](OpenedManager& document, const char* path) { return document.SafeOpen(path, 0, 0); }},
    {"SafeOpenForWriting", 0,
     [](OpenedManager& document, const char* path) { return document.SafeOpen(path, 1, 0); }},
    {"SafeOpenForAppending", 0,
     [](OpenedManager& document, const char* path) { return document.SafeOpen(path, 1, 1); }},
    {"ReadFromFile", kCancelled,
     [](OpenedManager& document, const char* path) { return document.ReadFromFile(path); }},
    {"SaveToFile", kCancelled,
     [](OpenedManager& document, const char* path) { return document.SaveToFile(path); }},
    {"SaveHeader", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       return document.SaveHeader(path, Vex2HeaderData());
     }},
    {"ReadRQPFromFile", kCancelled,
     [](OpenedManager& document, const char* path) {
       CString date;
       return document.ReadRQPFromFile(nullptr, path, false, date);
     }},
    {"SaveSetupInfo", kWriteFailed,
     [](OpenedManager& document, const char* path) { return document.SaveSetupInfo(path); }},
    {"SaveCalibrationInfo", kWriteFailed,
     [](OpenedManager& document, const char* path) { return document.SaveCalibrationInfo(path); }},
    {"ReplaceBackground", kReadFailed,
     [](OpenedManager& document, const char* path) {
       const Vex2BGC background;
       return document.ReplaceBackground(path, &background);
     }},
    {"AppendAcquisitionDataBlock", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       Vex2FrameData frame = MakeFrame(2, 0);
       const Vex2AcquisitionData data = blockOf(frame);
       return document.AppendAcquisitionDataBlock(path, &data);
     }},
    {"ReplaceAcquisitionDataBlockOfRawData", kReadFailed,
     [](OpenedManager& document, const char* path) {
       Vex2FrameData frame = MakeFrame(2, 0);
       const Vex2AcquisitionData data = blockOf(frame);
       return document.ReplaceAcquisitionDataBlock(path, &data, DataRAWa);
     }},
    {"ReplaceAcquisitionDataBlockOfAReport", kReadFailed,
     [](OpenedManager& document, const char* path) {
       Vex2FrameData frame = MakeFrame(2, 0);
       const Vex2AcquisitionData data = blockOf(frame);
       return document.ReplaceAcquisitionDataBlock(path, &data, DataREPr);
     }},
    {"AppendAcquisitionDataFrame", kReadFailed,
     [](OpenedManager& document, const char* path) {
       const Vex2FrameData frame = MakeFrame(2, 0);
       return document.AppendAcquisitionDataFrame(path, &frame, DataRAWa);
     }},
    {"AppendAcquisitionDataFrameOfAReport", kSuccess,
     [](OpenedManager& document, const char* path) {
       const Vex2FrameData frame = MakeFrame(2, 0);
       return document.AppendAcquisitionDataFrame(path, &frame, DataREPr);
     }},
    {"CommitAcqDataFrame", kReadFailed,
     [](OpenedManager& document, const char* path) {
       return document.CommitAcqDataFrame(path, 0, DataRAWa);
     }},
    {"GetDataFrameCount", kReadFailed,
     [](OpenedManager& document, const char* path) {
       int count = 0;
       return document.GetDataFrameCount(path, count, DataRAWa);
     }},
    {"ReadDataFrame", kReadFailed,
     [](OpenedManager& document, const char* path) {
       Vex2FrameData frame;
       return document.ReadDataFrame(path, 0, &frame, DataREPr);
     }},
    {"SetAcquisitionStatus", kWriteFailed,
     [](OpenedManager& document, const char* path) {
       return document.SetAcquisitionStatus(path, "PROG");
     }},
};

class AnyPath : public TempFolderTest, public testing::WithParamInterface<PathOperation> {
 protected:
  // Makes a document with all records that the operations look for.
  void fill(OpenedManager& document) const {
    Vex2Detector detector;
    detector.name = "MYC";
    ASSERT_EQ(document.AppendDetectorInfo(&detector), kSuccess);
    ASSERT_TRUE(document.AppendRequiredDyenfo("FAM"));
    ASSERT_EQ(document.ReplaceCalibComponent(nullptr, nullptr), kSuccess);
    ASSERT_EQ(document.ReplacePlateSetup(nullptr), kSuccess);
    ASSERT_EQ(document.ReplaceThermocycleProgram(nullptr), kSuccess);
    const std::uint16_t wells[] = {1, 2};
    document.InitAcqDataWellNumberArray(wells, 2, DataRAWa);
  }

  SilentHost host_;
  std::string path_ = folder_ / "run.vex";
};

using NullPath = AnyPath;

TEST_P(NullPath, LeavesTheStoredPathAndTheOpenFile) {
  OpenedManager document;
  fill(document);
  WriteBytes(path_, ToBytes("old "));
  ASSERT_EQ(document.SafeOpen(path_.c_str(), 1, 1), 1);
  document.Write("unwritten", 9);
  EXPECT_EQ(GetParam().call(document, nullptr), GetParam().withoutPath);
  EXPECT_EQ(document.GetFilePath(), path_.c_str());
  ASSERT_TRUE(document.IsOpen());
  EXPECT_EQ(document.GetPosition(), 13U);
  document.Close();
  EXPECT_EQ(ReadBytes(path_), ToBytes("old unwritten"));
}

INSTANTIATE_TEST_SUITE_P(Appending, NullPath, testing::ValuesIn(kAppending), named);
INSTANTIATE_TEST_SUITE_P(Other, NullPath, testing::ValuesIn(kOthers), named);

using UnreadableFile = AnyPath;

TEST_P(UnreadableFile, TakesTheRecordAtItsEnd) {
  OpenedManager document;
  fill(document);
  WriteBytes(path_, StoredHeader());
  ASSERT_EQ(GetParam().call(document, path_.c_str()), kSuccess);
  const Bytes expected = ReadBytes(path_);
  ASSERT_GT(expected.size(), 1024U);
  WriteBytes(path_, StoredHeader());
  {
    FaultyFileSystem files;
    files.RefuseReaders(EACCES);
    EXPECT_EQ(GetParam().call(document, path_.c_str()), kSuccess);
  }
  EXPECT_FALSE(document.IsOpen());
  EXPECT_EQ(FirstDifference(ReadBytes(path_), expected), "");
}

INSTANTIATE_TEST_SUITE_P(Appending, UnreadableFile, testing::ValuesIn(kAppending), named);

}  // namespace
}  // namespace vex2::test
