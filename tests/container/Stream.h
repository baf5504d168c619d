#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/container/CComponent.h"

namespace vex2::test {

/// Base of tests that write single components to a file and read them back.
class StreamTest : public TempFolderTest {
 protected:
  /// Writes these bytes to the file and opens it for reading.
  CFile& Holding(const std::string& bytes) {
    WriteBytes(path_, ToBytes(bytes));
    EXPECT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
    return file_;
  }

  /// The bytes that the component writes.
  std::string Written(CComponent& component) {
    EXPECT_TRUE(file_.Open(path_.c_str(), CFile::modeWrite | CFile::modeCreate));
    EXPECT_EQ(component.Write(&file_), 0);
    file_.Close();
    const Bytes bytes = ReadBytes(path_);
    return {bytes.begin(), bytes.end()};
  }

  std::string path_ = folder_ / "records";
  CFile file_;
};

}  // namespace vex2::test
