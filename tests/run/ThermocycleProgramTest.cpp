#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/run/ThermocycleProgramComp.h"

namespace vex2::test {
namespace {

void fill(ThermocycleProgram& program, std::string_view bytes) {
  program.Clear();
  program.length = static_cast<std::uint32_t>(bytes.size());
  program.Allocate();
  if (program.data != nullptr) std::memcpy(program.data, bytes.data(), bytes.size());
}

Bytes written(CComponent& component, const std::string& path, int& bodyStatus) {
  CFile file;
  EXPECT_TRUE(file.Open(path.c_str(), CFile::modeWrite | CFile::modeCreate));
  bodyStatus = component.WriteBody(&file);
  file.Close();
  return ReadBytes(path);
}

TEST(ThermocycleProgram, ClearReleasesTheBlock) {
  ThermocycleProgram program;
  fill(program, "abc");
  program.Clear();
  EXPECT_EQ(program.data, nullptr);
  EXPECT_EQ(program.length, 0U);
}

TEST(ThermocycleProgram, AllocateOfLengthZeroKeepsWhatIsHeld) {
  ThermocycleProgram program;
  fill(program, "abc");
  const auto* block = program.data;
  program.length = 0;
  program.Allocate();
  EXPECT_EQ(program.data, block);
}

TEST(ThermocycleProgram, AllocateReplacesTheHeldBlock) {
  ThermocycleProgram program;
  fill(program, "abc");
  program.length = 1000;
  program.Allocate();
  ASSERT_NE(program.data, nullptr);
  std::memset(program.data, 1, 1000);
  EXPECT_EQ(program.length, 1000U);
}

TEST(ThermocycleProgramComp, OnlyItAnswersToTheThermocyclePredicate) {
  EXPECT_TRUE(ThermocycleProgramComp().IsThermocycleComp());
  EXPECT_FALSE(CBlockValueComp("LOGT").IsThermocycleComp());
}

TEST(ThermocycleProgramComp, LengthWithoutDataMakesAnEmptyOne) {
  ThermocycleProgram program;
  program.length = 10;
  const ThermocycleProgramComp component(program);
  EXPECT_EQ(component.GetLength(), 0U);
  EXPECT_EQ(component.GetData(), nullptr);
}

TEST(ThermocycleProgramComp, CopiesTheBytes) {
  ThermocycleProgram program;
  fill(program, "abc");
  const ThermocycleProgramComp component(program);
  program.data[0] = 'x';
  EXPECT_EQ(std::memcmp(component.GetData(), "abc", 3), 0);
}

TEST(ThermocycleProgramComp, FreedOneIsCopiedAsZeros) {
  ThermocycleProgram program;
  fill(program, "abc");
  ThermocycleProgramComp component(program);
  component.FreeBody();
  component.CopyTo(program);
  ASSERT_EQ(program.length, 3U);
  EXPECT_EQ(std::memcmp(program.data, "\0\0\0", 3), 0);
}

using ThermocycleProgramCompFiles = TempFolderTest;

TEST_F(ThermocycleProgramCompFiles, BodyWithoutABlockIsRefusedAndWritesNothing) {
  ThermocycleProgramComp component;
  int status = 0;
  EXPECT_EQ(written(component, folder_ / "body", status), Bytes{});
  EXPECT_EQ(status, kWriteFailed);
}

TEST_F(ThermocycleProgramCompFiles, BodyIsTheBytesVerbatim) {
  ThermocycleProgram program;
  fill(program, std::string_view("\0a\0", 3));
  ThermocycleProgramComp component(program);
  int status = -1;
  EXPECT_EQ(written(component, folder_ / "body", status), (Bytes{0, 'a', 0}));
  EXPECT_EQ(status, kSuccess);
}

TEST_F(ThermocycleProgramCompFiles, ReadingKeepsATrailingZeroByte) {
  WriteBytes(folder_ / "record", ByteString().Text("TPro").Long(4).Text("abc").Byte(0));
  CFile file;
  ASSERT_TRUE(file.Open((folder_ / "record").c_str(), CFile::modeRead));
  ThermocycleProgramComp component;
  std::uint32_t size = 0;
  EXPECT_EQ(component.Read(&file, size), kSuccess);
  EXPECT_EQ(size, 12U);
  EXPECT_EQ(component.GetLength(), 4U);
  ASSERT_NE(component.GetData(), nullptr);
  EXPECT_EQ(std::memcmp(component.GetData(), "abc\0", 4), 0);
}

TEST_F(ThermocycleProgramCompFiles, ReadingLengthZeroIsASuccessWithoutABlock) {
  WriteBytes(folder_ / "record", ByteString().Text("TPro").Long(0));
  CFile file;
  ASSERT_TRUE(file.Open((folder_ / "record").c_str(), CFile::modeRead));
  ThermocycleProgramComp component;
  EXPECT_EQ(component.Read(&file), kSuccess);
  EXPECT_EQ(component.GetData(), nullptr);
}

TEST_F(ThermocycleProgramCompFiles, LengthPastTheFileIsAShortRead) {
  WriteBytes(folder_ / "record", ByteString().Text("TPro").Long(0xFFFFFFFF).Text("abc"));
  CFile file;
  ASSERT_TRUE(file.Open((folder_ / "record").c_str(), CFile::modeRead));
  ThermocycleProgramComp component;
  EXPECT_EQ(component.Read(&file), kReadFailed);
}

TEST(ThermocycleProgramComp, OnlyAskingForItsTextShortensItByAZeroByte) {
  ThermocycleProgram program;
  fill(program, std::string_view("ab\0\0", 4));
  ThermocycleProgramComp component(program);
  ThermocycleProgram copy;
  component.CopyTo(copy);
  EXPECT_EQ(copy.length, 4U);
  EXPECT_EQ(component.GetValueString().GetLength(), 3);
  EXPECT_EQ(component.GetLength(), 3U);
  EXPECT_EQ(component.GetValueString(), CString("ab"));
  EXPECT_EQ(component.GetLength(), 2U);
}

}  // namespace
}  // namespace vex2::test
