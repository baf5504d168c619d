// Tests the rules that the lists of texts, pointers and objects share.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "vex2/framework/CObList.h"
#include "vex2/framework/CPtrList.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/CTypedPtrList.h"
#include "vex2/framework/CWnd.h"

namespace {

struct Detector {
  int number = 0;
};
using DetectorList = CTypedPtrList<CPtrList, Detector*>;
using WindowList = CTypedPtrList<CObList, CWnd*>;

static_assert(!std::is_copy_constructible_v<CPtrList> && !std::is_copy_assignable_v<CPtrList>);
static_assert(std::is_nothrow_move_constructible_v<DetectorList>);
static_assert(std::is_same_v<decltype(std::declval<DetectorList&>().GetHead()), Detector*>);

std::string forwards(const CStringList& list) {
  std::string all;
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) all += list.GetNext(at);
  return all;
}

std::string backwards(const CStringList& list) {
  std::string all;
  for (POSITION at = list.GetTailPosition(); at != nullptr;) all += list.GetPrev(at);
  return all;
}

TEST(List, IsWalkedInBothDirections) {
  CStringList list;
  list.AddTail("b");
  list.AddTail("c");
  list.AddHead("a");
  EXPECT_EQ(list.GetCount(), 3);
  EXPECT_EQ(forwards(list), "abc");
  EXPECT_EQ(backwards(list), "cba");
  EXPECT_EQ(list.GetHead(), "a");
  EXPECT_EQ(list.GetTail(), "c");
}

TEST(List, OfNothingGivesNothing) {
  CStringList texts;
  CPtrList pointers;
  EXPECT_TRUE(texts.IsEmpty());
  EXPECT_EQ(texts.GetHeadPosition(), nullptr);
  EXPECT_EQ(texts.GetTailPosition(), nullptr);
  EXPECT_EQ(texts.GetHead(), "");
  EXPECT_EQ(texts.RemoveTail(), "");
  EXPECT_EQ(pointers.GetTail(), nullptr);
  EXPECT_EQ(pointers.RemoveHead(), nullptr);
  EXPECT_EQ(pointers.GetCount(), 0);
}

TEST(List, NullPositionsDoNothing) {
  CStringList list;
  list.AddTail("a");
  POSITION none = nullptr;
  EXPECT_EQ(list.GetNext(none), "");
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(list.GetPrev(none), "");
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(list.GetAt(none), "");
  list.SetAt(none, "x");
  list.RemoveAt(none);
  EXPECT_EQ(forwards(list), "a");
}

TEST(List, RemovesAtBothEndsAndInside) {
  CStringList list;
  for (const char* text : {"a", "b", "c", "d"}) list.AddTail(text);
  EXPECT_EQ(list.RemoveHead(), "a");
  EXPECT_EQ(list.RemoveTail(), "d");
  list.RemoveAt(list.GetTailPosition());
  EXPECT_EQ(forwards(list), "b");
  list.RemoveAll();
  EXPECT_TRUE(list.IsEmpty());
  list.AddTail("e");
  EXPECT_EQ(backwards(list), "e");
}

TEST(List, EntryPassedByTheWalkCanBeRemoved) {
  CStringList list;
  for (const char* text : {"a", "b", "c"}) list.AddTail(text);
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    const POSITION entry = at;
    if (list.GetNext(at) != "b") list.RemoveAt(entry);
  }
  EXPECT_EQ(forwards(list), "b");
}

TEST(List, PositionsOutliveChangesAroundThem) {
  CStringList list;
  const POSITION kept = list.AddTail("kept");
  for (int i = 0; i < 100; ++i) i % 2 == 0 ? list.AddHead("x") : list.AddTail("y");
  list.RemoveHead();
  list.SetAt(kept, "new");
  EXPECT_EQ(list.GetAt(kept), "new");
}

TEST(List, FindsByValueAndByIndex) {
  CStringList list;
  for (const char* text : {"a", "b", "a"}) list.AddTail(text);
  const POSITION first = list.Find("a");
  EXPECT_EQ(first, list.GetHeadPosition());
  EXPECT_EQ(list.Find("a", first), list.GetTailPosition());
  EXPECT_EQ(list.Find("a", list.GetTailPosition()), nullptr);
  EXPECT_EQ(list.Find("A"), nullptr);
  EXPECT_EQ(list.GetAt(list.FindIndex(1)), "b");
  EXPECT_EQ(list.FindIndex(3), nullptr);
  EXPECT_EQ(list.FindIndex(-1), nullptr);
}

TEST(List, MoveKeepsPositionsAndEmptiesTheSource) {
  CStringList source(10);
  const POSITION a = source.AddTail("a");
  source.AddTail("b");
  CStringList target(std::move(source));
  EXPECT_EQ(forwards(target), "ab");
  EXPECT_EQ(target.GetAt(a), "a");
  target.RemoveAt(a);
  EXPECT_EQ(forwards(target), "b");
  source = CStringList();
  source.AddTail("c");
  target = std::move(source);
  EXPECT_EQ(forwards(target), "c");
}

TEST(List, HoldsTextsWithZeroBytesAndNullOnes) {
  CStringList list;
  list.AddTail(CString("a\0b", 3));
  list.AddTail(nullptr);
  EXPECT_EQ(list.GetHead().GetLength(), 3);
  EXPECT_TRUE(list.GetTail().IsEmpty());
}

TEST(List, OfALongRunOfEntriesEnds) {
  CPtrList list;
  for (int i = 0; i < 200000; ++i) list.AddTail(&list);
  EXPECT_EQ(list.GetCount(), 200000);
}

TEST(TypedList, GivesBackItsType) {
  Detector one{1};
  Detector two{2};
  DetectorList list;
  const POSITION first = list.AddTail(&two);
  list.AddHead(&one);
  EXPECT_EQ(list.GetHead()->number, 1);
  EXPECT_EQ(list.GetTail()->number, 2);
  EXPECT_EQ(list.Find(&two), first);
  EXPECT_EQ(list.Find(&two, first), nullptr);
  POSITION at = first;
  EXPECT_EQ(list.GetPrev(at)->number, 2);
  EXPECT_EQ(list.GetNext(at)->number, 1);
  list.SetAt(first, &one);
  EXPECT_EQ(list.GetAt(first), &one);
  EXPECT_EQ(list.RemoveHead(), &one);
  EXPECT_EQ(list.RemoveTail(), &one);
  EXPECT_EQ(list.RemoveTail(), nullptr);
}

TEST(TypedList, IsAListOfItsBase) {
  CWnd window;
  WindowList windows;
  windows.AddTail(&window);
  CObList& objects = windows;
  EXPECT_EQ(objects.GetHead(), &window);
  EXPECT_TRUE(objects.GetHead()->IsKindOf(CWnd::ClassRecord()));
}

TEST(TypedList, DoesNotOwnItsEntries) {
  Detector kept{7};
  {
    DetectorList list;
    list.AddTail(&kept);
    list.RemoveAll();
    list.AddTail(&kept);
  }
  EXPECT_EQ(kept.number, 7);
}

}  // namespace
