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

/// The paths of the small test documents and, if they exist, of the sample documents.
std::vector<std::filesystem::path> SampleDocuments();
/// Names the tests after the sample document.
std::string SampleName(const testing::TestParamInfo<std::filesystem::path>& info);

/// Base of the tests that damage a sample document in many ways: reads each damaged copy from
/// memory, and checks the promises that hold for every damaged document.
class DamagedDocument : public testing::TestWithParam<std::filesystem::path> {
 protected:
  static constexpr const char* kPath = "/damaged.vex";

  /// Reads `bytes` as a document into `document_`, asks for its frames, reads it as a plate of a
  /// study, copies it and saves it. Checks that each step returns a status; that all steps together
  /// take at most one second plus one second per megabyte; and that reading takes at most one
  /// megabyte of memory plus four times the size of the file.
  void expectToStand(const Bytes& bytes);

  /// Counts one examined state. The state is bad if an expectation has failed since the last call.
  /// Returns false if there are so many bad states that the sweep should end.
  bool countState();

  /// Reports the numbers of points, states and bad states.
  void report(const std::string& promise, const std::string& sweep) const {
    ReportSweep({promise, sweep, points_, states_, bad_});
    EXPECT_GT(states_, 0U);
  }

  /// The undamaged document.
  const Bytes whole_ = ReadBytes(GetParam());

  MemoryFiles files_;
  SilentHost host_;
  Vex2FileManager document_;
  int status_ = 0;  ///< the status of reading `document_`
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
