#pragma once

#include <functional>

#include "lab/check/Check.h"
#include "tests/support/RunDocument.h"
#include "tests/tools/DocumentFixture.h"

namespace vex2::test {

/// Base of tests that damage documents and check what `vex check` finds.
class DamageTest : public DocumentTest {
 protected:
  // The offsets in the run that `MakeRun` makes: settings, then the data block.
  static constexpr std::size_t kBlock = 1120;
  static constexpr std::size_t kFrame = 80 * kWells;
  static constexpr std::size_t kFrames = 3;
  static constexpr std::size_t kFirstFrame = kBlock + 26 + 2 * kWells;
  static constexpr std::size_t kBlockLength = 18 + 2 * kWells + kFrames * kFrame;
  static constexpr std::size_t kEnd = kBlock + 8 + kBlockLength;
  static constexpr std::size_t kProgramAt = 24;
  static constexpr std::size_t kStatusAt = 64;
  static constexpr std::size_t kPositionAt = 68;

  void Change(const std::function<void(Bytes&)>& change) const {
    Bytes bytes = ReadBytes(path_);
    change(bytes);
    WriteBytes(path_, bytes);
  }
  void SetLong(std::size_t at, unsigned long value) const {
    Change([=](Bytes& bytes) { SetLongAt(bytes, at, value); });
  }
  void SetStatus(std::string_view status) const {
    Change(
        [=](Bytes& bytes) { std::copy(status.begin(), status.end(), bytes.begin() + kStatusAt); });
  }
  /// Appends `count` bytes of further frames.
  void AppendFrameBytes(std::size_t count) const {
    Change([=](Bytes& bytes) {
      const Bytes frame = Slice(bytes, kFirstFrame, kFrame);
      for (std::size_t i = 0; i < count; ++i) bytes.push_back(frame[i % kFrame]);
    });
  }
  void Append(const Bytes& more) const {
    Change([&](Bytes& bytes) { bytes.insert(bytes.end(), more.begin(), more.end()); });
  }

  std::vector<lab::Finding> Found(lab::Severity severity) const {
    std::vector<lab::Finding> found = lab::Check(path_).list;
    std::erase_if(found, [=](const auto& finding) { return finding.severity != severity; });
    return found;
  }
  static std::string Told(const std::vector<lab::Finding>& findings) {
    std::string text;
    for (const lab::Finding& finding : findings) {
      text +=
          finding.record + " at " + std::to_string(finding.offset) + ": " + finding.problem + "\n";
    }
    return text;
  }
  std::string Errors() const { return Told(Found(lab::Severity::kError)); }
  std::string Warnings() const { return Told(Found(lab::Severity::kWarning)); }
  std::string Notes() const { return Told(Found(lab::Severity::kNote)); }

  /// Expects exactly this error and no warning, or exactly this warning and no error, each with its
  /// effect.
  void ExpectError(const std::string& told) const {
    EXPECT_EQ(Errors(), told + "\n");
    EXPECT_EQ(Warnings(), "");
    ExpectMeaning(lab::Severity::kError);
  }
  void ExpectWarning(const std::string& told) const {
    EXPECT_EQ(Warnings(), told + "\n");
    EXPECT_EQ(Errors(), "");
    ExpectMeaning(lab::Severity::kWarning);
  }
  void ExpectSound() const {
    EXPECT_EQ(Errors(), "");
    EXPECT_EQ(Warnings(), "");
  }

 private:
  void ExpectMeaning(lab::Severity severity) const {
    for (const lab::Finding& finding : Found(severity)) EXPECT_NE(finding.consequence, "");
  }
};

}  // namespace vex2::test
