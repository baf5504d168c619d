#include <gtest/gtest.h>

#include <cstring>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/container/CSpectrumChannelComp.h"

namespace {

using vex2::test::Record;
using vex2::test::RecordDeclaring;
using namespace std::string_literals;

std::string textOf(const CBlockValueComp& block) {
  if (block.GetData() == nullptr) return "none";
  return {reinterpret_cast<const char*>(block.GetData()), block.GetLength()};
}

class Value : public vex2::test::StreamTest {
 protected:
  template <typename Component, typename Number>
  void expectStored(std::string_view tag, Number number, const std::string& body) {
    SCOPED_TRACE(tag);
    Component written(tag, number);
    EXPECT_EQ(Written(written), Record(tag, body));
    Component read(tag);
    EXPECT_EQ(read.GetValue(), Number{});
    EXPECT_EQ(read.GetLength(), body.size());
    std::uint32_t counter = 5;
    EXPECT_EQ(read.Read(&Holding(Record(tag, body)), counter), 0);
    EXPECT_EQ(read.GetValue(), number);
    EXPECT_EQ(counter, 5 + 8 + body.size());
    Component cut(tag);
    EXPECT_EQ(cut.Read(&Holding(
                  RecordDeclaring(tag, static_cast<std::uint32_t>(body.size()), body.substr(1)))),
              -100);
  }
};

TEST_F(Value, IntegersAreStoredBigEndian) {
  expectStored<CByteValueComp>("DUSE", std::uint8_t{0xFE}, "\xFE");
  expectStored<CShortValueComp>("ROWN", std::uint16_t{0x1234}, "\x12\x34");
  expectStored<CLongValueComp>("VERS", 1U, "\0\0\0\x01"s);
  expectStored<CLongValueComp>("DATM", 0xFEDCBA98U, "\xFE\xDC\xBA\x98");
}

TEST_F(Value, FloatsAloneAreStoredLittleEndian) {
  expectStored<CFloatValueComp>("QANT", 1.0F, "\0\0\x80\x3F"s);
}

TEST_F(Value, FloatsThatAreNoNumbersKeepTheirBits) {
  const std::string record = Record("Conf", "\x01\x02\xA0\x7F");
  CFloatValueComp component("Conf");
  ASSERT_EQ(component.Read(&Holding(record)), 0);
  EXPECT_EQ(Written(component), record);
}

TEST_F(Value, ASurplusDeclaredLengthIsNotConsumed) {
  CLongValueComp component("VERS");
  CFile& file = Holding(RecordDeclaring("VERS", 6, "\0\0\0\x07xy"s));
  std::uint32_t counter = 0;
  EXPECT_EQ(component.Read(&file, counter), 0);
  EXPECT_EQ(component.GetValue(), 7U);
  EXPECT_EQ(counter, 14U);
  EXPECT_EQ(file.GetPosition(), 12U);
}

TEST_F(Value, ARecordOfLengthZeroIsEightBytesAndKeepsTheValue) {
  CLongValueComp component("VERS", 9);
  std::uint32_t counter = 0;
  EXPECT_EQ(component.Read(&Holding(Record("VERS", "")), counter), 0);
  EXPECT_EQ(component.GetValue(), 9U);
  EXPECT_EQ(component.GetLength(), 0U);
  EXPECT_EQ(counter, 8U);
  EXPECT_EQ(Written(component), Record("VERS", ""));
}

TEST_F(Value, AssignCopiesFromTheSameTagOnly) {
  CLongValueComp target("VERS", 1);
  target.Assign(CLongValueComp("TSMP", 2));
  EXPECT_EQ(target.GetValue(), 1U);
  CComponent& self = target.Assign(CLongValueComp("VERS", 3));
  EXPECT_EQ(&self, &target);
  EXPECT_EQ(target.GetValue(), 3U);
}

TEST_F(Value, AssignCopiesALengthThatWasReadToo) {
  CLongValueComp source("VERS");
  ASSERT_EQ(source.Read(&Holding(Record("VERS", ""))), 0);
  CLongValueComp target("VERS", 3);
  target.Assign(source);
  EXPECT_EQ(target.GetLength(), 0U);
}

TEST_F(Value, OnlyBlocksHaveATextValue) {
  EXPECT_TRUE(CLongValueComp("VERS", 3).GetValueString().IsEmpty());
  EXPECT_EQ(CBlockValueComp("NAME", CString("a b")).GetValueString(), "a b");
}

TEST_F(Value, ATextDropsOneZeroByteAtItsEnd) {
  CBlockValueComp component("NAME");
  std::uint32_t counter = 0;
  EXPECT_EQ(component.Read(&Holding(Record("NAME", "ABC\0"s)), counter), 0);
  EXPECT_EQ(textOf(component), "ABC");
  EXPECT_EQ(component.GetSize(), 11U);
  EXPECT_EQ(counter, 11U) << "one less than was consumed";
  EXPECT_EQ(file_.GetPosition(), 12U);
  EXPECT_EQ(Written(component), Record("NAME", "ABC"));
}

TEST_F(Value, ATextDropsNoMoreThanOneZeroByte) {
  CBlockValueComp component("ENDO");
  ASSERT_EQ(component.Read(&Holding(Record("ENDO", "A\0\0"s))), 0);
  EXPECT_EQ(textOf(component), "A\0"s);
  EXPECT_EQ(component.GetValueString(), "A");
  EXPECT_EQ(component.GetLength(), 1U) << "asking for the text drops another, for good";
}

TEST_F(Value, ATextOfOneZeroByteBecomesEmpty) {
  CBlockValueComp component("COMM");
  ASSERT_EQ(component.Read(&Holding(Record("COMM", "\0"s))), 0);
  EXPECT_EQ(component.GetLength(), 0U);
  EXPECT_TRUE(component.GetValueString().IsEmpty());
  EXPECT_EQ(Written(component), Record("COMM", ""));
}

TEST_F(Value, ATextThatBecameEmptyStaysEmptyHoweverOftenItIsAskedFor) {
  CBlockValueComp component("COMM", 1, "\0");
  for (int time = 0; time < 2; ++time) {
    EXPECT_TRUE(component.GetValueString().IsEmpty());
    EXPECT_EQ(component.GetLength(), 0U);
  }
}

TEST_F(Value, BlocksHoldWhatTheyAreMadeWith) {
  EXPECT_EQ(textOf(CBlockValueComp("COMM", 3, "a\0b")), "a\0b"s);
  EXPECT_EQ(textOf(CBlockValueComp("COMM", 0, "abc")), "none");
  EXPECT_EQ(CBlockValueComp("COMM", 5, nullptr).GetLength(), 0U);
  EXPECT_EQ(CBlockValueComp("COMM", CString()).GetLength(), 0U);
  EXPECT_EQ(CBlockValueComp("COMM", CString("four")).GetLength(), 4U);
}

TEST_F(Value, AssignCopiesABlockOfItsOwn) {
  CBlockValueComp source("COMM", CString("first"));
  CBlockValueComp target("COMM", CString("a longer one"));
  target.Assign(source);
  source.GetData()[0] = 'X';
  EXPECT_EQ(textOf(target), "first");
  target.Assign(target);
  EXPECT_EQ(textOf(target), "first");
  target.Assign(CBlockValueComp("NAME", CString("other")));
  EXPECT_EQ(textOf(target), "first");
}

TEST_F(Value, AllocateMakesAZeroBlockAndFreeDropsIt) {
  CBlockValueComp component("COMM", CString("abc"));
  component.AllocateBody();
  EXPECT_EQ(textOf(component), "\0\0\0"s);
  component.FreeBody();
  EXPECT_EQ(component.GetData(), nullptr);
  EXPECT_EQ(component.GetLength(), 3U);
  CBlockValueComp empty("COMM");
  empty.AllocateBody();
  EXPECT_EQ(empty.GetData(), nullptr);
}

TEST_F(Value, ABlockThatWasFreedHasNoTextAndNothingToWrite) {
  CBlockValueComp component("COMM", CString("abc"));
  component.FreeBody();
  EXPECT_TRUE(component.GetValueString().IsEmpty());
  ASSERT_TRUE(file_.Open(path_.c_str(), CFile::modeWrite | CFile::modeCreate));
  EXPECT_EQ(component.WriteBody(&file_), 0);
  EXPECT_EQ(file_.GetLength(), 0U);
  CBlockValueComp copy("COMM", CString("other"));
  copy.Assign(component);
  EXPECT_EQ(copy.GetData(), nullptr);
}

TEST_F(Value, ABodyOfNoBytesIsNoBlock) {
  CBlockValueComp component("COMM", 1, "\0");
  static_cast<void>(component.GetValueString());
  EXPECT_EQ(component.ReadBody(&Holding("next")), 0);
  EXPECT_EQ(component.GetData(), nullptr);
  EXPECT_EQ(file_.GetPosition(), 0U);
}

TEST_F(Value, ALengthThatTheFileCannotFillIsAShortRead) {
  for (const std::uint32_t declared : {6U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    CBlockValueComp component("COMM");
    EXPECT_EQ(component.Read(&Holding(RecordDeclaring("COMM", declared, "short"))), -100);
    EXPECT_EQ(file_.GetRemaining(), 0U);
  }
}

TEST_F(Value, SpectrumChannelsKeepEveryByte) {
  const std::string record = Record("SPCH", "a\0\0"s);
  CSpectrumChannelComp component;
  ASSERT_EQ(component.Read(&Holding(record)), 0);
  EXPECT_EQ(Written(component), record);
}

}  // namespace
