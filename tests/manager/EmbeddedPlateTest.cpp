#include <gtest/gtest.h>

#include "tests/support/DocumentBytes.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace {

using namespace vex2::test;
using namespace std::string_literals;

const std::string kEnd = Record("EOPl", "\0\0\0\0"s);
const std::string kName = Record("NAME", "abc");
const std::string kProgram = Record("TPro", "steps");
const std::string kPaddedHeader = HeaderBytes(8, '\xFF');

class EmbeddedPlate : public vex2::test::TempFolderTest {
 protected:
  CFile& holding(const std::string& bytes) {
    WriteBytes(path_, ToBytes(bytes));
    EXPECT_TRUE(file_.Open(path_.c_str(), CFile::modeRead));
    return file_;
  }
  int read(const std::string& records) {
    return plate_.ReadComponentFile(&holding(kPaddedHeader + records));
  }
  std::string written() {
    EXPECT_TRUE(file_.Open(path_.c_str(), CFile::modeWrite | CFile::modeCreate));
    file_.Write("front", 5);
    EXPECT_EQ(plate_.WriteComponentFile(&file_), 0);
    file_.Close();
    const auto bytes = ReadBytes(path_);
    return {bytes.begin() + 5, bytes.end()};
  }
  std::string tags() const {
    std::string all;
    for (int i = 0; i < plate_.GetAllComponentCount(); ++i) all += plate_.GetComponent(i)->GetTag();
    return all;
  }

  vex2::test::SilentHost host_;
  std::string path_ = folder_ / "study.vex";
  CFile file_;
  Vex2FileManagerComponent plate_;
};

TEST_F(EmbeddedPlate, IsPaddedWithOnesAndEndsWithAnEndRecord) {
  EXPECT_EQ(written(), kPaddedHeader + kEnd);
}

TEST_F(EmbeddedPlate, IsReadAndWrittenAtTheFilePosition) {
  holding("front" + kPaddedHeader + kName + kProgram + kEnd + "behind");
  file_.Seek(5, CFile::begin);
  EXPECT_EQ(plate_.ReadComponentFile(&file_), 0);
  EXPECT_EQ(tags(), "NAMETPro");
  EXPECT_EQ(file_.GetLength() - file_.GetPosition(), 6U);
  EXPECT_EQ(written(), kPaddedHeader + kName + kProgram + kEnd) << "positions are not patched";
}

TEST_F(EmbeddedPlate, EndsAtAnyOfThreeMarkers) {
  EXPECT_EQ(read(kName + kEnd + kName), 0);
  EXPECT_EQ(file_.GetPosition(), 1024 + kName.size() + kEnd.size());
  EXPECT_EQ(tags(), "NAME");
  for (const auto* marker : {"EOF ", "Vex2"}) {
    EXPECT_EQ(read(kName + marker + "rest"), 0);
    EXPECT_EQ(file_.GetPosition(), 1024 + kName.size() + 4) << "the marker is consumed";
    EXPECT_EQ(tags(), "NAME");
  }
}

TEST_F(EmbeddedPlate, EndsAtTheFilesEndWithAShortRead) {
  EXPECT_EQ(read(kName), -100);
  EXPECT_EQ(tags(), "NAME");
  EXPECT_EQ(read(kName + "EOP"), -100);
  EXPECT_EQ(plate_.ReadComponentFile(&holding("")), -100);
}

TEST_F(EmbeddedPlate, TheEndRecordsStatusIsTheResult) {
  EXPECT_EQ(read(kName + "EOPl\0\0"s), -300);
  EXPECT_EQ(read(kName + "EOPl\0\0\0\4x"s), -100);
}

TEST_F(EmbeddedPlate, AFailedRecordIsLeftOutAndReadingContinues) {
  // If the list of plates contains another record, the list ends there, and the record is read as
  // one of the document.
  const std::string other = Record("CALR", "sample");
  EXPECT_EQ(read(kName + ListRecord("MPLC", 1, other) + kEnd), 0);
  EXPECT_EQ(tags(), "NAMECALR");
}

