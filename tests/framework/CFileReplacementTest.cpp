#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <tuple>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/CFile.h"

namespace {

namespace fs = std::filesystem;
using vex2::test::FaultyFileSystem;
using vex2::test::FileCall;
using vex2::test::ReadBytes;
using vex2::test::ToBytes;
using vex2::test::WriteBytes;

struct Saver : CFile {
  using CFile::CloseReplacement;
  using CFile::CopyReplaced;
  using CFile::OpenReplacement;
  using CFile::ReplaceOpenFile;
};

class Replacement : public vex2::test::TempFolderTest {
 protected:
  void SetUp() override { WriteBytes(path_, ToBytes("old content")); }

  // Returns 0, or the error number of the call that failed.
  int save(const std::string& path, const std::string& text = "new") {
    CFileException error;
    if (!file_.OpenReplacement(path.c_str(), &error)) return error.GetError();
    try {
      file_.Write(text.data(), text.size());
      file_.CloseReplacement();
      return 0;
    } catch (const CFileException& failure) {
      return failure.GetError();
    }
  }
  static std::string contentOf(const std::string& path) {
    const auto bytes = ReadBytes(path);
    return {bytes.begin(), bytes.end()};
  }
  static ino_t identityOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0);
    return info.st_ino;
  }
  // The number of files in the folder, to check that no temporary file remains.
  int filesInFolder() const {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder_.Path())) ++count;
    return count;
  }

  std::string path_ = folder_ / "file";
  FaultyFileSystem files_;
  Saver file_;
};

