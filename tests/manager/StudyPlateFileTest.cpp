// Tests plates that a study reads from their files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {
namespace {

class StudyPlateFile : public TempFolderTest {
 protected:
  StudyPlateFile() {
    EXPECT_EQ(document_.SetCalibrator("before"), kSuccess);
    document_.SetFilePath("/runs/before.vex");
  }
  std::string savedPlate(const char* kind = "Kest") {
    Vex2FileManager plate;
    Vex2HeaderData header = plate.GetHeaderData();
    std::copy_n(kind, 4, header.kindMarker);
    plate.SetHeaderData(header);
    EXPECT_EQ(plate.SetCalibrator("read"), kSuccess);
    std::string path = folder_ / "plate.vex";
    EXPECT_EQ(plate.SaveToFile(path.c_str()), kSuccess);
    return path;
  }
  int read(const std::string& path) {
    return document_.ReadRQPFromFile(nullptr, path.c_str(), false, date_);
  }
  void expectUntouched() {
    EXPECT_EQ(date_, "unset");
    EXPECT_FALSE(document_.IsOpen());
    CString calibrator;
    EXPECT_EQ(document_.GetCalibrator(calibrator), kSuccess);
    EXPECT_EQ(calibrator, "before");
  }

  RecordingHost host_;
  Vex2FileManager document_;
  CString date_ = "unset";
};

TEST_F(StudyPlateFile, IsReadAndClosedAndItsPathKept) {
  const std::string path = savedPlate();
  EXPECT_EQ(read(path), kSuccess);
  CString calibrator;
  EXPECT_EQ(document_.GetCalibrator(calibrator), kSuccess);
  EXPECT_EQ(calibrator, "read");
  EXPECT_EQ(document_.GetFilePath(), path.c_str());
  EXPECT_FALSE(document_.IsOpen());
  Vex2FileManager study;
  EXPECT_TRUE(study.AddRQPlate(&document_, date_));
  EXPECT_NE(study.GetSinglePlatePtrByName("plate"), nullptr);
  EXPECT_FALSE(study.AddRQPlate(&document_, date_));
}

TEST_F(StudyPlateFile, SaysWhenItWasChangedInLocalTime) {
  const std::string path = savedPlate();
  for (const auto& [hour, text] :
       {std::pair(14, "Mar 05, 2003 02:07 PM"), std::pair(0, "Mar 05, 2003 12:07 AM")}) {
    std::tm local{};
    local.tm_year = 103;
    local.tm_mon = 2;
    local.tm_mday = 5;
    local.tm_hour = hour;
    local.tm_min = 7;
    local.tm_isdst = -1;
    const timespec times[] = {{std::mktime(&local), 0}, {std::mktime(&local), 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    EXPECT_EQ(read(path), kSuccess);
    EXPECT_EQ(date_, text);
  }
}

TEST_F(StudyPlateFile, IsNeverChosenByTheUser) {
  const std::string path = savedPlate();
  EXPECT_EQ(document_.ReadRQPFromFile(nullptr, nullptr, false, date_), kCancelled);
  EXPECT_EQ(document_.ReadRQPFromFile(nullptr, path.c_str(), true, date_), kCancelled);
  expectUntouched();
  CString chosen = "kept";
  CString folder;
  EXPECT_FALSE(Vex2FileManager::RQSOpenFile(nullptr, chosen, folder, "", nullptr, "vex", nullptr,
                                            "Select RQ Plate(s)", 1));
  EXPECT_EQ(chosen, "kept");
  EXPECT_TRUE(host_.chooserRequests.empty());
}

TEST_F(StudyPlateFile, ThatIsNotThereIsNotOpened) {
  EXPECT_EQ(read(folder_ / "missing.vex"), kReadFailed);
  expectUntouched();
}

TEST_F(StudyPlateFile, OfAnotherFormatLeavesTheDocumentAsItWas) {
  const std::string path = folder_ / "notes.txt";
  WriteBytes(path, ToBytes("Plate notes, nothing more."));
  EXPECT_EQ(read(path), kPlateNotADocument);
  expectUntouched();
  EXPECT_EQ(document_.GetFilePath(), "/runs/before.vex");
}

TEST_F(StudyPlateFile, OfAnotherKindLeavesTheDocumentAsItWas) {
  for (const char* kind : {"Blue", "kest", "    "}) {
    EXPECT_EQ(read(savedPlate(kind)), kPlateOfOtherKind) << kind;
    expectUntouched();
    EXPECT_EQ(document_.GetFilePath(), "/runs/before.vex");
  }
}

TEST_F(StudyPlateFile, ThatEndsWithinARecordGivesTheStatusOfTheRead) {
  const std::string path = savedPlate();
  Bytes bytes = ReadBytes(path);
  bytes.resize(bytes.size() - 2);
  WriteBytes(path, bytes);
  EXPECT_EQ(read(path), kReadFailed);
  EXPECT_FALSE(document_.IsOpen());
  EXPECT_NE(date_, "unset") << "when it was changed is known all the same";
}

TEST_F(StudyPlateFile, ThatCannotBeReadIsNotTakenForOneOfAnotherFormat) {
  const std::string path = savedPlate();
  FaultyFileSystem files;
  ASSERT_EQ(read(path), kSuccess);
  const int calls = files.CallCount();
  ASSERT_GE(calls, 4);
  int failures = 0;
  for (int call = 0; call < calls; ++call) {
    SCOPED_TRACE("call " + std::to_string(call));
    files.Restart();
    files.FailCall(call, EIO, true);
    const int status = read(path);
    EXPECT_TRUE(status == kReadFailed || status == kSuccess) << status;
    EXPECT_FALSE(document_.IsOpen());
    if (status != kSuccess) ++failures;
    files.Restart();
    EXPECT_EQ(read(path), kSuccess);
  }
  EXPECT_GE(failures, 2);
}

TEST_F(StudyPlateFile, ThatComesInSmallPiecesIsReadWhole) {
  const std::string path = savedPlate();
  FaultyFileSystem files;
  files.Shorten(7, true);
  EXPECT_EQ(read(path), kSuccess);
  CString calibrator;
  EXPECT_EQ(document_.GetCalibrator(calibrator), kSuccess);
  EXPECT_EQ(calibrator, "read");
}

TEST_F(StudyPlateFile, OfAStudyIsKeptWholeOrAsItWasWhenItsSaveFails) {
  const std::string path = folder_ / "study.vex";
  ASSERT_EQ(read(savedPlate()), kSuccess);
  Vex2FileManager study;
  Vex2HeaderData header = study.GetHeaderData();
  std::copy_n("RQSt", 4, header.assayCode);
  study.SetHeaderData(header);
  study.InitMultiplate();
  ASSERT_EQ(study.SaveToFile(path.c_str()), kSuccess);
  const Bytes old = ReadBytes(path);
  ASSERT_TRUE(study.AddRQPlate(&document_, date_));
  FaultyFileSystem files;
  ASSERT_EQ(study.SaveToFile(path.c_str()), kSuccess);
  const Bytes whole = ReadBytes(path);
  const int calls = files.CallCount();
  for (int call = 0; call < calls; ++call) {
    SCOPED_TRACE("call " + std::to_string(call));
    WriteBytes(path, old);
    files.Restart();
    files.FailCall(call, EIO, true);
    const int status = study.SaveToFile(path.c_str());
    EXPECT_TRUE(status == kSuccess || status == kWriteFailed) << status;
    const Bytes after = ReadBytes(path);
    EXPECT_TRUE(after == whole || (status == kWriteFailed && after == old));
    EXPECT_FALSE(study.IsOpen());
  }
  files.Restart();
  EXPECT_EQ(study.SaveToFile(path.c_str()), kSuccess);
  EXPECT_EQ(ReadBytes(path), whole);
}

}  // namespace
}  // namespace vex2::test