TEST_F(EmbeddedPlate, AFailedRecordAtTheEndIsLeftOut) {
  const std::string torn = RecordDeclaring("SPEC", 2, "\0"s);
  EXPECT_EQ(read(kName + torn), -100);
  EXPECT_EQ(tags(), "NAME");
}

TEST_F(EmbeddedPlate, UnknownTagsAreSteppedOverFourBytesAtATime) {
  EXPECT_EQ(read("ZzzzMDPW" + kName + kEnd), 0);
  EXPECT_EQ(tags(), "NAME");
  EXPECT_EQ(read(Record("Zzzz", "four") + kName + kEnd), 0);
  EXPECT_EQ(tags(), "NAME") << "length and body were taken for tags";
}

TEST_F(EmbeddedPlate, ReadsNoMagic) {
  EXPECT_EQ(plate_.ReadComponentFile(&holding(std::string(1024, '\0') + kEnd)), 0);
  EXPECT_EQ(plate_.GetHeaderRows(), 0);
}

TEST_F(EmbeddedPlate, ATablePastTheHeaderGetsNoPadding) {
  Vex2HeaderData header;
  header.SetRows(300);
  plate_.SetHeaderData(header);
  EXPECT_EQ(written(), HeaderBytes(300) + kEnd);
  header.SetRows(238);
  plate_.SetHeaderData(header);
  EXPECT_EQ(written(), HeaderBytes(238) + kEnd);
}

TEST_F(EmbeddedPlate, WithoutAFileUsesItsOwn) {
  EXPECT_EQ(plate_.WriteComponentFile(nullptr), -200) << "closed";
  EXPECT_EQ(plate_.ReadComponentFile(nullptr), -100);
  ASSERT_EQ(plate_.SafeOpen(path_.c_str(), 1, 0), 1);
  EXPECT_EQ(plate_.WriteComponentFile(nullptr), 0);
  plate_.Close();
  ASSERT_EQ(plate_.SafeOpen(path_.c_str(), 0, 0), 1);
  EXPECT_EQ(plate_.ReadComponentFile(nullptr), 0);
}

TEST_F(EmbeddedPlate, IsCutOutOfADocumentAndBack) {
  WriteBytes(path_, vex2::test::DocumentOf(kName + kProgram));
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  const Vex2FileManagerComponent cut(document);
  EXPECT_EQ(cut.GetAllComponentCount(), 2);
  EXPECT_EQ(cut.GetFilePath(), path_.c_str());
  const Vex2FileManagerComponent copy(cut);
  EXPECT_EQ(copy.GetAllComponentCount(), 2);
  const Vex2FileManager back(copy);
  EXPECT_EQ(back.GetAllComponentCount(), 2);
  plate_ = document;
  EXPECT_EQ(tags(), "NAMETPro");
  plate_ = Vex2FileManagerComponent();
  EXPECT_EQ(tags(), "");
}

TEST_F(EmbeddedPlate, IsInitialisedFromADocument) {
  Vex2FileManager document;
  EXPECT_EQ(document.SetCalibrator("one"), vex2::kSuccess);
  Vex2FileManagerComponent plate = document;
  CString name;
  EXPECT_EQ(plate.GetCalibrator(name), 0);
  EXPECT_EQ(name, "one");
}

TEST_F(EmbeddedPlate, AssignedToItselfIsEmpty) {
  ASSERT_EQ(read(kName + kEnd), 0);
  const Vex2FileManagerComponent& same = plate_;
  plate_ = same;
  EXPECT_EQ(tags(), "");
}

TEST_F(EmbeddedPlate, ReadsFilesOfAnyLength) {
  const std::string whole = kPaddedHeader + kName + kProgram + kEnd;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_LT(plate_.ReadComponentFile(&holding(whole.substr(0, length))), 0) << length;
  }
}

}  // namespace