TEST_F(Replacement, ReplacesTheFileOnlyWhenItIsComplete) {
  ASSERT_TRUE(file_.OpenReplacement(path_.c_str()));
  EXPECT_EQ(file_.GetFilePath(), path_.c_str());
  EXPECT_EQ(file_.GetLength(), 0U);
  file_.Write("new", 3);
  file_.Flush();
  EXPECT_EQ(contentOf(path_), "old content");
  file_.CloseReplacement();
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_EQ(contentOf(path_), "new");
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(Replacement, IsSyncedBeforeAndAfterTheRename) {
  ASSERT_EQ(save(path_), 0);
  EXPECT_EQ(files_.Changes(), "LWSRS");
}

TEST_F(Replacement, ThatIsNotFinishedLeavesTheOldContent) {
  for (const bool aborted : {true, false}) {
    ASSERT_TRUE(file_.OpenReplacement(path_.c_str()));
    file_.Write("new", 3);
    aborted ? file_.Abort() : file_.Close();
    EXPECT_EQ(contentOf(path_), "old content");
    EXPECT_EQ(filesInFolder(), 1);
  }
}

TEST_F(Replacement, ThatFailsAnywhereLeavesTheOldContent) {
  for (const auto step : {FileCall::write, FileCall::syncAll, FileCall::rename, FileCall::createNew,
                          FileCall::copyAttributes}) {
    files_.FailKind(step, ENOSPC);
    EXPECT_EQ(save(path_), ENOSPC);
    files_.Heal(step);
    EXPECT_FALSE(file_.IsOpen());
    EXPECT_EQ(contentOf(path_), "old content");
    EXPECT_EQ(filesInFolder(), 1);
  }
  EXPECT_EQ(save(path_), 0) << "usable afterwards";
}

TEST_F(Replacement, ThatMayNotSurviveAPowerCutIsAFailure) {
  files_.FailKind(FileCall::syncAll, EIO, 1);
  EXPECT_EQ(save(path_), EIO);
  EXPECT_EQ(contentOf(path_), "new");
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(Replacement, SucceedsWhereFoldersCannotBeSynced) {
  files_.FailKind(FileCall::syncAll, EINVAL, 1);
  EXPECT_EQ(save(path_), 0);
  EXPECT_EQ(contentOf(path_), "new");
}

TEST_F(Replacement, TriesAnotherTemporaryNameAndRetriesInterruptedCalls) {
  struct Taken : FaultyFileSystem {
    int Open(const char* path, int flags, mode_t mode) override {
      if ((flags & O_EXCL) == 0) return FaultyFileSystem::Open(path, flags, mode);
      names.insert(path);
      if (names.size() == 1) return -EEXIST;
      if (names.size() == 2) return -EINTR;
      return FaultyFileSystem::Open(path, flags, mode);
    }
    std::set<std::string> names;
  } files;
  EXPECT_EQ(save(path_), 0);
  EXPECT_EQ(contentOf(path_), "new");
  EXPECT_EQ(files.names.size(), 3U);
}

TEST_F(Replacement, OfNothingIsANewFile) {
  const std::string fresh = folder_ / "fresh";
  EXPECT_EQ(save(fresh), 0);
  EXPECT_EQ(contentOf(fresh), "new");
  const mode_t mask = umask(0);
  umask(mask);
  struct stat info {};
  ASSERT_EQ(::stat(fresh.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777U, 0666U & ~mask);
}

TEST_F(Replacement, KeepsPermissions) {
  for (const mode_t mode : {0600, 0664, 0640}) {
    ASSERT_EQ(chmod(path_.c_str(), mode), 0);
    ASSERT_EQ(save(path_), 0);
    struct stat info {};
    ASSERT_EQ(::stat(path_.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, mode);
  }
}

TEST_F(Replacement, KeepsSymbolicLinks) {
  const std::string link = folder_ / "link";
  ASSERT_EQ(symlink("file", link.c_str()), 0);
  EXPECT_EQ(save(link), 0);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(contentOf(path_), "new");
  const std::string dangling = folder_ / "dangling";
  ASSERT_EQ(symlink("fresh", dangling.c_str()), 0);
  EXPECT_EQ(save(dangling), 0);
  EXPECT_TRUE(fs::is_symlink(dangling));
  EXPECT_EQ(contentOf(folder_ / "fresh"), "new");
}

TEST_F(Replacement, OfAFileWithSeveralNamesIsWrittenInPlace) {
  const std::string other = folder_ / "other";
  fs::create_hard_link(path_, other);
  const ino_t before = identityOf(path_);
  EXPECT_EQ(save(path_), 0);
  EXPECT_EQ(contentOf(other), "new");
  EXPECT_EQ(identityOf(path_), before);
}

TEST_F(Replacement, InAFolderThatTakesNoNewFileIsWrittenInPlace) {
  const ino_t before = identityOf(path_);
  for (const int error : {EACCES, EROFS, EPERM}) {
    files_.FailKind(FileCall::createNew, error);
    EXPECT_EQ(save(path_, "new" + std::to_string(error)), 0);
    EXPECT_EQ(contentOf(path_), "new" + std::to_string(error));
    EXPECT_EQ(identityOf(path_), before);
  }
  EXPECT_EQ(save(folder_ / "fresh"), 0);
}

TEST_F(Replacement, WhereARenameIsRefusedIsCopiedIntoTheOldFile) {
  const ino_t before = identityOf(path_);
  for (const int error : {EBUSY, EXDEV, EPERM}) {
    files_.FailKind(FileCall::rename, error);
    EXPECT_EQ(save(path_, "new" + std::to_string(error)), 0);
    EXPECT_EQ(contentOf(path_), "new" + std::to_string(error));
    EXPECT_EQ(identityOf(path_), before);
    EXPECT_EQ(filesInFolder(), 1);
  }
}

TEST_F(Replacement, ThatIsCopiedIntoTheOldFileIsOnTheDisk) {
  files_.FailKind(FileCall::rename, EBUSY);
  ASSERT_EQ(save(path_), 0);
  EXPECT_EQ(files_.Changes(), "LWSRWTS");
}

TEST_F(Replacement, ThatCannotBeCopiedWholeFails) {
  files_.FailKind(FileCall::rename, EBUSY);
  files_.FailKind(FileCall::truncate, EIO);
  EXPECT_EQ(save(path_), EIO);
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(Replacement, OfWhatCannotBeWrittenFails) {
  files_.FailKind(FileCall::open, EACCES);
  EXPECT_EQ(save(path_), EACCES);
  files_.Heal(FileCall::open);
  EXPECT_EQ(save(folder_.Path().string()), EISDIR);
  EXPECT_EQ(save(folder_ / "no/folder"), ENOENT);
  EXPECT_EQ(save(""), ENOENT);
  EXPECT_EQ(contentOf(path_), "old content");
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(Replacement, WaitsForTheOldFilesLock) {
  CFile reader;
  ASSERT_TRUE(reader.Open(path_.c_str(), CFile::modeRead));
  EXPECT_EQ(save(path_), EWOULDBLOCK);
  reader.Close();
  ASSERT_TRUE(file_.OpenReplacement(path_.c_str()));
  EXPECT_FALSE(reader.Open(path_.c_str(), CFile::modeRead));
  file_.CloseReplacement();
  EXPECT_TRUE(reader.Open(path_.c_str(), CFile::modeRead));
}

TEST_F(Replacement, ThatWasNotBegunCannotBeFinished) {
  EXPECT_THROW(file_.CloseReplacement(), CFileException);
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeWrite));
  EXPECT_THROW(file_.CloseReplacement(), CFileException);
}

TEST_F(Replacement, OfAnOpenFileBeginsWithWhatIsCopiedOfIt) {
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite));
  ASSERT_TRUE(file_.ReplaceOpenFile());
  EXPECT_EQ(file_.GetLength(), 0U);
  file_.CopyReplaced(4);
  file_.Write("new", 3);
  EXPECT_EQ(contentOf(path_), "old content");
  file_.CloseReplacement();
  EXPECT_EQ(contentOf(path_), "old new");
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite));
  ASSERT_TRUE(file_.ReplaceOpenFile());
  file_.CopyReplaced(1000);
  file_.CloseReplacement();
  EXPECT_EQ(contentOf(path_), "old new") << "of more than there is, all";
}

