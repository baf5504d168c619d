// Tests that no file crashes or hangs the library or makes it allocate much more memory than the
// file has bytes. Every failure returns a status, and the manager can be used afterwards.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>

#include "tests/support/DocumentBytes.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace {

namespace fs = std::filesystem;
using namespace vex2::test;
using namespace std::string_literals;

const std::string kNameRecord = Record("NAME", "abc");

class Hostile : public vex2::test::TempFolderTest {
 protected:
  void TearDown() override {
    const std::string good = folder_ / "good.vex";
    WriteBytes(good, DocumentOf(kNameRecord));
    EXPECT_EQ(manager_.ReadFromFile(good.c_str()), 0) << "usable afterwards";
    EXPECT_EQ(manager_.GetAllComponentCount(), 1);
    EXPECT_EQ(manager_.SaveToFile(good.c_str()), 0);
    EXPECT_EQ(FirstDifference(ReadBytes(good), DocumentOf(kNameRecord)), "");
  }

  int read(const Bytes& bytes) {
    WriteBytes(path_, bytes);
    return readAgain();
  }
  int readAgain() {
    EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
    const int status = manager_.ReadComponentFile(nullptr);
    manager_.Close();
    return status;
  }
  int count() const { return manager_.GetAllComponentCount(); }

  vex2::test::SilentHost host_;
  std::string path_ = folder_ / "hostile.vex";
  Vex2FileManager manager_;
};

TEST_F(Hostile, NestingIsBounded) {
  for (const auto* tag : {"SPEC", "CNTL", "CPLT", "CPNM", "DETT"}) {
    EXPECT_EQ(read(DocumentOf(kNameRecord + NestedLists(tag, 63) + kNameRecord)), 0) << tag;
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(read(DocumentOf(kNameRecord + NestedLists(tag, 64) + kNameRecord)), 0) << tag;
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(read(DocumentOf(kNameRecord + NestedLists(tag, 65) + kNameRecord)), -300) << tag;
    EXPECT_EQ(count(), 1);
  }
  EXPECT_EQ(read(DocumentOf(NestedLists("GLBL", 1'000'000))), -300);
  EXPECT_EQ(count(), 0);
}

TEST_F(Hostile, NestingOfTheDeepestDocumentIsSavedAndReadAgain) {
  const Bytes bytes = DocumentOf(NestedLists("SPEC", 64));
  ASSERT_EQ(read(bytes), 0);
  const Vex2FileManager copy(manager_);
  ASSERT_EQ(Vex2FileManager(copy).SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), bytes), "");
}

TEST_F(Hostile, LengthsThatTheFileCannotFillEndTheReading) {
  for (const auto tag : vex2::kTagTable) {
    for (const std::uint32_t length : {0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 1'000'000U}) {
      SCOPED_TRACE(std::string(tag) + " " + std::to_string(length));
      for (const std::string& body :
           {std::string(), std::string(40, '\0'), std::string(40, '\xFF')}) {
        EXPECT_LE(read(DocumentOf(kNameRecord + RecordDeclaring(tag, length, body))), 0);
        ASSERT_GE(count(), 1);
        EXPECT_EQ(manager_.GetComponent(0)->GetTag(), "NAME");
      }
    }
  }
}

TEST_F(Hostile, ShortBodiesOfEveryKindHaveAStatus) {
  std::unique_ptr<CComponent> component;
  for (const auto tag : vex2::kTagTable) {
    for (std::uint32_t length = 1; length <= 40; ++length) {
      for (const char fill : {'\0', '\xFF'}) {
        const int status = read(DocumentOf(Record(tag, std::string(length, fill))));
        EXPECT_LE(status, 0) << tag << " " << length;
        EXPECT_EQ(count() == 1, status == 0 && CreateComponent(tag, component) == 1)
            << tag << " " << length;
      }
    }
  }
}

