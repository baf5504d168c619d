// Tests the acquisition status in memory and in the header of a file.
#include <gtest/gtest.h>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

std::string refusalOf(const std::string& status) {
  return "The Acquisition Status should be a string 4 characters long. The new value '" + status +
         "' is invalid and won't be used.";
}

class AcquisitionStatus : public TempFolderTest {
 protected:
  RecordingHost host_;
  OpenedManager manager_;
  std::string path_ = folder_ / "run.vex";
};

TEST_F(AcquisitionStatus, IsZeroInANewDocument) {
  EXPECT_EQ(manager_.GetAcquisitionStatus(), CString("ZERO"));
  EXPECT_TRUE(manager_.IsAcquisitionZero());
  EXPECT_FALSE(manager_.IsAcquisitionProg());
  EXPECT_FALSE(manager_.IsAcquisitionDone());
}

TEST_F(AcquisitionStatus, EachCodeAnswersItsOwnQueryAlone) {
  EXPECT_EQ(manager_.SetAcquisitionStatus("PROG"), kSuccess);
  EXPECT_TRUE(manager_.IsAcquisitionProg());
  EXPECT_FALSE(manager_.IsAcquisitionZero() || manager_.IsAcquisitionDone());
  EXPECT_EQ(manager_.SetAcquisitionStatus("DONE"), kSuccess);
  EXPECT_TRUE(manager_.IsAcquisitionDone());
  EXPECT_FALSE(manager_.IsAcquisitionZero() || manager_.IsAcquisitionProg());
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(AcquisitionStatus, FiveCharactersAreReportedAndRefused) {
  EXPECT_EQ(manager_.SetAcquisitionStatus("DONE "), kInvalidStatus);
  EXPECT_EQ(host_.messages, std::vector<std::string>{refusalOf("DONE ")});
  EXPECT_EQ(manager_.GetAcquisitionStatus(), CString("ZERO"));
}

TEST_F(AcquisitionStatus, TooShortTextsAreReportedAndRefused) {
  EXPECT_EQ(manager_.SetAcquisitionStatus("PRO"), kInvalidStatus);
  EXPECT_EQ(manager_.SetAcquisitionStatus(""), kInvalidStatus);
  EXPECT_EQ(manager_.SetAcquisitionStatus(nullptr), kInvalidStatus);
  EXPECT_EQ(host_.messages,
            (std::vector<std::string>{refusalOf("PRO"), refusalOf(""), refusalOf("")}));
  EXPECT_TRUE(manager_.IsAcquisitionZero());
}

TEST_F(AcquisitionStatus, LowerCaseInTheHeaderAnswersNoQuery) {
  Bytes header = StoredHeader();
  std::copy_n("prog", 4, header.begin() + 64);
  WriteBytes(path_, header);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(manager_.GetAcquisitionStatus(), CString("prog"));
  EXPECT_FALSE(manager_.IsAcquisitionZero() || manager_.IsAcquisitionProg() ||
               manager_.IsAcquisitionDone());
}

TEST_F(AcquisitionStatus, GoesToByte64OfTheFileAndNowhereElse) {
  const Bytes before = Join({StoredHeader(), StoredBlock("RAWa", 1, 1)});
  WriteBytes(path_, before);
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "PROG"), kSuccess);
  Bytes expected = before;
  std::copy_n("PROG", 4, expected.begin() + 64);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), expected), "");
  EXPECT_TRUE(manager_.IsAcquisitionProg());
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(AcquisitionStatus, FileOf64BytesIsTooShortAndStays) {
  const Bytes before = Slice(StoredHeader(), 0, 64);
  WriteBytes(path_, before);
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "PROG"), kWriteFailed);
  EXPECT_EQ(ReadBytes(path_), before);
  EXPECT_TRUE(manager_.IsAcquisitionProg());
}

TEST_F(AcquisitionStatus, FileOf65BytesTakesIt) {
  WriteBytes(path_, Slice(StoredHeader(), 0, 65));
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "PROG"), kSuccess);
  EXPECT_EQ(ReadBytes(path_), Join({Slice(StoredHeader(), 0, 64), ToBytes("PROG")}));
}

TEST_F(AcquisitionStatus, InvalidTextForAFileIsReportedOnceAndLeavesTheFile) {
  WriteBytes(path_, StoredHeader());
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "DONE "), kWriteFailed);
  EXPECT_EQ(host_.messages, std::vector<std::string>{refusalOf("DONE ")});
  EXPECT_EQ(ReadBytes(path_), StoredHeader());
}

TEST_F(AcquisitionStatus, WithoutADocumentItIsSetInMemoryOnly) {
  EXPECT_EQ(manager_.SetAcquisitionStatus(nullptr, "PROG"), kWriteFailed);
  EXPECT_EQ(manager_.SetAcquisitionStatus((folder_ / "none").c_str(), "PROG"), kWriteFailed);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "none"));
  WriteBytes(path_, Bytes(2000, 'x'));
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "PROG"), kWriteFailed);
  EXPECT_EQ(ReadBytes(path_), Bytes(2000, 'x'));
  EXPECT_TRUE(manager_.IsAcquisitionProg());
}

TEST_F(AcquisitionStatus, ReadOnlyFileIsRefused) {
  WriteBytes(path_, StoredHeader());
  FaultyFileSystem files;
  files.RefuseWriters(EACCES);
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "PROG"), kWriteFailed);
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(ReadBytes(path_), StoredHeader());
}

TEST_F(AcquisitionStatus, IsOnTheDiskWhenSettingReturns) {
  WriteBytes(path_, StoredHeader());
  FaultyFileSystem files;
  files.FailKind(FileCall::syncData, EIO);
  EXPECT_EQ(manager_.SetAcquisitionStatus(path_.c_str(), "PROG"), kWriteFailed);
  files.Restart();
  OpenedManager another;
  EXPECT_EQ(another.SetAcquisitionStatus(path_.c_str(), "PROG"), kSuccess);
}

}  // namespace
}  // namespace vex2::test
