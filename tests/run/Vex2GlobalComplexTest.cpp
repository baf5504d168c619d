#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/run/CGlobalComp.h"

namespace {

std::string text(const std::uint8_t* data, std::uint32_t length) {
  return {reinterpret_cast<const char*>(data), length};
}

TEST(Vex2GlobalComplex, NewRecordHoldsTheDefaults) {
  const Vex2GlobalComplex info;
  EXPECT_EQ(info.version, 512U);
  EXPECT_EQ(info.commentData, nullptr);
  EXPECT_EQ(info.commentLength, 0U);
  EXPECT_EQ(info.sampleVolume, 0);
  EXPECT_EQ(info.passiveReferenceData, nullptr);
  EXPECT_EQ(info.passiveReferenceLength, 0U);
  EXPECT_EQ(info.unitCode, 1);
  EXPECT_EQ(info.ftrd, 0);
  EXPECT_EQ(info.drks, 0);
  EXPECT_EQ(info.preFlag, 0);
  EXPECT_EQ(info.postFlag, 0);
  EXPECT_EQ(info.logData, nullptr);
  EXPECT_EQ(info.logLength, 0U);
}

TEST(Vex2GlobalComplex, SettersCopyTheBytesAndTheLength) {
  Vex2GlobalComplex info;
  std::string comment = "a comment";
  info.SetComment(comment.data(), 9);
  info.SetPassiveReference("ROX", 3);
  info.SetLog("log", 3);
  comment = "overwritten";
  EXPECT_EQ(text(info.commentData, info.commentLength), "a comment");
  EXPECT_EQ(text(info.passiveReferenceData, info.passiveReferenceLength), "ROX");
  EXPECT_EQ(text(info.logData, info.logLength), "log");
}

TEST(Vex2GlobalComplex, CommentAndPassiveReferenceHaveASpareByte) {
  Vex2GlobalComplex info;
  info.SetComment("abc", 3);
  info.SetPassiveReference("de", 2);
  EXPECT_EQ(info.commentLength, 3U);
  EXPECT_EQ(info.passiveReferenceLength, 2U);
  info.commentData[3] = 'x';  // the sanitizers stop us if the byte is not there
  info.passiveReferenceData[2] = 'x';
  EXPECT_EQ(text(info.commentData, 4), "abcx");
  EXPECT_EQ(text(info.passiveReferenceData, 3), "dex");
}

TEST(Vex2GlobalComplex, SameLengthKeepsTheBlock) {
  Vex2GlobalComplex info;
  info.SetComment("abc", 3);
  const auto* block = info.commentData;
  info.SetComment("xyz", 3);
  EXPECT_EQ(info.commentData, block);
  EXPECT_EQ(text(info.commentData, 3), "xyz");
}

TEST(Vex2GlobalComplex, SameLengthWithoutDataKeepsTheBytes) {
  Vex2GlobalComplex info;
  info.SetLog("abc", 3);
  info.SetLog(nullptr, 3);
  EXPECT_EQ(text(info.logData, info.logLength), "abc");
}

TEST(Vex2GlobalComplex, OtherLengthWithoutDataGivesABlockOfThatLength) {
  Vex2GlobalComplex info;
  info.SetLog(nullptr, 5);
  ASSERT_NE(info.logData, nullptr);
  EXPECT_EQ(info.logLength, 5U);
}

TEST(Vex2GlobalComplex, LengthZeroEmptiesEachText) {
  Vex2GlobalComplex info;
  info.SetComment("abc", 3);
  info.SetPassiveReference("abc", 3);
  info.SetLog("abc", 3);
  info.SetComment(nullptr, 0);
  info.SetPassiveReference("", 0);
  info.SetLog("abc", 0);
  EXPECT_EQ(info.commentLength, 0U);
  EXPECT_EQ(info.passiveReferenceLength, 0U);
  EXPECT_EQ(info.logLength, 0U);
}

TEST(Vex2GlobalComplex, PassiveReferenceFromAStringHasNoTerminator) {
  Vex2GlobalComplex info;
  info.SetPassiveReference(CString("ROX"));
  EXPECT_EQ(text(info.passiveReferenceData, info.passiveReferenceLength), "ROX");
  info.SetPassiveReference(CString(""));
  EXPECT_EQ(info.passiveReferenceLength, 0U);
}

TEST(Vex2GlobalComplex, LengthWithoutDataIsNotStored) {
  Vex2GlobalComplex info;
  info.commentLength = 5;
  const CGlobalComp stored(info);
  EXPECT_EQ(stored.FindChild("COMM"), nullptr);
  EXPECT_NE(stored.FindChild("POSR"), nullptr);
}

TEST(Vex2GlobalComplex, IsFilledFromItsOwnRecordsAlone) {
  CGlobalComp stored;
  stored.AddChild(std::make_unique<CLongValueComp>("DATM", 7));
  stored.AddChild(std::make_unique<CShortValueComp>("ROWN", std::uint16_t{7}));
  stored.AddChild(std::make_unique<CByteValueComp>("DUSE", std::uint8_t{7}));
  stored.AddChild(std::make_unique<CFloatValueComp>("QANT", 7.0F));
  stored.AddChild(std::make_unique<CBlockValueComp>("NAME", CString("seven")));
  Vex2GlobalComplex info;
  stored.CopyTo(info);
  EXPECT_EQ(info.version, 512U);
  EXPECT_EQ(info.sampleVolume, 0);
  EXPECT_EQ(info.unitCode, 1);
  EXPECT_EQ(info.ftrd | info.drks | info.preFlag | info.postFlag, 0);
  EXPECT_EQ(info.commentLength + info.passiveReferenceLength + info.logLength, 0U);
}

}  // namespace