TEST_F(Hostile, CountsWithoutChildrenAreNoFailure) {
  EXPECT_EQ(read(DocumentOf(ListRecord("SPEC", 65535, ""))), 0);
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(read(DocumentOf(ListRecord("SPEC", 65535, Record("Zzzz", "")))), 0);
}

TEST_F(Hostile, UnknownRecordInAListIsNotSavedLongerThanItWas) {
  const std::string torn = RecordDeclaring("Zzzz", 0xFFFFFFF0U, "");
  const Bytes document = DocumentOf(ListRecord("SPEC", 1, torn));
  ASSERT_EQ(document.size(), 1042U);
  ASSERT_EQ(read(document), 0);
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(
      FirstDifference(ReadBytes(path_), DocumentOf(ListRecord("SPEC", 1, Record("Zzzz", "")))), "");
}

TEST_F(Hostile, ManyEmptyRecordsAreReadInTheirTime) {
  std::string records;
  for (int i = 0; i < 200'000; ++i) records += Record(i % 2 != 0 ? "Zzzz" : "VERS", "");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(read(DocumentOf(records)), 0);
  EXPECT_EQ(count(), 100'000);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

TEST_F(Hostile, AHeaderOf65535RowsIsReadFromAShortFile) {
  const std::string header = HeaderBytes().replace(20, 2, "\xFF\xFF");
  EXPECT_EQ(read(ToBytes(header)), 0);
  EXPECT_EQ(manager_.GetHeaderRows(), 65535);
  EXPECT_EQ(read(ToBytes(header + kNameRecord)), 0);
  EXPECT_EQ(count(), 0) << "the table takes all there is";
  EXPECT_EQ(read(ToBytes(HeaderBytes(65535) + kNameRecord)), 0);
  EXPECT_EQ(count(), 1);
  Vex2FileManagerComponent plate;
  CFile file;
  ASSERT_TRUE(file.Open(path_.c_str(), CFile::modeRead));
  EXPECT_EQ(plate.ReadComponentFile(&file), -100);
  EXPECT_EQ(plate.GetAllComponentCount(), 1);
}

TEST_F(Hostile, EveryRefusedReadIsAStatus) {
  const Bytes bytes = DocumentOf(kNameRecord + ListRecord("SPEC", 1, kNameRecord) +
                                 Record("COMM", std::string(600'000, 'c')) +
                                 Record("TPro", std::string(300'000, 'p')) + kNameRecord);
  WriteBytes(path_, bytes);
  for (const int error : {EIO, FaultyFileSystem::kNoMemory}) {
    for (int after = 0; after < 100; ++after) {
      FaultyFileSystem files;
      files.FailKind(FileCall::read, error, after);
      const int status = readAgain();
      if (!files.HasFailed()) {
        EXPECT_EQ(status, 0);
        EXPECT_GT(after, 3) << "faults were staged";
        break;
      }
      EXPECT_EQ(status, -100) << after;
      EXPECT_LT(count(), 5);
      files.Restart();
      files.FailKind(FileCall::read, error, after);
      EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
      EXPECT_FALSE(manager_.IsOpen());
    }
  }
}

TEST_F(Hostile, EveryFailedStepOfASaveKeepsTheOldDocument) {
  ASSERT_EQ(read(DocumentOf(kNameRecord + Record("COMM", std::string(600'000, 'c')))), 0);
  const std::string target = folder_ / "target.vex";
  const Bytes old = DocumentOf(Record("NAME", "old"));
  WriteBytes(target, old);
  for (const auto step :
       {FileCall::open, FileCall::createNew, FileCall::lock, FileCall::stat, FileCall::write,
        FileCall::truncate, FileCall::syncAll, FileCall::rename, FileCall::copyAttributes}) {
    for (const int error : {EIO, ENOSPC, FaultyFileSystem::kNoMemory}) {
      FaultyFileSystem files;
      files.FailKind(step, error);
      EXPECT_EQ(manager_.SaveToFile(target.c_str()), -200);
      EXPECT_FALSE(manager_.IsOpen());
      EXPECT_EQ(FirstDifference(ReadBytes(target), old), "");
      files.FailKind(step, error);
      EXPECT_EQ(manager_.SaveHeader(target.c_str(), Vex2HeaderData()), -200);
      EXPECT_EQ(FirstDifference(ReadBytes(target), old), "");
    }
  }
  const auto names = fs::directory_iterator(folder_.Path());
  EXPECT_EQ(std::distance(begin(names), end(names)), 2) << "nothing half made is left";
}

TEST_F(Hostile, AnOpenThatFailsHalfWayLeavesNothingOpen) {
  WriteBytes(path_, DocumentOf(kNameRecord));
  for (const auto step : {FileCall::open, FileCall::lock, FileCall::stat}) {
    for (const int error : {EIO, FaultyFileSystem::kNoMemory}) {
      FaultyFileSystem files;
      files.FailKind(step, error);
      EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 1, 1), 0);
      EXPECT_FALSE(manager_.IsOpen());
      files.FailKind(step, error);
      EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), -100);
    }
  }
  FaultyFileSystem files;
  files.FailKind(FileCall::truncate, FaultyFileSystem::kNoMemory);
  EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 1, 0), 0);
  EXPECT_FALSE(manager_.IsOpen());
  CFile other;
  EXPECT_TRUE(other.Open(path_.c_str(), CFile::modeWrite)) << "and nothing locked";
}

TEST_F(Hostile, TestsOfTheKindAnswerWhenTheDiskDoesNot) {
  WriteBytes(path_, DocumentOf(""));
  FaultyFileSystem files;
  for (const int error : {EIO, FaultyFileSystem::kNoMemory}) {
    ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
    files.FailKind(FileCall::read, error);
    EXPECT_FALSE(manager_.IsVex2Format());
    EXPECT_FALSE(manager_.IsKestorFile());
    EXPECT_FALSE(manager_.IsBlueLightSpecialFile());
    EXPECT_EQ(manager_.ReadHeaderData(nullptr), -100);
    files.Heal(FileCall::read);
    EXPECT_TRUE(manager_.IsKestorFile());
  }
  manager_.Close();
}

TEST_F(Hostile, PipesAndFoldersInsteadOfDocumentsDoNotHang) {
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_EQ(readAgain(), -100);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), 0) << "it opened";
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), -200);
  const std::string folder = folder_.Path().string();
  EXPECT_EQ(manager_.ReadFromFile(folder.c_str()), -100);
  EXPECT_EQ(manager_.SaveToFile(folder.c_str()), -200);
}

TEST_F(Hostile, AFullDeviceIsAFailedWrite) {
  ASSERT_EQ(read(DocumentOf(kNameRecord)), 0);
  EXPECT_EQ(manager_.SaveToFile("/dev/full"), -200);
  EXPECT_EQ(manager_.SaveHeader("/dev/full", Vex2HeaderData()), -200);
  EXPECT_EQ(manager_.SaveToFile("/dev/null"), 0);
}

TEST_F(Hostile, OffsetsPast32BitsFailTheWrite) {
  // A placeholder is written as a hole, which takes no disk space, but it increases the offset of
  // the next record.
  vex2::test::OpenedManager document;
  document.Append(std::make_unique<CSkippedComp>("Zzzz", 0xFFFFFFFFU));
  const std::string target = folder_ / "target.vex";
  EXPECT_EQ(document.SaveToFile(target.c_str()), 0);
  EXPECT_GT(fs::file_size(target), 0xFFFFFFFFU);
  const ThermocycleProgram program;
  ASSERT_EQ(document.ReplaceThermocycleProgram(&program), 0);
  EXPECT_EQ(document.SaveToFile(target.c_str()), -200);
  EXPECT_EQ(document.GetHeaderData().thermocycleOffset, 0U) << "never wraps";
  EXPECT_GT(fs::file_size(target), 0xFFFFFFFFU) << "the old document stands";
}

}  // namespace
