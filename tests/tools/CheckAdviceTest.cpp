// Tests the advice of `vex check`. 'vex recover' makes a new document, so it must not be advised if
// 'vex repair' makes the document itself sound.

#include <filesystem>

#include "lab/check/Repair.h"
#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

class CheckAdvice : public DamageTest {
 protected:
  /// Writes these bytes to the document. If check advises to recover it, tries to repair it.
  void Try(const Bytes& bytes) {
    WriteBytes(path_, bytes);
    const std::vector<lab::Finding> before = Advising();
    if (before.empty()) return;
    ++recovers_;
    const lab::RepairReport report = lab::Repair(path_);
    if (report.isRepaired) {
      ++repairs_;
      std::filesystem::remove(report.backup);
    }
    EXPECT_FALSE(Advising().empty()) << "repair did it: " << Told(before);
  }

  std::vector<lab::Finding> Advising() const {
    std::vector<lab::Finding> findings = lab::Check(path_).list;
    std::erase_if(findings, [](const lab::Finding& finding) {
      return finding.remedy.find("Recover") == std::string::npos;
    });
    return findings;
  }

  void TryCutAnywhere(const Bytes& whole, std::size_t step) {
    for (std::size_t size = 4; size < whole.size(); size += step) {
      SCOPED_TRACE("cut to " + std::to_string(size));
      Try(Slice(whole, 0, size));
    }
  }
  void TryAppended(const Bytes& whole) {
    for (const Bytes& more : {Bytes(3, 0), Bytes(8, 0), Bytes(8, 1), Bytes(300, 0), Bytes(300, 7),
                              ToBytes("GLBL"), ToBytes("RAWa!"), ToBytes("Zzzz....and on")}) {
      SCOPED_TRACE("with " + std::to_string(more.size()) + " more");
      Bytes bytes = whole;
      bytes.insert(bytes.end(), more.begin(), more.end());
      Try(bytes);
    }
  }
  void TryWords(const Bytes& whole, std::size_t from, std::size_t to, std::size_t step) {
    for (std::size_t at = from; at + 4 <= std::min(to, whole.size()); at += step) {
      const std::uint32_t word = LongAt(whole, at);
      for (const std::uint32_t value : {0U, word + 1, word - 1, word + 256, 0xFFFFFFFFU}) {
        SCOPED_TRACE("word " + std::to_string(value) + " at " + std::to_string(at));
        Bytes bytes = whole;
        SetLongAt(bytes, at, value);
        Try(bytes);
      }
    }
  }

  std::size_t recovers_ = 0;
  std::size_t repairs_ = 0;
};

TEST_F(CheckAdvice, OfRunsNeverRecoversWhatRepairRepairs) {
  for (const char* status : {"PROG", "DONE", "ZERO"}) {
    SCOPED_TRACE(status);
    MakeRun(status);
    const Bytes whole = ReadBytes(path_);
    TryCutAnywhere(whole, 17);
    TryAppended(whole);
    TryWords(whole, kProgramAt, kProgramAt + 4, 1);
    TryWords(whole, kPositionAt, kPositionAt + 4, 1);
    TryWords(whole, 1024, kFirstFrame + 8, 3);
    Bytes unplaced = whole;
    SetLongAt(unplaced, kPositionAt, 0);
    TryCutAnywhere(unplaced, 43);
    TryAppended(unplaced);
  }
  EXPECT_GT(recovers_, 0U);
  EXPECT_GT(repairs_, 0U);
}

TEST_F(CheckAdvice, RepairsALengthThatReachesPastTheEnd) {
  Bytes records;
  AppendRecord(records, "Conf", {0x42, 0xBE, 0, 0});
  AppendRecord(records, "CALR", ToBytes("liver"));
  MakeDocument(records);
  const Bytes whole = ReadBytes(path_);
  SetLong(1028, 0x01000004);
  EXPECT_THAT(Errors(), testing::HasSubstr("the record \"CALR\" could not be read"));
  EXPECT_TRUE(Advising().empty());
  lab::Repair(path_);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), whole), "");
}

TEST_F(CheckAdvice, OfSampleDocumentsNeverRecoversWhatRepairRepairs) {
  if (SampleFolder().empty()) GTEST_SKIP() << "there are no sample documents";
  for (const auto& sample : SampleFiles("golden", ".vex")) {
    SCOPED_TRACE(sample.filename());
    const Bytes whole = ReadBytes(sample);
    if (whole.size() > 40000) continue;
    TryCutAnywhere(whole, whole.size() / 25 + 1);
    TryAppended(whole);
    TryWords(whole, 1024, whole.size(), whole.size() / 25 + 1);
  }
  EXPECT_GT(recovers_, 0U);
  EXPECT_GT(repairs_, 0U);
}

}  // namespace
}  // namespace vex2::test