TEST_F(Replacement, OfAnOpenFileNeedsOneThatIsOpen) {
  EXPECT_THROW(std::ignore = file_.ReplaceOpenFile(), CFileException);
  EXPECT_THROW(file_.CopyReplaced(1), CFileException);
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite));
  EXPECT_THROW(file_.CopyReplaced(1), CFileException);
  ASSERT_TRUE(file_.ReplaceOpenFile());
  EXPECT_THROW(std::ignore = file_.ReplaceOpenFile(), CFileException) << "once is enough";
  file_.Abort();
  ASSERT_TRUE(file_.OpenReplacement((folder_ / "fresh").c_str()));
  EXPECT_THROW(file_.CopyReplaced(1), CFileException) << "there is nothing to copy";
}

TEST_F(Replacement, OfAnOpenFileIsNotBegunWhereARenameCannotServe) {
  ASSERT_TRUE(file_.Open("/dev/null", CFile::modeReadWrite));
  EXPECT_FALSE(file_.ReplaceOpenFile());
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeReadWrite));
  files_.FailKind(FileCall::createNew, EROFS);
  EXPECT_FALSE(file_.ReplaceOpenFile());
  files_.FailKind(FileCall::createNew, ENOSPC);
  EXPECT_THROW(std::ignore = file_.ReplaceOpenFile(), CFileException);
  files_.Heal(FileCall::createNew);
  files_.FailKind(FileCall::stat, EIO);
  EXPECT_FALSE(file_.ReplaceOpenFile());
  file_.Write("OLD", 3);
  file_.Close();
  EXPECT_EQ(contentOf(path_), "OLD content") << "open as it was";
}

TEST_F(Replacement, OfNamesAsLongAsTheyCanBe) {
  const std::string longest = folder_ / std::string(255, 'n');
  EXPECT_EQ(save(longest), 0);
  EXPECT_EQ(save(longest, "again"), 0);
  EXPECT_EQ(contentOf(longest), "again");
}

}  // namespace
