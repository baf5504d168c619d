#include <gtest/gtest.h>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CSkippedComp.h"

namespace {

using vex2::test::BigEndian;
using vex2::test::ListRecord;
using vex2::test::NestedLists;
using vex2::test::Record;
using namespace std::string_literals;

class Container : public vex2::test::StreamTest {
 protected:
  CContainerComp list_{"SPEC"};
};

std::string name(const std::string& text) {
  return Record("NAME", text);
}

TEST_F(Container, OfCountZeroIsTenBytes) {
  const std::string record = ListRecord("SPEC", 0, "");
  EXPECT_EQ(list_.Read(&Holding(record)), 0);
  EXPECT_EQ(list_.GetChildCount(), 0);
  EXPECT_EQ(record.size(), 10U);
  EXPECT_EQ(Written(list_), record);
}

TEST_F(Container, GrowsByAChildsWholeRecord) {
  EXPECT_EQ(list_.GetLength(), 2U);
  EXPECT_TRUE(list_.AddChild(std::make_unique<CBlockValueComp>("NAME", CString("four"))));
  EXPECT_EQ(list_.GetLength(), 14U);
  EXPECT_EQ(list_.GetCount(), 1);
  EXPECT_EQ(Written(list_), ListRecord("SPEC", 1, name("four")));
}

TEST_F(Container, ShrinksByAChildsWholeRecord) {
  list_.AddChild(std::make_unique<CBlockValueComp>("NAME", CString("four")));
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  EXPECT_TRUE(list_.RemoveChild(0));
  EXPECT_EQ(list_.GetLength(), 14U);
  EXPECT_EQ(list_.GetCount(), 1);
  EXPECT_EQ(list_.GetChild(0)->GetTag(), "VERS");
  EXPECT_FALSE(list_.RemoveChild(1));
  EXPECT_FALSE(list_.RemoveChild(-1));
  EXPECT_EQ(list_.GetLength(), 14U);
}

TEST_F(Container, RefusesNothingAndMoreThanItCanCount) {
  EXPECT_FALSE(list_.AddChild(nullptr));
  for (int child = 0; child < 65535; ++child) {
    ASSERT_TRUE(list_.AddChild(std::make_unique<CComponent>("VERS")));
  }
  EXPECT_FALSE(list_.AddChild(std::make_unique<CComponent>("VERS")));
  EXPECT_EQ(list_.GetCount(), 65535);
  EXPECT_EQ(list_.GetLength(), 2U + 8U * 65535U);
  CContainerComp full("SPEC");
  EXPECT_FALSE(full.AddChild(std::make_unique<CSkippedComp>("Zzzz", 0xFFFFFFF8U)));
  EXPECT_EQ(full.GetLength(), 2U);
}

TEST_F(Container, LengthBelowThatOfARemovedChildBecomesTheTrueOne) {
  for (const std::uint32_t declared : {2U, 11U, 12U, 13U}) {
    ASSERT_EQ(list_.Read(&Holding(vex2::test::RecordDeclaring(
                  "SPEC", declared, "\0\2"s + name("four") + name("last")))),
              0);
    EXPECT_TRUE(list_.RemoveChild(0));
    EXPECT_EQ(Written(list_), ListRecord("SPEC", 1, name("last"))) << declared;
  }
}

TEST_F(Container, LengthThatIsFalseButEnoughChangesByTheChild) {
  ASSERT_EQ(list_.Read(&Holding(
                vex2::test::RecordDeclaring("SPEC", 20, "\0\2"s + name("four") + name("last")))),
            0);
  EXPECT_TRUE(list_.RemoveChild(0));
  EXPECT_EQ(list_.GetLength(), 8U);
  EXPECT_TRUE(list_.AddChild(std::make_unique<CBlockValueComp>("NAME", CString("more"))));
  EXPECT_EQ(list_.GetLength(), 20U);
}

TEST_F(Container, CountThatTheFileDidNotFillIsTheTrueOneAfterAReplacement) {
  ASSERT_EQ(list_.Read(&Holding(ListRecord("SPEC", 9, name("four")))), 0);
  EXPECT_TRUE(list_.ReplaceChild(0, std::make_unique<CBlockValueComp>("NAME", CString("new"))));
  EXPECT_EQ(Written(list_), ListRecord("SPEC", 1, name("new")));
}

TEST_F(Container, ReplacesAChildByOneAtTheEndOrKeepsIt) {
  list_.AddChild(std::make_unique<CBlockValueComp>("NAME", CString("a")));
  list_.AddChild(std::make_unique<CBlockValueComp>("NAME", CString("b")));
  EXPECT_TRUE(list_.ReplaceChild(0, std::make_unique<CBlockValueComp>("NAME", CString("long"))));
  EXPECT_TRUE(list_.ReplaceChild(-1, std::make_unique<CBlockValueComp>("NAME", CString("new"))));
  EXPECT_FALSE(list_.ReplaceChild(0, std::make_unique<CSkippedComp>("Zzzz", 0xFFFFFFF0U)));
  EXPECT_FALSE(list_.ReplaceChild(0, nullptr));
  EXPECT_FALSE(list_.ReplaceChild(-1, nullptr));
  EXPECT_EQ(Written(list_), ListRecord("SPEC", 3, name("b") + name("long") + name("new")));
}

TEST_F(Container, UnknownChildKeepsNoMoreBytesThanTheFileHeld) {
  for (const std::string& body : {""s, "xyz"s}) {
    const std::string torn = vex2::test::RecordDeclaring("Zzzz", 0xFFFFFFF0U, body);
    ASSERT_EQ(list_.Read(&Holding(ListRecord("SPEC", 1, torn))), 0);
    ASSERT_EQ(list_.GetChildCount(), 1);
    EXPECT_EQ(list_.GetChild(0)->GetLength(), body.size());
  }
}

TEST_F(Container, KeepsAnUnknownChildAsAPlaceholder) {
  const std::string record = ListRecord("SPEC", 3, name("a") + Record("Zzzz", "xyz") + name("b"));
  ASSERT_EQ(list_.Read(&Holding(record)), 0);
  ASSERT_EQ(list_.GetChildCount(), 3);
  EXPECT_NE(dynamic_cast<CSkippedComp*>(list_.GetChild(1)), nullptr);
  EXPECT_EQ(list_.GetChild(1)->GetTag(), "Zzzz");
  EXPECT_EQ(Written(list_),
            ListRecord("SPEC", 3, name("a") + Record("Zzzz", "\0\0\0"s) + name("b")));
}

TEST_F(Container, AssignLeavesUnknownChildrenOutAndKeepsTheLength) {
  ASSERT_EQ(list_.Read(&Holding(ListRecord("SPEC", 2, Record("Zzzz", "xyz") + name("b")))), 0);
  CContainerComp copy("SPEC");
  copy.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  copy.Assign(list_);
  ASSERT_EQ(copy.GetChildCount(), 1);
  EXPECT_EQ(copy.GetCount(), 1);
  EXPECT_EQ(copy.GetChild(0)->GetValueString(), "b");
  EXPECT_NE(copy.GetChild(0), list_.GetChild(1));
  EXPECT_EQ(copy.GetLength(), list_.GetLength());
}

TEST_F(Container, AssignFromAnotherTagOrItselfChangesNothing) {
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  list_.Assign(CContainerComp("CNTL"));
  EXPECT_EQ(list_.GetChildCount(), 1);
  list_.Assign(list_);
  EXPECT_EQ(list_.GetChildCount(), 1);
}

TEST_F(Container, FreeDropsTheChildrenAndKeepsLengthAndCount) {
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  list_.FreeBody();
  EXPECT_EQ(list_.GetChildCount(), 0);
  EXPECT_EQ(list_.GetCount(), 1);
  EXPECT_EQ(list_.GetLength(), 14U);
}

TEST_F(Container, ReadingReplacesTheChildren) {
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  ASSERT_EQ(list_.Read(&Holding(ListRecord("SPEC", 1, name("new")))), 0);
  ASSERT_EQ(list_.GetChildCount(), 1);
  EXPECT_EQ(list_.GetChild(0)->GetTag(), "NAME");
}

TEST_F(Container, AFailedChildIsNotKeptAndItsStatusIsTheLists) {
  const std::string torn = vex2::test::RecordDeclaring("NAME", 50, "torn");
  EXPECT_EQ(list_.Read(&Holding(ListRecord("SPEC", 3, name("a") + torn))), -100);
  EXPECT_EQ(list_.GetChildCount(), 1);
}

TEST_F(Container, AFileThatEndsBeforeATagIsNoFailure) {
  EXPECT_EQ(list_.Read(&Holding(ListRecord("SPEC", 65535, name("a")))), 0);
  EXPECT_EQ(list_.GetChildCount(), 1);
  EXPECT_EQ(list_.GetCount(), 65535);
  EXPECT_EQ(list_.Read(&Holding(ListRecord("SPEC", 2, name("a") + "NAM"))), 0);
  EXPECT_EQ(list_.GetChildCount(), 1);
}

TEST_F(Container, AFileThatEndsBeforeALengthIsNotFound) {
  EXPECT_EQ(list_.Read(&Holding(ListRecord("SPEC", 2, name("a") + "NAME\0\0"s))), -300);
  EXPECT_EQ(list_.GetChildCount(), 1);
}

TEST_F(Container, AChildThatIsNotWrittenIsTheListsFailure) {
  EXPECT_EQ(list_.WriteChildren(nullptr), 0) << "there is nothing to write";
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  EXPECT_EQ(list_.WriteChildren(nullptr), -200);
}

TEST_F(Container, NestsSixtyFourDeepAndNoDeeper) {
  for (const int depth : {63, 64}) {
    const std::string record = NestedLists("SPEC", depth);
    EXPECT_EQ(list_.Read(&Holding(record)), 0) << depth;
    EXPECT_EQ(Written(list_), record) << depth;
  }
  EXPECT_EQ(list_.Read(&Holding(NestedLists("SPEC", 65))), -300);
  EXPECT_EQ(list_.Read(&Holding(NestedLists("SPEC", 1'000'000))), -300);
  EXPECT_EQ(list_.Read(&Holding(NestedLists("SPEC", 64))), 0) << "readable again afterwards";
}

TEST_F(Container, ChildrenAreFoundByTag) {
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 5));
  list_.AddChild(std::make_unique<CLongValueComp>("VERS", 6));
  EXPECT_EQ(list_.FindChild("VERS"), list_.GetChild(0));
  EXPECT_EQ(list_.FindChild("NAME"), nullptr);
  EXPECT_EQ(list_.GetChild(2), nullptr);
  EXPECT_EQ(list_.GetChild(-1), nullptr);
}

}  // namespace
