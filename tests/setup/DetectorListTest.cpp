// Tests how documents store detectors and required dyes.
#include <gtest/gtest.h>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "tests/support/RecordingHost.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/setup/CColorComp.h"
#include "vex2/setup/CDetectorExtensionComp.h"
#include "vex2/setup/CDetectorListComp.h"
#include "vex2/setup/CRequiredDyesComp.h"

namespace vex2::test {
namespace {

using namespace std::string_literals;

class DetectorList : public StreamTest {
 protected:
  Vex2Detector readBack(const std::string& children, int count) {
    CDetectorExtensionComp component;
    EXPECT_EQ(component.Read(&Holding(ListRecord("DETX", count, children))), 0);
    Vex2Detector detector;
    detector.comment = "what the record held before";
    detector.baselineEnd = 99;
    component.CopyTo(detector);
    return detector;
  }

  RecordingHost host_;
};

Vex2Detector fullDetector() {
  Vex2Detector detector;
  detector.name = "MYC";
  detector.reporterDye = "FAM";
  detector.quencherDye = "NFQ";
  detector.description = "d";
  detector.comment = "c";
  detector.owner = "o";
  detector.location = "l";
  detector.color[0] = 1;
  detector.color[1] = 2;
  detector.color[2] = 255;
  detector.dateCreated = 0x01020304;
  detector.dateModified = 5;
  detector.baselineStart = 0x0708;
  detector.baselineEnd = 9;
  detector.threshold = 1;
  detector.analysisFlags = 0xABCD;
  detector.autoBaseline = 0x101;
  detector.autoThreshold = -1;
  return detector;
}

const std::string kFullChildren =
    Record("DETN", "MYC") + Record("DYER", "FAM") + Record("DYEQ", "NFQ") + Record("DESC", "d") +
    Record("COMT", "c") + Record("COLR", "\x01\x02\xFF") + Record("DATC", "\x01\x02\x03\x04") +
    Record("DATM", "\0\0\0\x05"s) + Record("OWNR", "o") + Record("LOCS", "l") +
    Record("DASB", "\x07\x08") + Record("DAEB", "\0\x09"s) + Record("DATH", "\0\0\x80\x3F"s) +
    Record("DAAB", "\x01") + Record("DAAT", "\xFF") + Record("DAQF", "\xAB\xCD");

TEST_F(DetectorList, WritesEveryFieldInItsOrder) {
  CDetectorExtensionComp component(fullDetector());
  EXPECT_EQ(Written(component), ListRecord("DETX", 16, kFullChildren));
}

TEST_F(DetectorList, LeavesOutEmptyTextsAndDatesNotAboveZero) {
  Vex2Detector detector;
  detector.name = "a";
  detector.dateModified = -5;
  CDetectorExtensionComp component(detector);
  EXPECT_EQ(
      Written(component),
      ListRecord("DETX", 8,
                 Record("DETN", "a") + Record("COLR", "\0\0\0"s) + Record("DASB", "\0\x06"s) +
                     Record("DAEB", "\0\x0F"s) + Record("DATH", "\xCD\xCC\x4C\x3E") +
                     Record("DAAB", "\0"s) + Record("DAAT", "\0"s) + Record("DAQF", "\0\0"s)));
  component.CopyTo(detector);
  EXPECT_EQ(detector.dateCreated, 0);
  EXPECT_EQ(detector.dateModified, 0);
}

TEST_F(DetectorList, ReadsEveryFieldBackAndTheSwitchesAsSignedBytes) {
  const Vex2Detector detector = readBack(kFullChildren, 16);
  const Vex2Detector full = fullDetector();
  EXPECT_EQ(detector.name, full.name);
  EXPECT_EQ(detector.reporterDye, full.reporterDye);
  EXPECT_EQ(detector.quencherDye, full.quencherDye);
  EXPECT_EQ(detector.description, full.description);
  EXPECT_EQ(detector.comment, full.comment);
  EXPECT_EQ(detector.owner, full.owner);
  EXPECT_EQ(detector.location, full.location);
  EXPECT_TRUE(std::equal(detector.color, detector.color + 3, full.color));
  EXPECT_EQ(detector.dateCreated, 0x01020304);
  EXPECT_EQ(detector.dateModified, 5);
  EXPECT_EQ(detector.baselineStart, 0x0708);
  EXPECT_EQ(detector.baselineEnd, 9);
  EXPECT_EQ(detector.threshold, 1);
  EXPECT_EQ(detector.analysisFlags, 0xABCD);
  EXPECT_EQ(detector.autoBaseline, 1);
  EXPECT_EQ(detector.autoThreshold, -1);
}

TEST_F(DetectorList, WhatIsNotThereKeepsItsDefaultAndWhatIsUnknownIsIgnored) {
  const Vex2Detector detector = readBack(Record("TASK", "UNKN") + Record("Zzzz", "x"), 2);
  EXPECT_TRUE(detector.name.IsEmpty());
  EXPECT_TRUE(detector.comment.IsEmpty());
  EXPECT_EQ(detector.baselineStart, 6);
  EXPECT_EQ(detector.baselineEnd, 15);
}

TEST_F(DetectorList, OfEveryChildTwiceTheLastOneCounts) {
  const std::string first = Record("DETN", "first") + Record("COLR", "\x09\x09\x09") +
                            Record("DASB", "\x09\x09") + Record("DAAB", "\x09") +
                            Record("DATH", "\0\0\0\0"s) + Record("DATC", "\x09\x09\x09\x09");
  const Vex2Detector detector = readBack(first + kFullChildren, 22);
  EXPECT_EQ(detector.name, CString("MYC"));
  EXPECT_EQ(detector.color[0], 1);
  EXPECT_EQ(detector.baselineStart, 0x0708);
  EXPECT_EQ(detector.autoBaseline, 1);
  EXPECT_EQ(detector.threshold, 1);
  EXPECT_EQ(detector.dateCreated, 0x01020304);
}

TEST_F(DetectorList, TextLosesTheZeroByteThatEndsItWithoutAChangeOfTheFile) {
  const std::string stored = ListRecord("DETX", 1, Record("DETN", "two\0\0"s));
  CDetectorExtensionComp component;
  ASSERT_EQ(component.Read(&Holding(stored)), 0);
  const std::string held = Written(component);
  Vex2Detector detector;
  component.CopyTo(detector);
  EXPECT_EQ(detector.name, CString("two"));
  EXPECT_EQ(component.GetName(), "two");
  EXPECT_EQ(Written(component), held);
}

TEST_F(DetectorList, FindsByTheFirstNameAndCaseCounts) {
  const std::string twice = ListRecord("DETX", 2, Record("DETN", "a") + Record("DETN", "b"));
  const std::string upper = ListRecord("DETX", 1, Record("DETN", "A"));
  const std::string unnamed = ListRecord("DETX", 0, "");
  CDetectorListComp list;
  ASSERT_EQ(list.Read(&Holding(ListRecord("DETL", 4, unnamed + twice + upper + upper))), 0);
  EXPECT_EQ(list.Find("a"), 1);
  EXPECT_EQ(list.Find("A"), 2);
  EXPECT_EQ(list.Find("b"), -1);
  EXPECT_EQ(list.Find(""), -1);
  EXPECT_EQ(list.Find("ab"), -1);
}

TEST_F(DetectorList, UnnamedDetectorIsReportedAndNotAdded) {
  CDetectorListComp list;
  list.Add(Vex2Detector(), true);
  EXPECT_EQ(list.GetChildCount(), 0);
  EXPECT_EQ(host_.messages,
            std::vector<std::string>{
                "Cannot add a Detector Component if detector name is not specified"});
}

TEST_F(DetectorList, ChildThatIsNoDetectorIsHandedOutAsANewRecord) {
  CDetectorListComp list;
  ASSERT_EQ(list.Read(&Holding(ListRecord("DETL", 2, Record("NAME", "x") + Record("Zzzz", "")))),
            0);
  list.AddChild(std::make_unique<CSkippedComp>("DETX", 50));
  for (const int index : {0, 1, 2, 3, -1}) {
    Vex2Detector detector = fullDetector();
    list.CopyTo(index, detector);
    EXPECT_TRUE(detector.name.IsEmpty()) << index;
    EXPECT_EQ(detector.baselineStart, 6) << index;
  }
  EXPECT_EQ(list.Find("x"), -1);
}

TEST_F(DetectorList, IsCopiedDeep) {
  CDetectorListComp list;
  list.Add(fullDetector(), false);
  const std::string bytes = Written(list);
  std::unique_ptr<CComponent> copy;
  ASSERT_EQ(CloneComponent(list, copy), 1);
  list.FreeBody();
  EXPECT_EQ(Written(*copy), bytes);
}

TEST_F(DetectorList, TakesNoMoreThanItCanCount) {
  CDetectorListComp list;
  for (int index = 0; index < 65535; ++index) {
    ASSERT_TRUE(list.AddChild(std::make_unique<CSkippedComp>("Zzzz", 0)));
  }
  EXPECT_THROW(list.Add(fullDetector(), true), std::length_error);
  EXPECT_EQ(list.GetChildCount(), 65535);
}

TEST_F(DetectorList, RequiredDyesAreNoMoreThanTheyCanCount) {
  CRequiredDyesComp dyes;
  for (int index = 0; index < 65535; ++index) dyes.Add("FAM");
  EXPECT_THROW(dyes.Add("VIC"), std::length_error);
  EXPECT_EQ(dyes.GetChildCount(), 65535);
}

TEST_F(DetectorList, TextThatWasFreedIsEmpty) {
  CRequiredDyesComp dyes;
  dyes.Add("FAM");
  dyes.GetChild(0)->FreeBody();
  EXPECT_EQ(dyes.GetName(0), "");
}

TEST_F(DetectorList, ColourIsThreeBytes) {
  CColorComp color;
  EXPECT_EQ(Written(color), Record("COLR", "\0\0\0"s));
  EXPECT_EQ(color.Read(&Holding(Record("COLR", "\x01\x02\x03"))), 0);
  EXPECT_EQ(color.GetValue(), (std::array<std::uint8_t, 3>{1, 2, 3}));
  EXPECT_EQ(color.Read(&Holding(RecordDeclaring("COLR", 3, "\x07\x08"))), -100);
  EXPECT_EQ(color.GetValue()[0], 1);
  CColorComp copy;
  copy.Assign(color);
  EXPECT_EQ(copy.GetValue(), color.GetValue());
}

TEST_F(DetectorList, RequiredDyesAreAListOfTheirNames) {
  const CString names[] = {"FAM", "", "fam"};
  CRequiredDyesComp dyes(names, 3);
  EXPECT_EQ(Written(dyes), ListRecord("RqDy", 2, Record("aDye", "FAM") + Record("aDye", "fam")));
  EXPECT_EQ(dyes.Find("fam"), 1);
  EXPECT_EQ(dyes.Find("FA"), -1);
  EXPECT_EQ(dyes.Find(""), -1);
  EXPECT_EQ(dyes.Find(CString("FAM\0x", 5)), -1);
  EXPECT_EQ(dyes.GetName(0), "FAM");
  EXPECT_EQ(dyes.GetName(2), "");
  CRequiredDyesComp none(nullptr, 3);
  EXPECT_EQ(Written(none), ListRecord("RqDy", 0, ""));
}

}  // namespace
}  // namespace vex2::test
