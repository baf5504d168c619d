// Tests documents that were read only in part: the manager reports it, and the content of the file
// is never lost.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/support/DocumentBytes.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/SilentHost.h"
#include "tests/support/StudyDocument.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

namespace fs = std::filesystem;

const std::string kCalibrator = Record("CALR", "one");
const std::string kEndoControl = Record("ENDO", "two");

class PartlyRead : public TempFolderTest {
 protected:
  Bytes documentWith(const std::string& records) {
    return Join({StoredHeader(), ToBytes(records)});
  }
  void write(const std::string& records) { WriteBytes(path_, documentWith(records)); }
  // A document whose second record cannot be read.
  Bytes writeDamaged() {
    write(kCalibrator + RecordDeclaring("ENDO", 5000, "cut") + kEndoControl);
    return ReadBytes(path_);
  }
  void expectFault(const std::string& records, std::uint64_t offset, const char* reason) {
    write(records);
    Vex2FileManager document;
    EXPECT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_FALSE(document.IsWhole()) << reason;
    EXPECT_EQ(document.GetReadFault().offset, offset) << reason;
    EXPECT_STREQ(document.GetReadFault().reason, reason);
  }
  std::size_t filesInFolder() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.Path()), {}));
  }
  // Reads a document in part from `path_` and calls `operation`, which replaces the file. Checks
  // that a backup is made.
  template <typename Operation>
  void expectBackup(Operation operation, int expected = kSuccess) {
    const Bytes before = writeDamaged();
    Vex2FileManager document;
    ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
    ASSERT_FALSE(document.IsWhole());
    EXPECT_EQ(operation(document), expected);
    EXPECT_EQ(FirstDifference(ReadBytes(backup_), before), "");
    EXPECT_NE(ReadBytes(path_), before);
    fs::remove(backup_);
  }

  SilentHost host_;
  const std::string path_ = folder_ / "run.vex";
  const std::string backup_ = path_ + ".backup";
};

TEST_F(PartlyRead, NewManagerAndWholeDocumentAreWhole) {
  Vex2FileManager document;
  EXPECT_TRUE(document.IsWhole());
  for (const std::string& records : {std::string(), kCalibrator, kCalibrator + kEndoControl}) {
    write(records);
    ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_TRUE(document.IsWhole()) << document.GetReadFault().reason;
    EXPECT_STREQ(document.GetReadFault().reason, "");
    EXPECT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  }
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(PartlyRead, FaultHasOffsetAndReason) {
  const std::uint64_t second = 1024 + kCalibrator.size();
  expectFault(kCalibrator + RecordDeclaring("ENDO", 5000, "cut"), second,
              "the record cannot be read");
  expectFault(kCalibrator + RecordDeclaring("GLBL", 5000, "cut"), second,
              "it ends within a record");
  expectFault(kCalibrator + Record("????", "what is this") + kEndoControl, second,
              "the record is of an unknown kind");
  expectFault(kCalibrator + "EN", second, "it ends within a record");
}

TEST_F(PartlyRead, FileThatIsNoDocumentOrCannotBeOpenedIsNotWhole) {
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(path_.c_str()), kReadFailed);
  EXPECT_STREQ(document.GetReadFault().reason, "the file cannot be opened");
  WriteBytes(path_, ToBytes("a text of mine"));
  EXPECT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(document.IsWhole());
  EXPECT_STREQ(document.GetReadFault().reason, "it is no \"Vex2\" document");
  EXPECT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(ReadBytes(backup_), ToBytes("a text of mine"));
}

TEST_F(PartlyRead, LengthsThatEndBeforeTheFileAreNotWhole) {
  // The list declares a length that includes the twelve bytes of the next record.
  const std::string list = RecordDeclaring("CNTL", 2 + 12, std::string(2, '\0'));
  expectFault(list + Record("CALR", "last"), 1024 + 10,
              "the lengths of the records end before the file does");
}

TEST_F(PartlyRead, ShortHeaderIsNotWhole) {
  Bytes bytes = StoredHeader();
  bytes.resize(500);
  WriteBytes(path_, bytes);
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(document.IsWhole());
  EXPECT_EQ(document.GetReadFault().offset, 500U);
}

