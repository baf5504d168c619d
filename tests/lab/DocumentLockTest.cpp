// Tests that recorders and commands that change a document exclude each other.
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <utility>

#include "lab/model/DocumentLock.h"
#include "lab/model/OutputFiles.h"
#include "tests/lab/ErrorOf.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using lab::DocumentLock;
using lab::ErrorCode;
using testing::HasSubstr;
using Holder = DocumentLock::Holder;

// Called once, after the next lock has opened its file and before it locks the file.
std::function<void()> beforeLock;

class DocumentLockTest : public TempFolderTest {
 protected:
  void TearDown() override { beforeLock = nullptr; }

  const std::string path_ = folder_ / "run.vex";
};

TEST_F(DocumentLockTest, RecorderKeepsOthersOut) {
  const DocumentLock recorder(path_, Holder::kRecorder);
  for (const Holder other : {Holder::kRecorder, Holder::kCommand}) {
    const lab::Error error = ErrorOf([&] { DocumentLock(path_, other); });
    EXPECT_EQ(error.Code(), ErrorCode::kInUse);
    EXPECT_THAT(error.what(), HasSubstr("is being recorded already"));
  }
}

TEST_F(DocumentLockTest, LinkIsLockedAsItsDocument) {
  const std::string link = folder_ / "link.vex";
  std::filesystem::create_symlink("run.vex", link);
  const DocumentLock recorder(path_, Holder::kRecorder);
  const lab::Error error = ErrorOf([&] { DocumentLock(link, Holder::kCommand); });
  EXPECT_EQ(error.Code(), ErrorCode::kInUse);
  EXPECT_THAT(error.what(), HasSubstr(link + ": leads to "));
}

TEST_F(DocumentLockTest, OutputOfACommandIsLocked) {
  const DocumentLock recorder(path_, Holder::kRecorder);
  lab::OutputFiles files(true, "");
  files.Write(path_, lab::OutputFiles::Kind::kDocument);
  EXPECT_EQ(ErrorOf([&] { files.Claim(); }).Code(), ErrorCode::kInUse);
}

TEST_F(DocumentLockTest, CommandIsWaitedFor) {
  std::optional<DocumentLock> first(std::in_place, path_, Holder::kCommand);
  auto second =
      std::async(std::launch::async, [&] { const DocumentLock lock(path_, Holder::kCommand); });
  // Longer than the time for which a lock waits if its holder is not a command.
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(400)), std::future_status::timeout);
  first.reset();
  EXPECT_NO_THROW(second.get());
}

// A holder removes the lock file when it ends, which can be after another one has opened the file
// and before that one locks it.
TEST_F(DocumentLockTest, RemovedFileIsNoLock) {
  beforeLock = [&] { EXPECT_TRUE(std::filesystem::remove(folder_ / ".run.vex.recording")); };
  const DocumentLock recorder(path_, Holder::kRecorder);
  EXPECT_FALSE(beforeLock);
  EXPECT_EQ(ErrorOf([&] { DocumentLock(path_, Holder::kRecorder); }).Code(), ErrorCode::kInUse);
}

}  // namespace
}  // namespace vex2::test

// Replaces the system's function in this test program.
extern "C" int flock(int file, int operation) noexcept {
  if (vex2::test::beforeLock) std::exchange(vex2::test::beforeLock, nullptr)();
  return static_cast<int>(::syscall(SYS_flock, file, operation));
}
