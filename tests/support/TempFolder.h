#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vex2::test {

/// An empty folder for one test. The destructor removes it with its content.
class TempFolder {
 public:
  /// Throws `std::system_error` if the folder cannot be created.
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  /// The path of the file or folder `name` in this folder; it need not exist.
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

/// For tests that work on files: only the current test uses `folder_ / "run.vex"`.
class TempFolderTest : public testing::Test {
 protected:
  TempFolder folder_;
};

}  // namespace vex2::test
