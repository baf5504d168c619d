#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vex2::test {

/// An empty folder of its own for one test, removed with all that is in it at the end.
class TempFolder {
 public:
  /// Throws `std::system_error` when the system gives no folder.
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  /// The path of the file or folder `name` in it, which need not exist.
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

/// For tests that work on files: `folder_ / "run.vex"` is theirs alone.
class TempFolderTest : public testing::Test {
 protected:
  TempFolder folder_;
};

}  // namespace vex2::test
