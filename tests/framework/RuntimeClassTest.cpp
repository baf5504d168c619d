#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "vex2/framework/CFile.h"
#include "vex2/framework/CMapStringToOb.h"
#include "vex2/framework/CObList.h"
#include "vex2/framework/CPtrArray.h"
#include "vex2/framework/CPtrList.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/CWnd.h"
#include "vex2/framework/DescribeClass.h"

namespace {

struct Plain : CObject {};

class Dye : public CObject {
 public:
  const CRuntimeClass* GetRuntimeClass() const override { return ClassRecord(); }
  static const CRuntimeClass* ClassRecord() {
    static const auto record = vex2::DescribeClass<Dye>("Dye", CObject::ClassRecord());
    return &record;
  }
};

class PureDye : public Dye {
 public:
  explicit PureDye(int channel) : channel_(channel) {}
  const CRuntimeClass* GetRuntimeClass() const override { return ClassRecord(); }
  static const CRuntimeClass* ClassRecord() {
    static const auto record = vex2::DescribeClass<PureDye>("PureDye", Dye::ClassRecord());
    return &record;
  }
  int channel_;
};

TEST(RuntimeClass, DerivesFromItselfAndItsAncestors) {
  EXPECT_TRUE(PureDye::ClassRecord()->IsDerivedFrom(PureDye::ClassRecord()));
  EXPECT_TRUE(PureDye::ClassRecord()->IsDerivedFrom(Dye::ClassRecord()));
  EXPECT_TRUE(PureDye::ClassRecord()->IsDerivedFrom(CObject::ClassRecord()));
  EXPECT_FALSE(Dye::ClassRecord()->IsDerivedFrom(PureDye::ClassRecord()));
  EXPECT_FALSE(Dye::ClassRecord()->IsDerivedFrom(nullptr));
}

TEST(RuntimeClass, OfAnObjectIsItsOwnThroughABasePointer) {
  const PureDye dye(3);
  const CObject& object = dye;
  EXPECT_STREQ(object.GetRuntimeClass()->name, "PureDye");
  EXPECT_TRUE(object.IsKindOf(Dye::ClassRecord()));
  EXPECT_FALSE(object.IsKindOf(CWnd::ClassRecord()));
  EXPECT_FALSE(object.IsKindOf(nullptr));
}

TEST(RuntimeClass, OfAClassWithoutARecordIsItsBases) {
  EXPECT_EQ(Plain().GetRuntimeClass(), CObject::ClassRecord());
}

TEST(RuntimeClass, MakesAnObjectWhereTheClassHasADefault) {
  const std::unique_ptr<CObject> dye = Dye::ClassRecord()->CreateObject();
  ASSERT_NE(dye, nullptr);
  EXPECT_EQ(dye->GetRuntimeClass(), Dye::ClassRecord());
  EXPECT_EQ(PureDye::ClassRecord()->CreateObject(), nullptr);
  EXPECT_EQ(CObject::ClassRecord()->CreateObject(), nullptr);
}

TEST(RuntimeClass, NamesEveryClassOfTheFramework) {
  const std::pair<const char*, const CRuntimeClass*> classes[] = {
      {"CFile", CFile::ClassRecord()},       {"CMapStringToOb", CMapStringToOb::ClassRecord()},
      {"CObList", CObList::ClassRecord()},   {"CPtrArray", CPtrArray::ClassRecord()},
      {"CPtrList", CPtrList::ClassRecord()}, {"CStringList", CStringList::ClassRecord()},
      {"CWnd", CWnd::ClassRecord()}};
  for (const auto& [name, record] : classes) {
    EXPECT_STREQ(record->name, name);
    EXPECT_EQ(record->baseClass, CObject::ClassRecord());
    const auto object = record->CreateObject();
    ASSERT_NE(object, nullptr) << name;
    EXPECT_EQ(object->GetRuntimeClass(), record);
  }
  EXPECT_EQ(CStringList::ClassRecord()->objectSize, sizeof(CStringList));
}

TEST(RuntimeClass, HooksOfAnObjectDoNothing) {
  Plain object;
  object.Serialize();
  object.AssertValid();
  object.Dump();
  EXPECT_EQ(object.GetRuntimeClass(), CObject::ClassRecord());
}

}  // namespace
