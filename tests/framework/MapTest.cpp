#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "vex2/framework/CMapStringToOb.h"
#include "vex2/framework/CTypedPtrMap.h"

namespace {

struct Settings : CObject {
  explicit Settings(int initial) : value(initial) {}
  int value;
};
using SettingsMap = CTypedPtrMap<CMapStringToOb, CString, Settings*>;

static_assert(!std::is_copy_constructible_v<SettingsMap>);
static_assert(std::is_nothrow_move_constructible_v<SettingsMap>);

class Map : public testing::Test {
 protected:
  Settings one_{1};
  Settings two_{2};
  SettingsMap map_;

  std::string keys() const {
    std::string all;
    CString key;
    Settings* value = nullptr;
    for (POSITION at = map_.GetStartPosition(); at != nullptr;) {
      map_.GetNextAssoc(at, key, value);
      all += key;
      all += value != nullptr ? std::to_string(value->value) : "-";
    }
    return all;
  }
};

TEST_F(Map, OfNothingGivesNothing) {
  EXPECT_TRUE(map_.IsEmpty());
  EXPECT_EQ(map_.GetCount(), 0);
  EXPECT_EQ(map_.GetStartPosition(), nullptr);
  EXPECT_FALSE(map_.RemoveKey("a"));
}

TEST_F(Map, LooksUpExactKeysOnly) {
  map_.SetAt("FAM", &one_);
  Settings* found = &two_;
  EXPECT_FALSE(map_.Lookup("fam", found));
  EXPECT_FALSE(map_.Lookup("FAM ", found));
  EXPECT_FALSE(map_.Lookup(CString("FAM\0", 4), found));
  EXPECT_EQ(found, &two_) << "a failed look-up leaves the value alone";
  EXPECT_TRUE(map_.Lookup("FAM", found));
  EXPECT_EQ(found, &one_);
}

TEST_F(Map, SetAtReplacesTheValueOfAKey) {
  map_.SetAt("FAM", &one_);
  map_.SetAt("FAM", &two_);
  EXPECT_EQ(map_.GetCount(), 1);
  EXPECT_EQ(map_.GetAt("FAM"), &two_);
}

TEST_F(Map, HoldsNullValuesAndTheEmptyKey) {
  map_.SetAt("", nullptr);
  Settings* found = &one_;
  EXPECT_TRUE(map_.Lookup("", found));
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(keys(), "-");
}

TEST_F(Map, IsWalkedInTheOrderOfItsKeys) {
  map_.SetAt("b", &two_);
  map_.SetAt("c", nullptr);
  map_.SetAt("a", &one_);
  EXPECT_EQ(keys(), "a1b2c-");
}

TEST_F(Map, EntryPassedByTheWalkCanBeRemoved) {
  for (const char* key : {"a", "b", "c", "d"}) map_.SetAt(key, &one_);
  CString key;
  Settings* value = nullptr;
  for (POSITION at = map_.GetStartPosition(); at != nullptr;) {
    map_.GetNextAssoc(at, key, value);
    if (key != "c") {
      EXPECT_TRUE(map_.RemoveKey(key));
    }
  }
  EXPECT_EQ(keys(), "c1");
}

TEST_F(Map, ValuesCanBeWalkedWithoutTheirKeys) {
  map_.SetAt("b", nullptr);
  map_.SetAt("a", &one_);
  map_.SetAt("c", &two_);
  POSITION at = map_.GetStartPosition();
  EXPECT_EQ(map_.GetNextValue(at), &one_);
  EXPECT_EQ(map_.GetNextValue(at), nullptr);
  EXPECT_EQ(map_.GetNextValue(at), &two_);
  EXPECT_EQ(at, nullptr);
  EXPECT_EQ(map_.GetNextValue(at), nullptr);
}

TEST_F(Map, NullPositionChangesNothing) {
  map_.SetAt("a", &one_);
  POSITION none = nullptr;
  CString key("before");
  Settings* value = &two_;
  map_.GetNextAssoc(none, key, value);
  EXPECT_EQ(key, "before");
  EXPECT_EQ(value, &two_);
  CObject* object = &two_;
  static_cast<CMapStringToOb&>(map_).GetNextAssoc(none, key, object);
  EXPECT_EQ(object, &two_);
}

TEST_F(Map, SubscriptReadsWithoutAddingAndWrites) {
  EXPECT_EQ(map_["a"], nullptr);
  EXPECT_TRUE(map_.IsEmpty());
  map_["a"] = &one_;
  EXPECT_EQ(map_["a"]->value, 1);
  map_["b"] = map_["a"];
  EXPECT_EQ(map_.GetAt("b"), &one_);
  const SettingsMap& constant = map_;
  EXPECT_EQ(constant["b"], &one_);
  EXPECT_EQ(constant["c"], nullptr);

  CMapStringToOb& base = map_;
  base["c"] = &two_;
  EXPECT_EQ(map_["c"]->value, 2);
}

TEST_F(Map, RemoveAllEmptiesIt) {
  map_.SetAt("a", &one_);
  map_.RemoveAll();
  EXPECT_TRUE(map_.IsEmpty());
  EXPECT_EQ(keys(), "");
}

TEST_F(Map, MoveKeepsEntriesAndPositions) {
  map_.SetAt("a", &one_);
  map_.SetAt("b", &two_);
  POSITION at = map_.GetStartPosition();
  SettingsMap target(std::move(map_));
  CString key;
  Settings* value = nullptr;
  target.GetNextAssoc(at, key, value);
  EXPECT_EQ(key, "a");
  target.GetNextAssoc(at, key, value);
  EXPECT_EQ(value, &two_);
  EXPECT_EQ(at, nullptr);
}

}  // namespace
