// Tests the detectors of a document and the dyes that its run requires.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/Files.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

constexpr const char* kNoName = "Cannot add a Detector Component if detector name is not specified";

class PlateLists : public TempFolderTest {
 protected:
  static Vex2Detector detector(const char* name, std::uint16_t flags = 0) {
    Vex2Detector made;
    made.name = name;
    made.analysisFlags = flags;
    return made;
  }
  std::string detectors() const {
    int count = -1;
    if (document_.GetNumberOfDetectors(count) != kSuccess) return "none";
    Vex2Detector* list = nullptr;
    EXPECT_EQ(document_.GetDetectorListInfo(list), kSuccess);
    std::string names;
    for (int i = 0; i < count; ++i) names += std::string(list[i].name.View()) + ' ';
    delete[] list;
    return names;
  }
  std::string dyes() const {
    int count = -1;
    if (document_.GetNumberOfRequiredDyes(count) != kSuccess) return "none";
    CString* list = nullptr;
    EXPECT_EQ(document_.GetRequiredDyeListInfo(list), kSuccess);
    std::string names;
    for (int i = 0; i < count; ++i) names += std::string(list[i].View()) + ' ';
    delete[] list;
    return names;
  }
  void saved() { ASSERT_EQ(Vex2FileManager().SaveToFile(path_.c_str()), kSuccess); }
  std::string savedTags() const {
    Vex2FileManager reader;
    EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
    return TagsOf(reader);
  }

  const std::string path_ = folder_ / "document.vex";
  RecordingHost host_;
  Vex2FileManager document_;
};

using Detectors = PlateLists;

