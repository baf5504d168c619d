#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <typeinfo>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/CSpectrumChannelComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/run/CGlobalComp.h"
#include "vex2/run/ThermocycleProgramComp.h"

namespace {

// The tags for which the factory makes exactly this class.
template <typename Component>
std::string tagsOf() {
  std::string tags;
  for (const auto tag : vex2::kTagTable) {
    std::unique_ptr<CComponent> component;
    if (CreateComponent(tag, component) != 1) continue;
    EXPECT_EQ(component->GetTag(), tag);
    if (typeid(*component) == typeid(Component)) tags += std::string(tag) + " ";
  }
  return tags;
}

TEST(TagFactory, MakesTheFamilyOfEachTag) {
  EXPECT_EQ(tagsOf<CByteValueComp>(), "PRER POSR FTRD DRKS SPON SPRV HDAT DUSE DAAB DAAT ");
  EXPECT_EQ(tagsOf<CShortValueComp>(), "PCRV UOMC ROWN COLN 1CTL STUM DASB DAEB DAQF RQAT ");
  EXPECT_EQ(tagsOf<CLongValueComp>(), "VERS TSMP RFID DYCD DATC DATM EOPl EOF  ");
  EXPECT_EQ(tagsOf<CFloatValueComp>(), "STVL QANT DATH Conf ");
  EXPECT_EQ(tagsOf<CBlockValueComp>(),
            "LOGT COMM SPNM NAME DESC DNAM TASK RefN DETN DYER DYEQ DESC COMT OWNR LOCS aDye Path "
            "RQPD CALR ENDO ");
  EXPECT_EQ(tagsOf<CContainerComp>(), "SPEC CNTL CPLT CPNM DETT ");
  EXPECT_EQ(tagsOf<AcquisitionDataComp>(), "RAWa REPr REPn REPd REPt ");
  EXPECT_EQ(tagsOf<CGlobalComp>(), "GLBL ");
  EXPECT_EQ(tagsOf<ThermocycleProgramComp>(), "TPro ");
  EXPECT_EQ(tagsOf<CSpectrumChannelComp>(), "SPCH ");
}

TEST(TagFactory, HandsOutAnEmptyPlaceholderForUnknownTags) {
  for (const auto* tag : {"MDPW", "ABCD", "glbl", "GLB", "GLBL ", ""}) {
    std::unique_ptr<CComponent> component;
    EXPECT_EQ(CreateComponent(tag, component), 0) << tag;
    const auto* skipped = dynamic_cast<const CSkippedComp*>(component.get());
    ASSERT_NE(skipped, nullptr) << tag;
    EXPECT_EQ(skipped->GetTag(), "    ");
    EXPECT_EQ(skipped->GetLength(), 0U);
  }
}

TEST(TagFactory, LooksTheLaterOfTwoRowsUp) {
  EXPECT_EQ(vex2::FindTagIndex("DESC"), 51);
  EXPECT_EQ(vex2::TagAt(27), "DESC");
  std::unique_ptr<CComponent> component;
  EXPECT_EQ(CreateComponent("DESC", component), 1);
  EXPECT_NE(dynamic_cast<CBlockValueComp*>(component.get()), nullptr);
}

TEST(TagFactory, LooksEveryOtherRowUpAsItself) {
  for (int row = 0; row < vex2::kTagRowCount; ++row) {
    if (row == 27) continue;
    EXPECT_EQ(vex2::FindTagIndex(vex2::TagAt(row)), row);
  }
  EXPECT_EQ(vex2::FindTagIndex("Desc"), -1);
  EXPECT_EQ(vex2::TagAt(-1), "");
  EXPECT_EQ(vex2::TagAt(77), "");
}

TEST(TagFactory, ClonesIntoATargetThatLosesWhatItHeld) {
  std::unique_ptr<CComponent> target = std::make_unique<CLongValueComp>("VERS", 1);
  EXPECT_EQ(CloneComponent(CShortValueComp("ROWN", 7), target), 1);
  const auto* clone = dynamic_cast<const CShortValueComp*>(target.get());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(clone->GetValue(), 7);
}

TEST(TagFactory, ClonesAnUnknownTagToAnUnassignedPlaceholder) {
  std::unique_ptr<CComponent> target;
  EXPECT_EQ(CloneComponent(CSkippedComp("Zzzz", 5), target), 0);
  ASSERT_NE(target, nullptr);
  EXPECT_EQ(target->GetTag(), "    ");
  EXPECT_EQ(target->GetLength(), 0U);
}

}  // namespace
