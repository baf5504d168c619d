#include <gtest/gtest.h>

#include "tests/support/DocumentBytes.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/ExtensionModule.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace {

using namespace vex2::test;
using namespace std::string_literals;

std::string tagsOf(const Vex2FileManager& manager) {
  CStringList list;
  list.AddTail("stale");
  EXPECT_TRUE(manager.GetComponentTagList(list));
  std::string tags;
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    tags += std::string(list.GetNext(at)) + "|";
  }
  return tags;
}

class Lifecycle : public vex2::test::TempFolderTest {
 protected:
  void holds(const std::string& records) { WriteBytes(path_, DocumentOf(records)); }
  // Returns the status of the reader itself, which ReadFromFile does not return.
  int readStatus() {
    EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
    const int status = manager_.ReadComponentFile(nullptr);
    manager_.Close();
    return status;
  }

  vex2::test::RecordingHost host_;
  std::string path_ = folder_ / "run.vex";
  std::string other_ = folder_ / "other.vex";
  Vex2FileManager manager_;
};

const std::string kVersion = Record("VERS", "\0\0\0\x05"s);
const std::string kName = Record("NAME", "abc");

TEST_F(Lifecycle, BeginsClosedAndEmpty) {
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(manager_.GetAllComponentCount(), 0);
  EXPECT_TRUE(manager_.GetFilePath().IsEmpty());
  EXPECT_EQ(tagsOf(manager_), "");
}

TEST_F(Lifecycle, GetComponentIsNullOutOfRange) {
  EXPECT_EQ(manager_.GetComponent(0), nullptr);
  ASSERT_TRUE(manager_.InitMultiplate());
  EXPECT_NE(manager_.GetComponent(0), nullptr);
  EXPECT_EQ(manager_.GetComponent(1), nullptr);
  EXPECT_EQ(manager_.GetComponent(-1), nullptr);
}

TEST_F(Lifecycle, AFileNoLongerThanTheHeaderHoldsNoComponents) {
  for (const std::size_t length : {std::size_t{4}, std::size_t{100}, std::size_t{1024}}) {
    Bytes bytes = DocumentOf("");
    bytes.resize(length);
    WriteBytes(path_, bytes);
    EXPECT_EQ(readStatus(), 0) << length;
    EXPECT_EQ(manager_.GetAllComponentCount(), 0);
  }
}

TEST_F(Lifecycle, AFileThatIsNoDocumentReadsAsEmptyWithSuccess) {
  holds(kName);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  ASSERT_EQ(manager_.GetAllComponentCount(), 1);
  for (const auto* start : {"vex2", "Vex", "", "Text that is long enough"}) {
    WriteBytes(path_, ToBytes(start));
    EXPECT_EQ(readStatus(), -100) << start;
    EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), 0) << start;
    EXPECT_EQ(manager_.GetAllComponentCount(), 0);
    EXPECT_EQ(manager_.GetHeaderRows(), 0);
  }
}

TEST_F(Lifecycle, UnknownRecordsAreDroppedAndAllOthersKept) {
  holds(Record("Zzzz", "123") + kVersion + Record("MDPW", "\0\1"s) + kName + Record("name", "") +
        Record("EOF ", "\0\0\0\0"s) + Record("DESC", "d"));
  EXPECT_EQ(readStatus(), 0);
  EXPECT_EQ(tagsOf(manager_), "VERS|NAME|EOF |DESC|");
}

