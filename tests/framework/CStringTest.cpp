#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>

#include "vex2/framework/CString.h"

namespace {

using namespace std::string_view_literals;

TEST(CString, OfANullPointerIsEmpty) {
  const char* const none = nullptr;
  EXPECT_TRUE(CString(none).IsEmpty());
  EXPECT_TRUE(CString(none, 5).IsEmpty());
  EXPECT_STREQ(CString(none).GetString(), "");
}

TEST(CString, OfALengthHoldsZeroBytes) {
  const CString text("a\0b\0", 4);
  EXPECT_EQ(text.GetLength(), 4);
  EXPECT_EQ(text.View(), "a\0b\0"sv);
  EXPECT_FALSE(text == "a");
  EXPECT_TRUE(CString("abc", -1).IsEmpty());
}

TEST(CString, CopiesAreIndependent) {
  CString first("plate");
  CString second = first;
  second += " 1";
  EXPECT_EQ(first, "plate");
  EXPECT_EQ(second, "plate 1");
  first.Empty();
  EXPECT_TRUE(first.IsEmpty());
  EXPECT_EQ(second.GetLength(), 7);
}

TEST(CString, ComparesEveryByte) {
  EXPECT_EQ(CString("FAM"), CString("FAM"));
  EXPECT_NE(CString("FAM"), CString("fam"));
  EXPECT_NE(CString("FAM"), CString("FAM\0", 4));
  EXPECT_EQ(CString(), static_cast<const char*>(nullptr));
  EXPECT_TRUE("FAM" == CString("FAM"));
  EXPECT_LT(CString("FAM"), CString("JOE"));
  EXPECT_LT(CString("a"), CString("\xE9")) << "bytes are unsigned";
  EXPECT_LT(CString("b").Compare("c"), 0);
  EXPECT_EQ(CString("b").Compare("b"), 0);
  EXPECT_GT(CString("b").Compare(nullptr), 0);
}

TEST(CString, Joins) {
  EXPECT_EQ(CString("a") + "b" + CString("c"), "abc");
  EXPECT_EQ("a" + CString("b"), "ab");
  EXPECT_EQ(CString("folder") + '/', "folder/");
  CString own("ab");
  own += own;
  own += 'c';
  EXPECT_EQ(own, "ababc");
}

TEST(CString, GivesZeroForACharacterOutOfRange) {
  const CString text("ab");
  EXPECT_EQ(text.GetAt(1), 'b');
  EXPECT_EQ(text.GetAt(2), '\0');
  EXPECT_EQ(text.GetAt(-1), '\0');
}

TEST(CString, FindsFromAStart) {
  const CString text("a.b.c");
  EXPECT_EQ(text.Find('.'), 1);
  EXPECT_EQ(text.Find('.', 2), 3);
  EXPECT_EQ(text.Find('.', -7), 1);
  EXPECT_EQ(text.Find('.', 99), -1);
  EXPECT_EQ(text.Find("b.c"), 2);
  EXPECT_EQ(text.Find("x"), -1);
  EXPECT_EQ(text.ReverseFind('.'), 3);
  EXPECT_EQ(text.ReverseFind('x'), -1);
}

TEST(CString, CutsPartsToWhatThereIs) {
  const CString text("run1.vex");
  EXPECT_EQ(text.Left(4), "run1");
  EXPECT_EQ(text.Left(99), "run1.vex");
  EXPECT_EQ(text.Left(-1), "");
  EXPECT_EQ(text.Right(3), "vex");
  EXPECT_EQ(text.Right(99), "run1.vex");
  EXPECT_EQ(text.Right(-1), "");
  EXPECT_EQ(text.Mid(5), "vex");
  EXPECT_EQ(text.Mid(3, 2), "1.");
  EXPECT_EQ(text.Mid(-3, 3), "run");
  EXPECT_EQ(text.Mid(99), "");
  EXPECT_EQ(text.Mid(0, -1), "");
}

TEST(CString, UpperCaseTouchesAsciiLettersOnly) {
  CString text("az AZ 09 {\xE9");
  text.MakeUpper();
  EXPECT_EQ(text, "AZ AZ 09 {\xE9");
}

TEST(CString, IsWrittenToAStreamWhole) {
  std::ostringstream out;
  out << CString("a\0b", 3);
  EXPECT_EQ(out.str(), std::string("a\0b", 3));
}

}  // namespace
