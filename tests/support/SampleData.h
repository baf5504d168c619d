#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vex2::test {

/// The folder of sample documents and readings: the value of the environment variable
/// VEX2_SHARED_DATA, otherwise ../shared/data next to the source tree. The path is empty if the
/// folder does not exist; the samples are too large for the source tree.
std::filesystem::path SampleFolder();

/// The files in `subfolder` of the sample folder whose names end in `ending`, sorted; none if the
/// folder does not exist.
std::vector<std::filesystem::path> SampleFiles(const std::string& subfolder,
                                               const std::string& ending);

/// A path in the source tree, e.g. SourcePath("tests/data/empty.vex").
std::filesystem::path SourcePath(const std::string& relative);

/// For tests that need the sample data; they are skipped if it does not exist.
class SampleDataTest : public testing::Test {
 protected:
  void SetUp() override;
  static std::filesystem::path Sample(const std::string& relative) {
    return SampleFolder() / relative;
  }
};

}  // namespace vex2::test
