#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vex2::test {

/// The folder of sample documents and readings: what the environment variable VEX2_SHARED_DATA
/// names, else ../shared/data beside the source tree. It is too large for the source tree, so it
/// may be absent, and then the path is empty.
std::filesystem::path SampleFolder();

/// The files of the sample folder's `subfolder` whose names end in `ending`, sorted; none where
/// the folder is absent.
std::vector<std::filesystem::path> SampleFiles(const std::string& subfolder,
                                               const std::string& ending);

/// A path in the source tree, e.g. SourcePath("tests/data/empty.vex").
std::filesystem::path SourcePath(const std::string& relative);

/// For tests that need the sample data: skipped where it is absent.
class SampleDataTest : public testing::Test {
 protected:
  void SetUp() override;
  static std::filesystem::path Sample(const std::string& relative) {
    return SampleFolder() / relative;
  }
};

}  // namespace vex2::test