TEST_F(Lifecycle, AFailedBodyEndsTheReadingAndWhatWasBeforeStays) {
  holds(kVersion + RecordDeclaring("SPEC", 4, "\0\2"s + RecordDeclaring("NAME", 99, "x")) + kName);
  EXPECT_EQ(readStatus(), -100);
  EXPECT_EQ(tagsOf(manager_), "VERS|");
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(tagsOf(manager_), "VERS|");
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(Lifecycle, BytesAfterTheLastRecordEndTheReadingWithSuccess) {
  for (const auto* stray : {"N", "NA", "NAM"}) {
    holds(kVersion + stray);
    EXPECT_EQ(readStatus(), 0) << stray;
    EXPECT_EQ(tagsOf(manager_), "VERS|");
  }
}

TEST_F(Lifecycle, AKnownTagWithoutALengthIsNotFound) {
  holds(kVersion + "NAME\0\0"s);
  EXPECT_EQ(readStatus(), -300);
  EXPECT_EQ(tagsOf(manager_), "VERS|");
}

TEST_F(Lifecycle, AnUnknownTagWithoutALengthEndsTheReading) {
  holds(kVersion + "Zzzz\0\0"s);
  EXPECT_EQ(readStatus(), 0);
  EXPECT_EQ(tagsOf(manager_), "VERS|");
}

TEST_F(Lifecycle, RecordsThatDeclareLessThanTheyHoldDoNotKeepTheReaderAtTheEnd) {
  holds(RecordDeclaring("SPEC", 2, "\0\2"s + kName + kVersion) + kName);
  EXPECT_EQ(readStatus(), 0);
  EXPECT_EQ(tagsOf(manager_), "SPEC|NAME|");
}

TEST_F(Lifecycle, RecordsThatDeclareMoreThanTheyHoldEndTheReadingEarly) {
  holds(RecordDeclaring("SPEC", 1000, "\0\1"s + kName) + kName);
  EXPECT_EQ(readStatus(), 0);
  EXPECT_EQ(tagsOf(manager_), "SPEC|");
}

TEST_F(Lifecycle, LastUnknownRecordMayEndPastTheFile) {
  holds(kVersion + RecordDeclaring("Zzzz", 0xFFFFFFFF, "x"));
  EXPECT_EQ(readStatus(), 0);
  EXPECT_EQ(tagsOf(manager_), "VERS|");
}

TEST_F(Lifecycle, SavesHeaderAndRecordsInOrder) {
  const std::string records = kName + kVersion + Record("EOF ", "\0\0\0\0"s) + Record("COMM", "");
  holds(records);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(manager_.SaveToFile(other_.c_str()), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(other_), DocumentOf(records)), "");
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(manager_.GetFilePath(), other_.c_str());
}

TEST_F(Lifecycle, SavingReplacesALongerDocument) {
  WriteBytes(path_, Bytes(5000, 'x'));
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), DocumentOf("")), "");
}

TEST_F(Lifecycle, AStudyKeepsEightKindsAndEndsWithAnEndRecord) {
  const std::string kept = Record("ENDO", "e") + Record("GLBL", "\0\0"s) + Record("CALR", "c") +
                           Record("Conf", "\0\0\x80\x3F"s) + Record("RQAT", "\0\1"s);
  holds(Record("NAME", "n") + kept + Record("EOF ", "\0\0\0\x09"s) + Record("VERS", "\0\0\0\1"s));
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  Vex2HeaderData header = manager_.GetHeaderData();
  std::copy_n("RQSt", 4, header.assayCode);
  manager_.SetHeaderData(header);
  EXPECT_EQ(manager_.SaveToFile(other_.c_str()), 0);
  const Bytes saved = ReadBytes(other_);
  EXPECT_EQ(std::string(saved.begin() + 1024, saved.end()), kept + Record("EOF ", "\0\0\0\0"s));
  EXPECT_EQ(manager_.GetAllComponentCount(), 8) << "the list itself stays";
}

TEST_F(Lifecycle, SaveHeaderTakesTheHeaderOverAndSavesItAlone) {
  holds(kName);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  Vex2HeaderData header;
  header.SetRows(16);
  header.columns = 24;
  EXPECT_EQ(manager_.SaveHeader(path_.c_str(), header), 0);
  EXPECT_EQ(manager_.GetHeaderRows(), 16);
  EXPECT_EQ(manager_.GetHeaderCols(), 24);
  EXPECT_EQ(manager_.GetFilePath(), path_.c_str());
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(ReadBytes(path_).size(), 1024U);
  EXPECT_EQ(manager_.GetAllComponentCount(), 1);
}

TEST_F(Lifecycle, CopiesAreClosedAndHaveClonesInOrder) {
  holds(kName + kVersion);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  const Vex2FileManager copy(manager_);
  EXPECT_FALSE(copy.IsOpen());
  EXPECT_TRUE(manager_.IsOpen());
  EXPECT_EQ(tagsOf(copy), "NAME|VERS|");
  EXPECT_NE(copy.GetComponent(0), manager_.GetComponent(0));
  EXPECT_EQ(copy.GetComponent(0)->GetValueString(), "abc");
  EXPECT_EQ(copy.GetFilePath(), path_.c_str());
  EXPECT_EQ(copy.GetHeaderRows(), 8);
}