// Both lists can be changed even if they declare less than they hold.
TEST_F(PlateLists, AreChangedAlsoWhereTheyDeclareTooLittle) {
  const Vex2Detector two[] = {detector("a"), detector("b")};
  const CString names[] = {"dye", "other"};
  for (const std::uint32_t declared : {2U, 20U, 79U}) {
    Vex2FileManager writer;
    EXPECT_EQ(writer.UpdateDetectorList(two, 2), kSuccess);
    ASSERT_EQ(writer.SaveToFile(path_.c_str()), kSuccess);
    const std::size_t dyesAt = ReadBytes(path_).size();
    EXPECT_EQ(writer.UpdateRequiredDyeList(names, 2), kSuccess);
    ASSERT_EQ(writer.SaveToFile(path_.c_str()), kSuccess);
    Bytes bytes = ReadBytes(path_);
    SetLongAt(bytes, 1024 + 4, declared);
    SetLongAt(bytes, dyesAt + 4, 2);
    WriteBytes(path_, bytes);
    ASSERT_EQ(document_.ReadFromFile(path_.c_str()), kSuccess);

    Vex2Detector changed = detector("a", 5);
    EXPECT_EQ(document_.AppendDetectorInfo(&changed), kSuccess) << declared;
    EXPECT_EQ(detectors(), "b a ") << declared;
    changed.comment = "longer than the one before";
    EXPECT_EQ(document_.AppendDetectorInfo(&changed), kSuccess) << declared;
    EXPECT_TRUE(document_.RemoveDetectorInfo("b"));
    EXPECT_TRUE(document_.RemoveRequiredDyeInfo("dye"));
    EXPECT_TRUE(document_.AppendRequiredDyenfo("third"));
    EXPECT_EQ(document_.SetCalibrator("behind"), kSuccess);
    EXPECT_EQ(document_.SaveToFile(path_.c_str()), kSuccess);
    EXPECT_EQ(savedTags(), "DETL RqDy CALR") << declared;
    ASSERT_EQ(document_.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_EQ(detectors(), "a ") << declared;
    EXPECT_EQ(dyes(), "other third ") << declared;
  }
}

TEST_F(PlateLists, DetectorStaysWhereItsReplacementIsRefused) {
  const Vex2Detector one = detector("a");
  EXPECT_EQ(document_.AppendDetectorInfo(&one), kSuccess);
  ASSERT_EQ(document_.SaveToFile(path_.c_str()), kSuccess);
  Bytes bytes = ReadBytes(path_);
  SetLongAt(bytes, 1024 + 4, 0xFFFFFFFF);
  WriteBytes(path_, bytes);
  ASSERT_EQ(document_.ReadFromFile(path_.c_str()), kSuccess);
  Vex2Detector longer = one;
  longer.comment = "longer";
  EXPECT_EQ(document_.AppendDetectorInfo(&longer), kWriteFailed);
  EXPECT_EQ(detectors(), "a ");
}

TEST_F(Detectors, AppendedOnesKeepTheirOrder) {
  for (const char* name : {"a", "b", "A"}) {
    const Vex2Detector added = detector(name);
    EXPECT_EQ(document_.AppendDetectorInfo(&added), kSuccess);
  }
  EXPECT_EQ(detectors(), "a b A ");
}

TEST_F(Detectors, ThatReplaceOneMoveToTheEnd) {
  for (const char* name : {"a", "b", "c"}) {
    const Vex2Detector added = detector(name);
    EXPECT_EQ(document_.AppendDetectorInfo(&added), kSuccess);
  }
  const Vex2Detector changed = detector("a", 7);
  EXPECT_EQ(document_.AppendDetectorInfo(&changed), kSuccess);
  EXPECT_EQ(detectors(), "b c a ");
  Vex2Detector* list = nullptr;
  EXPECT_EQ(document_.GetDetectorListInfo(list), kSuccess);
  EXPECT_EQ(list[2].analysisFlags, 7);
  delete[] list;
}

TEST_F(Detectors, WithoutANameAreReportedAndLeaveAnEmptyList) {
  const Vex2Detector unnamed;
  EXPECT_EQ(document_.AppendDetectorInfo(&unnamed), kSuccess);
  EXPECT_EQ(host_.messages, std::vector<std::string>{kNoName});
  int count = -1;
  EXPECT_EQ(document_.GetNumberOfDetectors(count), kSuccess);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(TagsOf(document_), "DETL");
}

TEST_F(Detectors, AreReplacedAsAListAndTheEmptyListStays) {
  Vex2Detector list[3] = {detector("a"), Vex2Detector(), detector("b")};
  EXPECT_EQ(document_.UpdateDetectorList(list, 3), kSuccess);
  EXPECT_EQ(host_.messages.size(), 1U);
  EXPECT_EQ(detectors(), "a b ");
  EXPECT_EQ(document_.SetCalibrator("x"), kSuccess);
  EXPECT_EQ(document_.UpdateDetectorList(nullptr, 3), kSuccess);
  EXPECT_EQ(detectors(), "");
  EXPECT_EQ(TagsOf(document_), "CALR DETL");
  EXPECT_EQ(document_.UpdateDetectorList(list, 0), kSuccess);
  EXPECT_EQ(detectors(), "");
}

TEST_F(Detectors, ThatAreRemovedTakeTheListWithTheLast) {
  EXPECT_FALSE(document_.RemoveDetectorInfo("a"));
  Vex2Detector list[2] = {detector("a"), detector("b")};
  EXPECT_EQ(document_.UpdateDetectorList(list, 2), kSuccess);
  EXPECT_FALSE(document_.RemoveDetectorInfo("A"));
  EXPECT_FALSE(document_.RemoveDetectorInfo(""));
  EXPECT_TRUE(document_.RemoveDetectorInfo("a"));
  EXPECT_EQ(detectors(), "b ");
  EXPECT_TRUE(document_.RemoveDetectorInfo("b"));
  int count = 5;
  EXPECT_EQ(document_.GetNumberOfDetectors(count), kNotFound);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(TagsOf(document_), "");
}

TEST_F(Detectors, EmptyListGoesWithARemovalThatFindsNothing) {
  EXPECT_EQ(document_.UpdateDetectorList(nullptr, 0), kSuccess);
  EXPECT_FALSE(document_.RemoveDetectorInfo("a"));
  EXPECT_EQ(detectors(), "none");
}

TEST_F(Detectors, AreHandedOutInPlaceOfAnOldArray) {
  auto* list = new Vex2Detector[7];
  auto* before = list;
  EXPECT_EQ(document_.GetDetectorListInfo(list), kNotFound);
  EXPECT_EQ(document_.UpdateDetectorList(nullptr, 0), kSuccess);
  EXPECT_EQ(document_.GetDetectorListInfo(list), kSuccess);
  EXPECT_EQ(list, before) << "an empty list leaves it as it was";
  const Vex2Detector added = detector("a");
  EXPECT_EQ(document_.AppendDetectorInfo(&added), kSuccess);
  EXPECT_EQ(document_.GetDetectorListInfo(list), kSuccess);
  EXPECT_EQ(list[0].name, "a");
  delete[] list;
}

TEST_F(Detectors, AreAppendedToAFile) {
  EXPECT_EQ(document_.AppendDetectorListToFile(path_.c_str()), kNotFound);
  const Vex2Detector added = detector("a");
  EXPECT_EQ(document_.AppendDetectorInfo(&added), kSuccess);
  EXPECT_EQ(document_.AppendDetectorListToFile(nullptr), kWriteFailed);
  EXPECT_EQ(document_.AppendDetectorListToFile((folder_ / "missing/x.vex").c_str()), kWriteFailed);
  saved();
  EXPECT_EQ(document_.AppendDetectorListToFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(document_.IsOpen());
  EXPECT_EQ(savedTags(), "DETL");
}

using RequiredDyes = PlateLists;

TEST_F(RequiredDyes, AreThereOnceAndCaseCounts) {
  CString fam = "FAM";
  EXPECT_TRUE(document_.AppendRequiredDyenfo(fam));
  EXPECT_FALSE(document_.AppendRequiredDyenfo(fam));
  EXPECT_TRUE(document_.AppendRequiredDyenfo("fam"));
  EXPECT_EQ(dyes(), "FAM fam ");
}

TEST_F(RequiredDyes, EmptyNameMakesAnEmptyList) {
  EXPECT_TRUE(document_.AppendRequiredDyenfo(""));
  EXPECT_EQ(dyes(), "");
  EXPECT_TRUE(document_.AppendRequiredDyenfo(""));
  EXPECT_EQ(TagsOf(document_), "RqDy");
}

TEST_F(RequiredDyes, AreReplacedAsAListAndTheEmptyListStays) {
  CString list[3] = {"a", "", "a"};
  EXPECT_EQ(document_.UpdateRequiredDyeList(list, 3), kSuccess);
  EXPECT_EQ(dyes(), "a a ");
  EXPECT_EQ(document_.UpdateRequiredDyeList(nullptr, 3), kSuccess);
  EXPECT_EQ(dyes(), "");
  EXPECT_EQ(document_.UpdateRequiredDyeList(list, 0), kSuccess);
  EXPECT_EQ(dyes(), "");
}

TEST_F(RequiredDyes, ThatAreRemovedTakeTheListWithTheLast) {
  EXPECT_FALSE(document_.RemoveRequiredDyeInfo("a"));
  CString list[2] = {"a", "b"};
  EXPECT_EQ(document_.UpdateRequiredDyeList(list, 2), kSuccess);
  EXPECT_FALSE(document_.RemoveRequiredDyeInfo("A"));
  EXPECT_FALSE(document_.RemoveRequiredDyeInfo(""));
  EXPECT_TRUE(document_.RemoveRequiredDyeInfo("a"));
  EXPECT_TRUE(document_.RemoveRequiredDyeInfo("b"));
  int count = 5;
  EXPECT_EQ(document_.GetNumberOfRequiredDyes(count), kNotFound);
  EXPECT_EQ(count, 0);
}

TEST_F(RequiredDyes, AreHandedOutInPlaceOfAnOldArray) {
  auto* list = new CString[3];
  auto* before = list;
  EXPECT_EQ(document_.GetRequiredDyeListInfo(list), kNotFound);
  EXPECT_EQ(document_.UpdateRequiredDyeList(nullptr, 0), kSuccess);
  EXPECT_EQ(document_.GetRequiredDyeListInfo(list), kSuccess);
  EXPECT_EQ(list, before);
  document_.AppendRequiredDyenfo("a");
  EXPECT_EQ(document_.GetRequiredDyeListInfo(list), kSuccess);
  EXPECT_EQ(list[0], "a");
  delete[] list;
}

TEST_F(RequiredDyes, AreAppendedToAFile) {
  EXPECT_EQ(document_.AppendRequiredDyeListToFile(path_.c_str()), kNotFound);
  document_.AppendRequiredDyenfo("a");
  EXPECT_EQ(document_.AppendRequiredDyeListToFile(nullptr), kWriteFailed);
  saved();
  EXPECT_EQ(document_.AppendRequiredDyeListToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(savedTags(), "RqDy");
}

}  // namespace
}  // namespace vex2::test
