#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/reliability/Structure.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {

/// Where the small documents of the tests are and the sample documents, if there are any.
std::vector<std::filesystem::path> SampleDocuments();
/// For the names of tests that are made for each of them.
std::string SampleName(const testing::TestParamInfo<std::filesystem::path>& info);

/// Base of the tests that damage a sample document in many ways: reads each damaged copy from
/// memory, and checks the promises that hold for every damaged document.
class DamagedDocument : public testing::TestWithParam<std::filesystem::path> {
 protected:
  static constexpr const char* kPath = "/damaged.vex";

  /// Reads `bytes` as a document, asks for its frames, reads it as a plate of a study, copies it
  /// and saves it. Each has a status, all of it takes a second at most, and one more for each
  /// megabyte, and reading takes no more than four times the file's size and a megabyte. What was
  /// read is then in `document_`.
  void expectToStand(const Bytes& bytes);

  /// Counts the state that was looked at, as a bad one when an expectation has failed since the
  /// last call. False when so many were bad that the sweep is to end.
  bool countState();

  /// Tells how many points, states and bad states there were.
  void report(const std::string& promise, const std::string& sweep) const {
    ReportSweep({promise, sweep, points_, states_, bad_});
    EXPECT_GT(states_, 0U);
  }

  /// The document as it was.
  const Bytes whole_ = ReadBytes(GetParam());

  MemoryFiles files_;
  SilentHost host_;
  Vex2FileManager document_;
  int status_ = 0;  ///< of reading `document_`
  std::uint64_t points_ = 0;
  std::uint64_t states_ = 0;
  std::uint64_t bad_ = 0;
  NewFailures failures_;

 private:
  void read(std::size_t size);
  void askForFrames();
  void readAsPlate();
  void save(std::size_t size);
};

}  // namespace vex2::test