TEST_F(Lifecycle, AssignmentReplacesWhatWasHeld) {
  holds(kName);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  Vex2FileManager other;
  other.initTestData();
  EXPECT_EQ(&(other = manager_), &other);
  EXPECT_EQ(tagsOf(other), "NAME|");
}

TEST_F(Lifecycle, AssigningADocumentToItselfEmptiesIt) {
  holds(kName);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  Vex2FileManager& same = manager_;
  manager_ = same;
  EXPECT_EQ(manager_.GetAllComponentCount(), 0);
  EXPECT_EQ(manager_.GetHeaderRows(), 0);
}

TEST_F(Lifecycle, TestDataAreOnePlaceholderForEachKindAndAreNotCopied) {
  manager_.Reset();
  manager_.initTestData();
  EXPECT_EQ(manager_.GetHeaderRows(), 8);
  ASSERT_EQ(manager_.GetAllComponentCount(), 77);
  EXPECT_EQ(manager_.GetComponent(0)->GetTag(), "GLBL");
  EXPECT_EQ(manager_.GetComponent(0)->GetLength(), 100U);
  EXPECT_EQ(manager_.GetComponent(67)->GetTag(), "MDPW");
  EXPECT_EQ(manager_.GetComponent(76)->GetTag(), "RQAT");
  EXPECT_EQ(manager_.GetComponent(76)->GetLength(), 24U);
  manager_.initTestData();
  EXPECT_EQ(manager_.GetAllComponentCount(), 154);
  const Vex2FileManager copy(manager_);
  EXPECT_EQ(tagsOf(copy).find("MDPW"), std::string::npos);
}

TEST_F(Lifecycle, ResetEmptiesTheDocumentAndLeavesFileAndPath) {
  holds(kName);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  EXPECT_EQ(manager_.Reset(), 0);
  EXPECT_EQ(manager_.GetAllComponentCount(), 0);
  EXPECT_TRUE(manager_.IsOpen());
  EXPECT_EQ(manager_.GetFilePath(), path_.c_str());
}

TEST_F(Lifecycle, SafeOpenForReadingNeedsTheFile) {
  EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 0);
  EXPECT_EQ(manager_.GetFilePath(), path_.c_str()) << "the path is kept all the same";
  EXPECT_EQ(manager_.SafeOpen(nullptr, 0, 0), 0);
  EXPECT_EQ(manager_.SafeOpen("", 1, 0), 0);
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(Lifecycle, SafeOpenForWritingCreatesAndEmpties) {
  EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 1, 0), 1);
  manager_.Close();
  EXPECT_TRUE(ReadBytes(path_).empty());
  WriteBytes(path_, ToBytes("old"));
  EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 1, 0), 1);
  EXPECT_EQ(manager_.GetLength(), 0U);
}

TEST_F(Lifecycle, SafeOpenForAppendingCreatesAndSeeksToTheEnd) {
  EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 1, 1), 1);
  EXPECT_EQ(manager_.GetPosition(), 0U);
  WriteBytes(path_, ToBytes("old"));
  EXPECT_EQ(manager_.SafeOpen(path_.c_str(), 2, 3), 1);
  EXPECT_EQ(manager_.GetPosition(), 3U);
  manager_.Write("new", 3);
  manager_.Close();
  EXPECT_EQ(ReadBytes(path_), ToBytes("oldnew"));
}

TEST_F(Lifecycle, SafeOpenTakesThePathThatTheManagerHolds) {
  holds(kName);
  manager_.SetFilePath(path_.c_str());
  EXPECT_EQ(manager_.SafeOpen(manager_.GetFilePath(), 0, 0), 1);
  EXPECT_EQ(manager_.GetFileName(), "run.vex");
  EXPECT_EQ(manager_.GetFileTitle(), "run");
}

