// Tests the real system calls, and the attributes that a new file copies from the file that it
// replaces.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

class CopiedAttributes : public TempFolderTest {
 protected:
  void SetUp() override {
    WriteBytes(folder_ / "model", {});
    WriteBytes(folder_ / "file", {});
    model_ = files_.Open((folder_ / "model").c_str(), O_RDWR, 0);
    file_ = files_.Open((folder_ / "file").c_str(), O_RDWR, 0);
    ASSERT_GE(model_, 0);
    ASSERT_GE(file_, 0);
  }
  void TearDown() override {
    EXPECT_EQ(files_.Close(model_), 0);
    EXPECT_EQ(files_.Close(file_), 0);
  }
  static std::string accessListOf(int file) {
    std::array<char, 4096> list{};
    const ssize_t size = ::fgetxattr(file, kAccessList, list.data(), list.size());
    return size > 0 ? std::string(list.data(), static_cast<std::size_t>(size)) : std::string();
  }

  FileSystem files_;
  int model_ = -1;
  int file_ = -1;
};

TEST_F(CopiedAttributes, IncludeTheAccessList) {
  // An access list of version 2: entries for the owner, one other user, the group, the mask and all
  // others, each with its permissions and a number.
  const std::string list(
      "\2\0\0\0"
      "\1\0\6\0\377\377\377\377"
      "\2\0\4\0\x39\x30\0\0"
      "\4\0\4\0\377\377\377\377"
      "\20\0\4\0\377\377\377\377"
      "\40\0\0\0\377\377\377\377",
      44);
  if (::fsetxattr(model_, kAccessList, list.data(), list.size(), 0) != 0) {
    GTEST_SKIP() << "the file system has no access lists";
  }
  EXPECT_EQ(files_.CopyAttributes(model_, file_), 0);
  EXPECT_EQ(accessListOf(file_), list);
}

TEST_F(CopiedAttributes, OfFilesThatAreNotOpenAreAFailure) {
  EXPECT_EQ(files_.CopyAttributes(-1, file_), -EBADF);
  EXPECT_EQ(files_.CopyAttributes(model_, -1), -EBADF);
}

// A test cannot see whether the disk stored anything. But a sync of a file that is not open fails,
// which shows that the system was called.
TEST(SystemFiles, AreSyncedByTheSystem) {
  FileSystem files;
  EXPECT_EQ(files.SyncData(-1), -EBADF);
  EXPECT_EQ(files.SyncAll(-1), -EBADF);
}

}  // namespace
}  // namespace vex2::test