TEST_F(PartlyRead, StudyWithADamagedPlateIsNotWhole) {
  Vex2FileManager study;
  SetAssay(study, "RQSt");
  const Vex2FileManager plate = PlateAt("/runs/a.vex");
  ASSERT_TRUE(study.AddRQPlate(&plate, "today"));
  ASSERT_EQ(study.SaveToFile(path_.c_str()), kSuccess);
  ASSERT_EQ(study.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_TRUE(study.IsWhole()) << study.GetReadFault().reason << study.GetReadFault().offset;

  Bytes bytes = ReadBytes(path_);
  const std::string text(bytes.begin(), bytes.end());
  const std::size_t record = text.find("CALR");
  ASSERT_NE(record, std::string::npos);
  bytes[record] = '?';
  WriteBytes(path_, bytes);
  ASSERT_EQ(study.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(study.IsWhole());
  EXPECT_EQ(study.GetReadFault().offset, record);
}

TEST_F(PartlyRead, EveryOperationThatReplacesTheFileKeepsABackup) {
  const char* path = path_.c_str();
  expectBackup([&](Vex2FileManager& document) { return document.SaveToFile(path); });
  expectBackup([&](Vex2FileManager& document) {
    return document.SaveHeader(path, document.GetHeaderData());
  });
  expectBackup([&](Vex2FileManager& document) {
    ThermocycleProgram program;
    Vex2PlateSetup setup;
    EXPECT_EQ(document.ReplaceThermocycleProgram(&program), kSuccess);
    EXPECT_EQ(document.ReplacePlateSetup(&setup), kSuccess);
    return document.SaveSetupInfo(path);
  });
  expectBackup([&](Vex2FileManager& document) {
    Vex2PureDye dyes;
    EXPECT_EQ(document.ReplacePureDye(&dyes), kSuccess);
    return document.SaveCalibrationInfo(path);
  });
  expectBackup([&](Vex2FileManager& document) {
    Vex2FrameData frame = MakeFrame(2, 0);
    const Vex2AcquisitionData data{&frame, 1};
    return document.ReplaceAcquisitionDataBlock(path, &data, DataREPr);
  });
  expectBackup(
      [&](Vex2FileManager& document) {
        const int opened = document.SafeOpen(path, 1, 0);
        document.Close();
        return opened;
      },
      1);
}

TEST_F(PartlyRead, SaveElsewhereOrOfAWholeDocumentKeepsNone) {
  writeDamaged();
  const std::string other = folder_ / "other.vex";
  WriteBytes(other, documentWith(kCalibrator));
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(document.SaveToFile(other.c_str()), kSuccess);
  EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(PartlyRead, SecondSaveKeepsNoSecondBackupAndTheDocumentIsStillNotWhole) {
  const Bytes before = writeDamaged();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  for (int save = 0; save < 3; ++save) EXPECT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(filesInFolder(), 2U);
  EXPECT_EQ(ReadBytes(backup_), before);
  EXPECT_FALSE(document.IsWhole());
}

TEST_F(PartlyRead, ResetAndANewReadingClearTheFault) {
  writeDamaged();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  document.Reset();
  EXPECT_TRUE(document.IsWhole());
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(document.IsWhole());
  write(kCalibrator);
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_TRUE(document.IsWhole());
  EXPECT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(PartlyRead, CopyOfTheManagerKeepsTheFault) {
  const Bytes before = writeDamaged();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  Vex2FileManager copy(document);
  EXPECT_FALSE(copy.IsWhole());
  EXPECT_EQ(copy.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(ReadBytes(backup_), before);
}

TEST_F(PartlyRead, BackupNeverReplacesAnother) {
  const Bytes before = writeDamaged();
  for (const char* taken : {"", "-2"}) WriteBytes(backup_ + taken, ToBytes("kept"));
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(ReadBytes(backup_), ToBytes("kept"));
  EXPECT_EQ(ReadBytes(backup_ + "-2"), ToBytes("kept"));
  EXPECT_EQ(ReadBytes(backup_ + "-3"), before);
}

TEST_F(PartlyRead, SameFileUnderAnotherNameIsKept) {
  for (const bool isSymbolic : {true, false}) {
    const Bytes before = writeDamaged();
    const std::string link = folder_ / "link.vex";
    isSymbolic ? fs::create_symlink(path_, link) : fs::create_hard_link(path_, link);
    Vex2FileManager document;
    ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_EQ(document.SaveToFile(link.c_str()), kSuccess);
    const std::string backup = isSymbolic ? backup_ : link + ".backup";
    EXPECT_EQ(ReadBytes(backup), before) << isSymbolic;
    fs::remove(backup);
    fs::remove(link);
  }
}

TEST_F(PartlyRead, SaveFailsWhereTheBackupCannotBeMade) {
  const Bytes before = writeDamaged();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  for (const FileCall call : {FileCall::createNew, FileCall::write, FileCall::syncData}) {
    FaultyFileSystem files;
    files.FailKind(call, ENOSPC);
    EXPECT_EQ(document.SaveToFile(path_.c_str()), kWriteFailed);
    EXPECT_EQ(ReadBytes(path_), before);
    EXPECT_EQ(filesInFolder(), 1U);
  }
  EXPECT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(ReadBytes(backup_), before);
}

TEST_F(PartlyRead, FileThatTheManagerHoldsOpenIsBackedUp) {
  const char* path = path_.c_str();
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(path), kReadFailed) << "there is no such file yet";
  ASSERT_EQ(document.SafeOpen(path, 1, 1), 1);
  document.Write("half", 4);
  EXPECT_EQ(document.SaveToFile(path), kSuccess);
  EXPECT_EQ(ReadBytes(backup_), ToBytes("half"));
}

TEST_F(PartlyRead, FailedReadIsReportedBeforeAFailedBackup) {
  writeDamaged();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  FaultyFileSystem files;
  files.RefuseReaders(EACCES);
  Vex2FrameData frame = MakeFrame(2, 0);
  const Vex2AcquisitionData data{&frame, 1};
  EXPECT_EQ(document.ReplaceAcquisitionDataBlock(path_.c_str(), &data, DataREPr), kReadFailed);
  EXPECT_EQ(document.SafeOpen(path_.c_str(), 1, 0), 0);
}

TEST_F(PartlyRead, BackupIsOnTheDiskBeforeTheFileIsReplaced) {
  writeDamaged();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  FaultyFileSystem files;
  ASSERT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  const std::string changes = files.Changes();
  const std::size_t data = changes.find('D');
  const std::size_t folder = changes.find('S');
  ASSERT_NE(data, std::string::npos) << changes;
  EXPECT_LT(data, folder) << changes;
  EXPECT_LT(folder, changes.find('R')) << changes;
  EXPECT_EQ(changes.find_last_of('W', folder), changes.find_last_of('W', data)) << changes;
}

TEST_F(PartlyRead, BackupHasThePermissionsOfTheFile) {
  writeDamaged();
  fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), kSuccess);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(fs::status(backup_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

}  // namespace
}  // namespace vex2::test