TEST_F(Lifecycle, FailuresToOpenHaveTheirStatuses) {
  const std::string nowhere = folder_ / "no/such/folder/run.vex";
  EXPECT_EQ(manager_.ReadFromFile(nowhere.c_str()), -100);
  EXPECT_EQ(manager_.SaveToFile(nowhere.c_str()), -200);
  EXPECT_EQ(manager_.SaveHeader(nowhere.c_str(), Vex2HeaderData()), -200);
  EXPECT_EQ(manager_.GetFilePath(), nowhere.c_str());
  EXPECT_EQ(manager_.ReadComponentFile(nullptr), -100);
  EXPECT_EQ(manager_.WriteComponentFile(nullptr), -200);
}

TEST_F(Lifecycle, WithoutAPathTheUserIsAskedForOne) {
  EXPECT_EQ(manager_.ReadFromFile(nullptr), -50);
  EXPECT_EQ(manager_.SaveToFile(nullptr), -50);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str(), true), -50);
  ASSERT_EQ(host_.chooserRequests.size(), 3U);
  EXPECT_EQ(host_.chooserRequests[0].title, "Select Vex File to Open");
  EXPECT_EQ(host_.chooserRequests[1].title, "Select Vex File to Save");
  EXPECT_EQ(host_.chooserRequests[2].title, "Select Vex File to Open");
  for (const auto& request : host_.chooserRequests) {
    EXPECT_EQ(request.filter, "Vex Files\0*.vex\0All Files\0*.*\0\0"s);
    EXPECT_EQ(request.defaultExtension, "vex");
    EXPECT_EQ(request.initialName, "");
    EXPECT_EQ(request.initialFolder, "");
    EXPECT_EQ(request.owner, nullptr);
  }
}

TEST_F(Lifecycle, TheChosenDocumentIsReadAndSaved) {
  holds(kName);
  host_.choice = vex2::ChooserResult{path_, "run.vex"};
  EXPECT_EQ(manager_.ReadFromFile("/not/this/one", true), 0);
  EXPECT_EQ(tagsOf(manager_), "NAME|");
  host_.choice = vex2::ChooserResult{other_, "other.vex"};
  EXPECT_EQ(manager_.SaveToFile(nullptr), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(other_), ReadBytes(path_)), "");
}

TEST_F(Lifecycle, ReadingShowsTheWaitCursorAndTracesItsTime) {
  holds(kName);
  host_.now = CTime(1000);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(host_.waitsBegun, 1);
  EXPECT_EQ(host_.waitsEnded, 1);
  ASSERT_EQ(host_.traces.size(), 1U);
  EXPECT_EQ(host_.traces[0],
            "Total time needed for reading in components is: "
            "days: 0, hours: 00, mins: 00, secs: 00\n");
  WriteBytes(path_, ToBytes("no document"));
  EXPECT_EQ(readStatus(), -100);
  EXPECT_EQ(host_.traces.size(), 2U) << "failures, too";
  EXPECT_EQ(host_.waitsEnded, 2);
}

TEST_F(Lifecycle, AcquisitionDataIsAvailableByStatusAndOffset) {
  EXPECT_FALSE(manager_.IsAcquisitionDataAvailable());
  Vex2HeaderData header;
  header.acquisitionDataOffset = 1024;
  manager_.SetHeaderData(header);
  EXPECT_FALSE(manager_.IsAcquisitionDataAvailable()) << "ZERO";
  ASSERT_EQ(manager_.SetAcquisitionStatus("PROG"), 0);
  EXPECT_TRUE(manager_.IsAcquisitionDataAvailable());
}

TEST_F(Lifecycle, ClassesAreRegisteredInAProgramThatIsLinkedStatically) {
  EXPECT_EQ(vex2::FindRuntimeClass("Vex2FileManager"), Vex2FileManager::ClassRecord());
  EXPECT_EQ(vex2::FindRuntimeClass("Vex2FileManagerComponent"),
            Vex2FileManagerComponent::ClassRecord());
}

TEST_F(Lifecycle, ClassRecordsNameTheClassesAndTheirBases) {
  const CRuntimeClass* record = manager_.GetRuntimeClass();
  EXPECT_STREQ(record->name, "Vex2FileManager");
  EXPECT_TRUE(manager_.IsKindOf(CFile::ClassRecord()));
}

}  // namespace
