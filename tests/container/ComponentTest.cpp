#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/run/ThermocycleProgramComp.h"

namespace {

using vex2::test::Record;
using vex2::test::RecordDeclaring;

class Component : public vex2::test::StreamTest {};

// One component of each kind that a document can hold.
std::vector<std::unique_ptr<CComponent>> oneOfEachKind() {
  std::vector<std::unique_ptr<CComponent>> components(vex2::kTagRowCount);
  for (int row = 0; row < vex2::kTagRowCount; ++row) {
    CreateComponent(vex2::TagAt(row), components[static_cast<std::size_t>(row)]);
  }
  return components;
}

// Returns the slot of a virtual member function. A pointer to it holds the slot's distance in bytes
// from the start of the table, plus 1.
template <typename Member>
int slotOf(Member member) {
  std::intptr_t parts[2];
  static_assert(sizeof member == sizeof parts);
  std::memcpy(parts, &member, sizeof parts);
  return (parts[0] & 1) != 0 ? static_cast<int>(parts[0] / static_cast<int>(sizeof(void*))) : -1;
}

TEST_F(Component, VirtualOperationsHaveTheirSlots) {
  using ReadCounting = int (CComponent::*)(CFile*, std::uint32_t&);
  using ReadOnly = int (CComponent::*)(CFile*);
  EXPECT_EQ(slotOf(&CObject::GetRuntimeClass), 0);
  EXPECT_EQ(slotOf(&CObject::Serialize), 3) << "the destructor takes two slots";
  EXPECT_EQ(slotOf(&CObject::AssertValid), 4);
  EXPECT_EQ(slotOf(&CObject::Dump), 5);
  EXPECT_EQ(slotOf(&CComponent::Assign), 6);
  EXPECT_EQ(slotOf<ReadCounting>(&CComponent::Read), 7);
  EXPECT_EQ(slotOf<ReadOnly>(&CComponent::Read), 8);
  EXPECT_EQ(slotOf(&CComponent::Write), 9);
  EXPECT_EQ(slotOf(&CComponent::GetSize), 10);
  EXPECT_EQ(slotOf(&CComponent::AllocateBody), 11);
  EXPECT_EQ(slotOf(&CComponent::FreeBody), 12);
  EXPECT_EQ(slotOf(&CComponent::IsPlateSetupComp), 13);
  EXPECT_EQ(slotOf(&CComponent::IsThermocycleComp), 14);
  EXPECT_EQ(slotOf(&CComponent::GetValueString), 15);
  EXPECT_EQ(slotOf(&CComponent::WriteBody), 16);
  EXPECT_EQ(slotOf(&CComponent::ReadBody), 17);
  EXPECT_EQ(slotOf(&CContainerComp::WriteChildren), 18);
  EXPECT_EQ(slotOf(&CContainerComp::ReadChildren), 19);
  EXPECT_EQ(slotOf(&CComponent::GetTag), -1) << "not virtual";
}

TEST_F(Component, NullFilesAreRefused) {
  CComponent component("ABCD");
  std::uint32_t counter = 3;
  EXPECT_EQ(component.Read(nullptr), -100);
  EXPECT_EQ(component.Read(nullptr, counter), -100);
  EXPECT_EQ(counter, 3U);
  EXPECT_EQ(component.Write(nullptr), -200);
  EXPECT_EQ(CSkippedComp().Read(nullptr, counter), -100);
}

TEST_F(Component, EveryBodyRefusesANullFile) {
  for (const auto& component : oneOfEachKind()) {
    EXPECT_EQ(component->ReadBody(nullptr), -100) << component->GetTag();
    EXPECT_EQ(component->WriteBody(nullptr), -200) << component->GetTag();
  }
}

TEST_F(Component, AHeaderThatIsCutShortIsNotFound) {
  const std::string record = Record("VERS", "");
  for (std::size_t length = 0; length < record.size(); ++length) {
    CComponent component("VERS");
    std::uint32_t counter = 0;
    EXPECT_EQ(component.Read(&Holding(record.substr(0, length)), counter), -300) << length;
    EXPECT_EQ(counter, 0U);
  }
}

TEST_F(Component, AFailedBodyIsCounted) {
  CContainerComp list("SPEC");
  std::uint32_t counter = 1;
  EXPECT_EQ(list.Read(&Holding(RecordDeclaring("SPEC", 100, "\x01")), counter), -100);
  EXPECT_EQ(counter, 109U);
}

TEST_F(Component, TheCounterOfHugeRecordsDoesNotWrap) {
  CSkippedComp skipped;
  std::uint32_t counter = 100;
  EXPECT_EQ(skipped.Read(&Holding(RecordDeclaring("Zzzz", 0xFFFFFFFF, "")), counter), 0);
  EXPECT_EQ(counter, 0xFFFFFFFFU);
  EXPECT_EQ(skipped.GetSize(), 0x100000007U);
}

TEST_F(Component, AssignTakesTheLengthOfTheSameTagOnly) {
  CComponent component("ABCD", 1);
  component.Assign(CComponent("abcd", 2));
  EXPECT_EQ(component.GetLength(), 1U);
  component.Assign(CComponent("ABCD", 3));
  EXPECT_EQ(component.GetLength(), 3U);
}

TEST_F(Component, AssignFromAnotherClassOfTheSameTagChangesNothing) {
  for (const auto& component : oneOfEachKind()) {
    if (dynamic_cast<CSkippedComp*>(component.get()) != nullptr) continue;
    const std::uint32_t length = component->GetLength();
    CComponent& self = component->Assign(CSkippedComp(component->GetTag(), 77));
    EXPECT_EQ(&self, component.get());
    EXPECT_EQ(component->GetLength(), length) << component->GetTag();
  }
}

TEST_F(Component, AssignFromItselfChangesNothing) {
  for (const auto& component : oneOfEachKind()) {
    const std::string before = Written(*component);
    component->Assign(*component);
    EXPECT_EQ(Written(*component), before) << component->GetTag();
  }
}

TEST_F(Component, AllClassesAreOfOneFamily) {
  const CRuntimeClass* family = CComponent::ClassRecord();
  EXPECT_STREQ(family->name, "CComponent");
  EXPECT_EQ(family->baseClass, CObject::ClassRecord());
  EXPECT_EQ(family->CreateObject(), nullptr);
  for (const auto& component : oneOfEachKind()) {
    EXPECT_TRUE(component->IsKindOf(family)) << component->GetTag();
  }
}

TEST_F(Component, TheReaderDoesNotChangeTheTag) {
  CComponent component("VERS");
  ASSERT_EQ(component.Read(&Holding(Record("TSMP", ""))), 0);
  EXPECT_EQ(component.GetTag(), "VERS");
}

TEST_F(Component, OnlyTheProgramReportsThatItIsOne) {
  CComponent component("TPro");
  EXPECT_FALSE(component.IsThermocycleComp());
  EXPECT_FALSE(component.IsPlateSetupComp());
  EXPECT_TRUE(ThermocycleProgramComp().IsThermocycleComp());
  EXPECT_FALSE(ThermocycleProgramComp().IsPlateSetupComp());
}

TEST_F(Component, APlaceholderStepsOverABodyAndKeepsTagAndLength) {
  CSkippedComp skipped;
  std::uint32_t counter = 0;
  EXPECT_EQ(skipped.Read(&Holding(Record("Zzzz", "body") + "next"), counter), 0);
  EXPECT_EQ(skipped.GetTag(), "Zzzz");
  EXPECT_EQ(skipped.GetLength(), 4U);
  EXPECT_EQ(counter, 12U);
  EXPECT_EQ(file_.GetPosition(), 12U);
  EXPECT_EQ(Written(skipped), Record("Zzzz", std::string(4, '\0')));
}

TEST_F(Component, APlaceholderTakesItsTagFromAWholeOneOnly) {
  CSkippedComp skipped("Zzzz", 0);
  EXPECT_EQ(skipped.CComponent::Read(&Holding("Yyy")), -300);
  EXPECT_EQ(skipped.GetTag(), "Zzzz");
}

TEST_F(Component, ABodyThatCannotBeSteppedOverIsNoFailure) {
  constexpr auto kFarthest = std::numeric_limits<std::int64_t>::max();
  CSkippedComp skipped("Zzzz", 1);
  CFile& file = Holding("");
  file.Seek(kFarthest, CFile::begin);
  EXPECT_EQ(skipped.ReadBody(&file), 0);
  EXPECT_EQ(file.GetPosition(), static_cast<std::uint64_t>(kFarthest));
}

}  // namespace
