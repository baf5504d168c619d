#include "tests/support/SampleData.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace vex2::test {

namespace fs = std::filesystem;

fs::path SampleFolder() {
  const char* named = std::getenv("VEX2_SHARED_DATA");
  const fs::path folder = named != nullptr ? fs::path(named) : SourcePath("../shared/data");
  std::error_code ignored;
  return fs::is_directory(folder, ignored) ? folder : fs::path();
}

std::vector<fs::path> SampleFiles(const std::string& subfolder, const std::string& ending) {
  std::vector<fs::path> files;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(SampleFolder() / subfolder, ignored)) {
    if (entry.path().filename().string().ends_with(ending)) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

fs::path SourcePath(const std::string& relative) {
  return fs::path(VEX2_SOURCE_FOLDER) / relative;
}

void SampleDataTest::SetUp() {
  if (SampleFolder().empty()) {
    GTEST_SKIP() << "no sample data: set VEX2_SHARED_DATA to its folder";
  }
}

}  // namespace vex2::test
