// Tests the thermal cycling program in a document and its offset in the file.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/run/ThermocycleProgramComp.h"

namespace vex2::test {
namespace {

class ThermocycleDocument : public TempFolderTest {
 protected:
  void setProgram(std::string_view bytes) {
    ThermocycleProgram program;
    program.length = static_cast<std::uint32_t>(bytes.size());
    program.Allocate();
    if (program.data != nullptr) std::memcpy(program.data, bytes.data(), bytes.size());
    EXPECT_EQ(manager_.ReplaceThermocycleProgram(&program), kSuccess);
  }
  static std::string programOf(const Vex2FileManager& manager) {
    ThermocycleProgram program;
    EXPECT_EQ(manager.GetThermocycleProgramInfo(&program), kSuccess);
    return {reinterpret_cast<const char*>(program.data), program.length};
  }
  void openFileOf(std::size_t length) {
    WriteBytes(path_, Bytes(length, 7));
    ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 1, 1), 1);
  }

  OpenedManager manager_;
  std::string path_ = folder_ / "run.vex";
};

TEST_F(ThermocycleDocument, WithoutAProgramIsNotFoundAndTheRecordStays) {
  ThermocycleProgram program;
  program.length = 5;
  EXPECT_EQ(manager_.GetThermocycleProgramInfo(&program), kNotFound);
  EXPECT_EQ(program.length, 5U);
  EXPECT_EQ(manager_.GetThermocycleProgComp(), nullptr);
}

TEST_F(ThermocycleDocument, ProgramIsCopiedOutInPlaceOfWhatTheRecordHeld) {
  setProgram("program");
  ThermocycleProgram program;
  program.length = 100;
  program.Allocate();
  EXPECT_EQ(manager_.GetThermocycleProgramInfo(&program), kSuccess);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(program.data), program.length), "program");
  EXPECT_EQ(manager_.GetThermocycleProgComp()->GetLength(), 7U);
}

TEST_F(ThermocycleDocument, NullRecordIsAccepted) {
  setProgram("program");
  EXPECT_EQ(manager_.GetThermocycleProgramInfo(nullptr), kSuccess);
}

TEST_F(ThermocycleDocument, LengthWithoutDataIsAnEmptyProgram) {
  ThermocycleProgram program;
  program.length = 10;
  EXPECT_EQ(manager_.ReplaceThermocycleProgram(&program), kSuccess);
  ASSERT_NE(manager_.GetThermocycleProgComp(), nullptr);
  EXPECT_EQ(manager_.GetThermocycleProgComp()->GetLength(), 0U);
  ThermocycleProgram read;
  read.length = 3;
  EXPECT_EQ(manager_.GetThermocycleProgramInfo(&read), kSuccess);
  EXPECT_EQ(read.length, 0U);
  EXPECT_EQ(read.data, nullptr);
}

TEST_F(ThermocycleDocument, ReplacedProgramMovesToTheEnd) {
  setProgram("one");
  manager_.SetSampleVolume(1);
  ASSERT_EQ(TagsOf(manager_), "TPro GLBL");
  setProgram("two");
  EXPECT_EQ(TagsOf(manager_), "GLBL TPro");
  EXPECT_EQ(programOf(manager_), "two");
}

TEST_F(ThermocycleDocument, TrailingZeroByteSurvivesReadSaveAndReadAgain) {
  const std::string bytes("stage\0\0", 7);
  setProgram(bytes);
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kSuccess);
  Vex2FileManager second;
  EXPECT_EQ(second.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(programOf(second), bytes);
  EXPECT_EQ(second.SaveToFile((folder_ / "copy.vex").c_str()), kSuccess);
  Vex2FileManager third;
  EXPECT_EQ(third.ReadFromFile((folder_ / "copy.vex").c_str()), kSuccess);
  EXPECT_EQ(programOf(third), bytes);
  EXPECT_EQ(third.GetThermocycleProgComp()->GetValueString().GetLength(), 6);
  EXPECT_EQ(programOf(third), bytes.substr(0, 6));
}

TEST_F(ThermocycleDocument, FullSaveStoresTheOffsetPastTheProgram) {
  setProgram("program");
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(LongAt(ReadBytes(path_), 24), 1024U + 15);
}

TEST_F(ThermocycleDocument, WritingItNeedsAnOpenFile) {
  setProgram("program");
  EXPECT_EQ(manager_.WriteThermocycleComp(), kWriteFailed);
}

TEST_F(ThermocycleDocument, WritingItNeedsAProgram) {
  openFileOf(1024);
  EXPECT_EQ(manager_.WriteThermocycleComp(), kNotFound);
  manager_.SetSampleVolume(1);
  EXPECT_EQ(manager_.WriteThermocycleComp(), kNotFound);
}

TEST_F(ThermocycleDocument, WritingItAppendsTheRecordAndKeepsItsStartInMemory) {
  setProgram("program");
  openFileOf(1100);
  manager_.SeekToBegin();
  EXPECT_EQ(manager_.WriteThermocycleComp(), kSuccess);
  manager_.Close();
  EXPECT_EQ(manager_.ThermocycleOffset(), 1100U);
  EXPECT_EQ(
      FirstDifference(ReadBytes(path_),
                      Join({Bytes(1100, 7), ByteString().Text("TPro").Long(7).Text("program")})),
      "");
}

TEST_F(ThermocycleDocument, OffsetNeedsAnOpenFile) {
  EXPECT_EQ(manager_.UpdateThermocycleOffset(1), kWriteFailed);
  EXPECT_EQ(manager_.UpdateAcqDataOffset(1), kWriteFailed);
}

TEST_F(ThermocycleDocument, OffsetOfAFileOf1023BytesIsRefused) {
  openFileOf(1023);
  EXPECT_EQ(manager_.UpdateThermocycleOffset(1), kWriteFailed);
  EXPECT_EQ(manager_.UpdateAcqDataOffset(1), kWriteFailed);
  manager_.Close();
  EXPECT_EQ(ReadBytes(path_), Bytes(1023, 7));
}

TEST_F(ThermocycleDocument, OffsetOverwritesBytes24To27) {
  openFileOf(1024);
  EXPECT_EQ(manager_.UpdateThermocycleOffset(0x01020304), kSuccess);
  EXPECT_EQ(manager_.GetPosition(), 28U);
  manager_.Close();
  Bytes expected(1024, 7);
  SetLongAt(expected, 24, 0x01020304);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), expected), "");
}

TEST_F(ThermocycleDocument, AcquisitionDataOffsetOverwritesBytes68To71) {
  openFileOf(1024);
  EXPECT_EQ(manager_.UpdateAcqDataOffset(0xFFFFFFFF), kSuccess);
  EXPECT_EQ(manager_.GetPosition(), 72U);
  manager_.Close();
  Bytes expected(1024, 7);
  SetLongAt(expected, 68, 0xFFFFFFFF);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), expected), "");
}

TEST_F(ThermocycleDocument, OffsetPast32BitsIsRefused) {
  openFileOf(1024);
  EXPECT_EQ(manager_.UpdateThermocycleOffset(0x100000000), kWriteFailed);
  EXPECT_EQ(manager_.UpdateAcqDataOffset(0x100000000), kWriteFailed);
  manager_.Close();
  EXPECT_EQ(ReadBytes(path_), Bytes(1024, 7));
}

}  // namespace
}  // namespace vex2::test
