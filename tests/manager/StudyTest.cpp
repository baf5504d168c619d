#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/FileSystem.h"
#include "vex2/manager/SplitPath.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> toVector(const CStringList& list) {
  std::vector<std::string> texts;
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    texts.emplace_back(list.GetNext(at).View());
  }
  return texts;
}

std::vector<std::string> plateNames(const Vex2FileManager& study) {
  CStringList names;
  CStringList dates;
  study.GetMultiPlateList(names, dates);
  return toVector(names);
}

std::vector<std::string> tagsOf(const Vex2FileManager& document) {
  CStringList tags;
  document.GetComponentTagList(tags);
  return toVector(tags);
}

void setAssay(Vex2FileManager& document, const char* code) {
  Vex2HeaderData header = document.GetHeaderData();
  std::memcpy(header.assayCode, code, sizeof header.assayCode);
  document.SetHeaderData(header);
}

// A plate that says it lies at `path`; no file is needed to add it.
Vex2FileManager plateAt(const char* path, const char* calibrator = "one") {
  Vex2FileManager plate;
  plate.SetFilePath(path);
  plate.SetCalibrator(calibrator);
  return plate;
}

CString calibratorOf(const Vex2FileManager* document) {
  CString name;
  if (document != nullptr) document->GetCalibrator(name);
  return name;
}

std::uint32_t wordAt(const Bytes& bytes, std::size_t at) {
  return std::uint32_t{bytes.at(at)} << 24U | std::uint32_t{bytes.at(at + 1)} << 16U |
         std::uint32_t{bytes.at(at + 2)} << 8U | bytes.at(at + 3);
}

std::string textAt(const Bytes& bytes, std::size_t at, std::size_t count) {
  return {reinterpret_cast<const char*>(bytes.data()) + at, count};
}

struct Parts {
  bool found;
  CString folder, title, extension;
};

Parts split(const char* path) {
  Parts parts{};
  parts.folder = parts.title = parts.extension = "before";
  parts.found = SplitPath(path, parts.folder, parts.title, parts.extension);
  return parts;
}

TEST(SplitPath, TitleIsTheNameWithoutItsLastExtension) {
  const Parts parts = split("C:\\runs\\plate.7.vex");
  EXPECT_TRUE(parts.found);
  EXPECT_EQ(parts.folder, "C:\\runs");
  EXPECT_EQ(parts.title, "plate.7");
  EXPECT_EQ(parts.extension, "vex");
}

TEST(SplitPath, SlashSeparatesToo) {
  const Parts parts = split("/runs/plate7.vex");
  EXPECT_EQ(parts.folder, "/runs");
  EXPECT_EQ(parts.title, "plate7");
}

TEST(SplitPath, LastSeparatorOfEitherKindCounts) {
  EXPECT_EQ(split("/runs\\plate7.vex").title, "plate7");
  EXPECT_EQ(split("C:\\runs/plate7.vex").title, "plate7");
}

TEST(SplitPath, NameWithoutFolderIsNoName) {
  for (const char* path : {"plate7.vex", "\\plate7.vex", "/plate7.vex", ""}) {
    const Parts parts = split(path);
    EXPECT_FALSE(parts.found) << path;
    EXPECT_EQ(parts.folder, "") << path;
    EXPECT_EQ(parts.title, "") << path;
    EXPECT_EQ(parts.extension, "") << path;
  }
}

TEST(SplitPath, NameWithoutExtensionHasNoTitle) {
  for (const char* path : {"C:\\runs\\plate7", "C:\\runs\\.vex"}) {
    const Parts parts = split(path);
    EXPECT_TRUE(parts.found) << path;
    EXPECT_EQ(parts.folder, "C:\\runs") << path;
    EXPECT_EQ(parts.title, "") << path;
    EXPECT_EQ(parts.extension, "") << path;
  }
}

TEST(SplitPath, FolderOfOneCharacterIsNoFolderButNames) {
  const Parts parts = split("a\\plate7.vex");
  EXPECT_TRUE(parts.found);
  EXPECT_EQ(parts.folder, "");
  EXPECT_EQ(parts.title, "plate7");
  EXPECT_TRUE(split("runs\\").found);
  EXPECT_EQ(split("runs\\").title, "");
}

TEST(AddRQPlate, PlateIsACopyUnderItsFilesTitleWithNameAndDateLast) {
  Vex2FileManager plate = plateAt("C:\\runs\\plate7.vex");
  plate.AppendPlateName("old name");
  plate.SetEndoControl("endo");
  Vex2FileManager study;
  EXPECT_TRUE(study.AddRQPlate(&plate, "Mar 05, 2003 02:07 PM"));
  plate.SetCalibrator("changed");

  const Vex2FileManagerComponent* held = study.GetSinglePlatePtrByName("plate7");
  ASSERT_NE(held, nullptr);
  EXPECT_THAT(tagsOf(*held), ElementsAre("CALR", "ENDO", "Path", "RQPD"));
  EXPECT_EQ(calibratorOf(held), "one");
  CString name;
  CString date;
  EXPECT_EQ(held->GetPlateName(name), 0);
  EXPECT_EQ(held->GetLastModifiedDate(date), 0);
  EXPECT_EQ(name, "plate7");
  EXPECT_EQ(date, "Mar 05, 2003 02:07 PM");
}

TEST(AddRQPlate, SameTitleInAnotherFolderIsRefused) {
  Vex2FileManager study;
  const Vex2FileManager first = plateAt("C:\\a\\plate7.vex", "first");
  const Vex2FileManager second = plateAt("C:\\b\\plate7.vex", "second");
  EXPECT_TRUE(study.AddRQPlate(&first, "x"));
  EXPECT_FALSE(study.AddRQPlate(&second, "y"));
  EXPECT_THAT(plateNames(study), ElementsAre("plate7"));
  EXPECT_EQ(calibratorOf(study.GetSinglePlatePtrByName("plate7")), "first");
}

TEST(AddRQPlate, SecondEmptyNameIsRefused) {
  Vex2FileManager study;
  const Vex2FileManager first = plateAt("plate7.vex");
  const Vex2FileManager second = plateAt("C:\\runs\\plate8");
  EXPECT_TRUE(study.AddRQPlate(&first, ""));
  EXPECT_FALSE(study.AddRQPlate(&second, ""));
  EXPECT_THAT(plateNames(study), ElementsAre(""));
}

TEST(AddRQPlate, NamesDifferInCase) {
  Vex2FileManager study;
  const Vex2FileManager first = plateAt("C:\\runs\\plate.vex", "small");
  const Vex2FileManager second = plateAt("C:\\runs\\PLATE.vex", "great");
  EXPECT_TRUE(study.AddRQPlate(&first, ""));
  EXPECT_TRUE(study.AddRQPlate(&second, ""));
  EXPECT_EQ(calibratorOf(study.GetSinglePlatePtrByName("PLATE")), "great");
  EXPECT_EQ(study.GetSinglePlatePtrByName("Plate"), nullptr);
}

TEST(AddRQPlate, NullPlateIsRefused) {
  Vex2FileManager study;
  EXPECT_FALSE(study.AddRQPlate(nullptr, "x"));
  EXPECT_EQ(study.GetAllComponentCount(), 0);
}

TEST(AddRQPlate, StudyCanHoldACopyOfItself) {
  Vex2FileManager study = plateAt("C:\\runs\\study.vex");
  EXPECT_TRUE(study.AddRQPlate(&study, "x"));
  EXPECT_THAT(tagsOf(study), ElementsAre("CALR", "MPLC"));
  EXPECT_THAT(tagsOf(*study.GetSinglePlatePtrByName("study")), ElementsAre("CALR", "Path", "RQPD"));
}

TEST(InitMultiplate, DropsPlatesButTheirNamesStayTaken) {
  Vex2FileManager study;
  const Vex2FileManager plate = plateAt("C:\\runs\\plate7.vex");
  study.AddRQPlate(&plate, "x");
  study.SetCalibrator("behind");
  EXPECT_TRUE(study.InitMultiplate());
  EXPECT_THAT(tagsOf(study), ElementsAre("CALR", "MPLC"));
  EXPECT_EQ(study.GetRQPlateCount(), 0);
  EXPECT_FALSE(study.AddRQPlate(&plate, "x"));
  study.SyncPlatesWithAnalysisStorageMap();
  EXPECT_TRUE(study.AddRQPlate(&plate, "x"));
}

TEST(GetMultiPlateList, NamesAndDatesArePairwiseInOrder) {
  Vex2FileManager study;
  const Vex2FileManager first = plateAt("C:\\runs\\b.vex");
  const Vex2FileManager second = plateAt("C:\\runs\\a.vex");
  study.AddRQPlate(&first, "date of b");
  study.AddRQPlate(&second, "date of a");
  CStringList names;
  CStringList dates;
  names.AddTail("before");
  EXPECT_TRUE(study.GetMultiPlateList(names, dates));
  EXPECT_THAT(toVector(names), ElementsAre("b", "a"));
  EXPECT_THAT(toVector(dates), ElementsAre("date of b", "date of a"));
  EXPECT_EQ(study.GetRQPlateCount(), 2);
  EXPECT_EQ(study.GetNumPlates(), 2);
}

TEST(GetMultiPlateList, WithoutPlatesRecordListsStayAsTheyWere) {
  const Vex2FileManager document;
  CStringList names;
  CStringList dates;
  names.AddTail("name");
  dates.AddTail("date");
  EXPECT_FALSE(document.GetMultiPlateList(names, dates));
  EXPECT_THAT(toVector(names), ElementsAre("name"));
  EXPECT_THAT(toVector(dates), ElementsAre("date"));
  EXPECT_EQ(document.GetRQPlateCount(), 0);
  EXPECT_EQ(document.GetNumPlates(), 0);
  EXPECT_EQ(document.GetSinglePlatePtrByName("name"), nullptr);
}

TEST(RemoveRQPlate, RemovesThePlateAndFreesItsName) {
  Vex2FileManager study;
  const Vex2FileManager first = plateAt("C:\\runs\\a.vex");
  const Vex2FileManager second = plateAt("C:\\runs\\b.vex");
  study.AddRQPlate(&first, "date of a");
  study.AddRQPlate(&second, "date of b");
  EXPECT_TRUE(study.RemoveRQPlate("a"));
  CStringList names;
  CStringList dates;
  study.GetMultiPlateList(names, dates);
  EXPECT_THAT(toVector(names), ElementsAre("b"));
  EXPECT_THAT(toVector(dates), ElementsAre("date of b"));
  EXPECT_EQ(study.GetComponent(0)->GetLength(), 12U);
  EXPECT_TRUE(study.AddRQPlate(&first, "again"));
  EXPECT_THAT(plateNames(study), ElementsAre("b", "a"));
}

TEST(RemoveRQPlate, UnknownNameIsTrueOnAStudyAndFalseElsewhere) {
  Vex2FileManager study;
  EXPECT_FALSE(study.RemoveRQPlate("nobody"));
  study.InitMultiplate();
  EXPECT_TRUE(study.RemoveRQPlate("nobody"));
}

TEST(PlateTexts, AreCutToWhatOtherProgramsHold) {
  Vex2FileManager plate;
  const std::string longName(2000, 'n');
  EXPECT_EQ(plate.AppendPlateName(longName.c_str()), 0);
  EXPECT_EQ(plate.AppendLastModifiedDate(longName.c_str()), 0);
  CString name;
  CString date;
  plate.GetPlateName(name);
  plate.GetLastModifiedDate(date);
  EXPECT_EQ(name, CString(std::string_view(longName).substr(0, 1023)));
  EXPECT_EQ(date, CString(std::string_view(longName).substr(0, 1023)));
}

TEST(PlateTexts, WithoutARecordTheArgumentStays) {
  const Vex2FileManager plate;
  CString name = "before";
  EXPECT_EQ(plate.GetPlateName(name), 0);
  EXPECT_EQ(name, "before");
  EXPECT_EQ(plate.GetLastModifiedDate(name), 0);
  EXPECT_EQ(name, "before");
}

TEST(PlateTexts, AppendingMovesTheRecordToTheEnd) {
  Vex2FileManager plate;
  plate.AppendPlateName("one");
  plate.AppendLastModifiedDate("date");
  plate.AppendPlateName("two");
  EXPECT_THAT(tagsOf(plate), ElementsAre("RQPD", "Path"));
  CString name;
  plate.GetPlateName(name);
  EXPECT_EQ(name, "two");
}

TEST(ConvertAQ2RQ, MakesAnyDocumentAPlateForStudies) {
  Vex2FileManager document;
  EXPECT_FALSE(document.IsRQP());
  document.ConvertAQ2RQ();
  EXPECT_TRUE(document.IsRQP());
  EXPECT_FALSE(document.IsRQS());
  setAssay(document, "RQSt");
  EXPECT_TRUE(document.IsRQS());
}

TEST(CopyOfAStudy, CarriesPlatesNamesAndDatesButNoTakenNames) {
  Vex2FileManager study;
  const Vex2FileManager plate = plateAt("C:\\runs\\plate7.vex");
  study.AddRQPlate(&plate, "the date");
  Vex2FileManager copy(study);
  study.InitMultiplate();
  CStringList names;
  CStringList dates;
  copy.GetMultiPlateList(names, dates);
  EXPECT_THAT(toVector(names), ElementsAre("plate7"));
  EXPECT_THAT(toVector(dates), ElementsAre("the date"));
  EXPECT_EQ(calibratorOf(copy.GetSinglePlatePtrByName("plate7")), "one");
  EXPECT_TRUE(copy.AddRQPlate(&plate, "again")) << "the copy has no analysis storage yet";
  EXPECT_EQ(copy.GetRQPlateCount(), 2);
}

TEST(GetDataFrameCountByName, AsksTheNamedPlate) {
  Vex2FileManager plate = plateAt("C:\\runs\\plate7.vex");
  const std::uint16_t well = 1;
  plate.InitAcqDataWellNumberArray(&well, 1, DataRAWa);
  Vex2WellRecord record;
  record.leading[0] = 1;
  plate.SetAcqDataWellRecord(&record, 0, 1, DataRAWa);
  Vex2FileManager study;
  study.AddRQPlate(&plate, "");
  EXPECT_EQ(study.GetDataFrameCountByName("plate7", DataRAWa), 1);
  EXPECT_EQ(study.GetDataFrameCountByName("other", DataRAWa), 0);
  EXPECT_EQ(study.GetDataFrameCountByName(nullptr, DataRAWa), 0);
  EXPECT_EQ(plate.GetDataFrameCountByName(nullptr, DataRAWa), 1);
}

// Studies in files.
class StudyFileTest : public TempFolderTest {
 protected:
  StudyFileTest() { setAssay(study_, "RQSt"); }

  void add(const char* path, const char* date) {
    const Vex2FileManager plate = plateAt(path, path);
    ASSERT_TRUE(study_.AddRQPlate(&plate, date));
  }
  Bytes saved() {
    EXPECT_EQ(study_.SaveToFile(path_.c_str()), 0);
    return ReadBytes(path_);
  }
  // Writes a document of `body` behind a study's header and reads it.
  int read(const Bytes& body) {
    Bytes bytes = headerBytes();
    bytes.insert(bytes.end(), body.begin(), body.end());
    WriteBytes(path_, bytes);
    Vex2FileManager& reader = read_;
    EXPECT_EQ(reader.SafeOpen(path_.c_str(), 0, 0), 1);
    const int status = reader.ReadComponentFile(nullptr);
    reader.Abort();
    return status;
  }
  Bytes headerBytes() {
    Vex2FileManager empty;
    EXPECT_EQ(empty.SaveHeader(path_.c_str(), study_.GetHeaderData()), 0);
    return ReadBytes(path_);
  }

  std::string path_ = folder_ / "study.vex";
  Vex2FileManager study_;
  Vex2FileManager read_;
};

constexpr std::size_t kPlates = 1024;  // where the first record stands

TEST_F(StudyFileTest, PlatesAreWrittenWithLengthsThatDoNotDescribeThem) {
  add("C:\\runs\\a.vex", "d");
  add("C:\\runs\\b.vex", "e");
  const Bytes bytes = saved();
  EXPECT_EQ(textAt(bytes, kPlates, 4), "MPLC");
  EXPECT_EQ(wordAt(bytes, kPlates + 4), 22U);
  EXPECT_EQ(wordAt(bytes, kPlates + 8) >> 16U, 2U);
  EXPECT_EQ(textAt(bytes, kPlates + 10, 4), "RQPl");
  EXPECT_EQ(wordAt(bytes, kPlates + 14), 2U);
  EXPECT_EQ(wordAt(bytes, kPlates + 18) >> 16U, 0U);

  const std::size_t header = kPlates + 20;
  EXPECT_EQ(textAt(bytes, header, 4), "Vex2");
  for (std::size_t at = header + 72 + 4 * 8; at < header + 1024; ++at) {
    ASSERT_EQ(bytes.at(at), 0xFF) << at;
  }
  const std::size_t records = header + 1024;
  EXPECT_EQ(textAt(bytes, records, 4), "CALR");
  const std::size_t path = records + 8 + std::strlen("C:\\runs\\a.vex");
  EXPECT_EQ(textAt(bytes, path, 4), "Path");
  EXPECT_EQ(textAt(bytes, path + 9, 4), "RQPD");
  const std::size_t end = path + 18;
  EXPECT_EQ(textAt(bytes, end, 4), "EOPl");
  EXPECT_EQ(wordAt(bytes, end + 4), 4U);
  EXPECT_EQ(wordAt(bytes, end + 8), 0U);
  EXPECT_EQ(textAt(bytes, end + 12, 4), "RQPl");
}

TEST_F(StudyFileTest, LengthGrowsByTenForEachPlateAtEveryRead) {
  add("C:\\runs\\a.vex", "d");
  add("C:\\runs\\b.vex", "e");
  saved();
  for (const std::uint32_t expected : {42U, 62U, 82U}) {
    Vex2FileManager reader;
    ASSERT_EQ(reader.ReadFromFile(path_.c_str()), 0);
    EXPECT_EQ(reader.GetComponent(0)->GetLength(), expected);
    EXPECT_EQ(reader.GetRQPlateCount(), 2);
    ASSERT_EQ(reader.SaveToFile(path_.c_str()), 0);
    EXPECT_EQ(wordAt(ReadBytes(path_), kPlates + 4), expected);
  }
}

TEST_F(StudyFileTest, StudyReadsBackWithWhatStandsBehindItsPlates) {
  add("C:\\runs\\a.vex", "date of a");
  add("C:\\runs\\b.vex", "date of b");
  study_.SetCalibrator("behind");
  saved();
  ASSERT_EQ(read_.ReadFromFile(path_.c_str()), 0);
  EXPECT_THAT(tagsOf(read_), ElementsAre("MPLC", "CALR", "EOF "));
  CStringList names;
  CStringList dates;
  read_.GetMultiPlateList(names, dates);
  EXPECT_THAT(toVector(names), ElementsAre("a", "b"));
  EXPECT_THAT(toVector(dates), ElementsAre("date of a", "date of b"));
  EXPECT_EQ(calibratorOf(read_.GetSinglePlatePtrByName("b")), "C:\\runs\\b.vex");
}

TEST_F(StudyFileTest, OnlyAStudysOwnKindsAreWrittenAndAnEnd) {
  add("C:\\runs\\a.vex", "d");
  study_.AppendPlateName("no study has one");
  study_.SetCalibrator("c");
  const Bytes bytes = saved();
  EXPECT_EQ(textAt(bytes, bytes.size() - 12, 4), "EOF ");
  EXPECT_EQ(wordAt(bytes, bytes.size() - 4), 0U);
  read_.ReadFromFile(path_.c_str());
  EXPECT_THAT(tagsOf(read_), ElementsAre("MPLC", "CALR", "EOF "));
}

TEST_F(StudyFileTest, ReadPlateIsKnownByTheNameInItsOwnRecord) {
  add("C:\\runs\\a.vex", "d");
  study_.GetSinglePlatePtrByName("a")->AppendPlateName("renamed");
  saved();
  read_.ReadFromFile(path_.c_str());
  EXPECT_THAT(plateNames(read_), ElementsAre("renamed"));
}

TEST_F(StudyFileTest, ReadStudyAcceptsATakenNameUntilItsStorageIsMade) {
  add("C:\\runs\\a.vex", "d");
  saved();
  read_.ReadFromFile(path_.c_str());
  read_.SyncPlatesWithAnalysisStorageMap();
  const Vex2FileManager plate = plateAt("C:\\runs\\a.vex");
  EXPECT_FALSE(read_.AddRQPlate(&plate, "d"));
}

TEST_F(StudyFileTest, ExtractedPlateSavesAsADocumentOfItsOwn) {
  add("C:\\runs\\a.vex", "d");
  saved();
  read_.ReadFromFile(path_.c_str());
  Vex2FileManager plate(*read_.GetSinglePlatePtrByName("a"));
  const std::string path = folder_ / "a.vex";
  ASSERT_EQ(plate.SaveToFile(path.c_str()), 0);
  Vex2FileManager again;
  ASSERT_EQ(again.ReadFromFile(path.c_str()), 0);
  EXPECT_THAT(tagsOf(again), ElementsAre("CALR", "Path", "RQPD"));
}

TEST_F(StudyFileTest, ResetDropsThePlatesAndTheirTakenNames) {
  add("C:\\runs\\a.vex", "d");
  study_.Reset();
  EXPECT_EQ(study_.GetRQPlateCount(), 0);
  add("C:\\runs\\a.vex", "d");
}

// --- Studies that lie ---

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

Bytes word(std::uint32_t value) {
  return {static_cast<std::uint8_t>(value >> 24U), static_cast<std::uint8_t>(value >> 16U & 0xFFU),
          static_cast<std::uint8_t>(value >> 8U & 0xFFU), static_cast<std::uint8_t>(value & 0xFFU)};
}

Bytes count(std::uint16_t value) {
  return {static_cast<std::uint8_t>(value >> 8U), static_cast<std::uint8_t>(value & 0xFFU)};
}

Bytes record(const char* tag, std::uint32_t length, const Bytes& body) {
  return ToBytes(tag) + word(length) + body;
}

// A plate record with a header of `rows` rows, without what follows the header's fixed part.
Bytes plateHead(std::uint16_t rows) {
  Bytes header(72, 0);
  std::memcpy(header.data(), "Vex2", 4);
  header[20] = static_cast<std::uint8_t>(rows >> 8U);
  header[21] = static_cast<std::uint8_t>(rows & 0xFFU);
  return record("RQPl", 2, count(0) + header);
}

Bytes plate(const Bytes& records) {
  return plateHead(0) + Bytes(1024 - 72, 0xFF) + records + record("EOPl", 4, word(0));
}

TEST_F(StudyFileTest, ChildThatIsNoPlateEndsTheReadAsNotFound) {
  for (const char* tag : {"CALR", "EOF ", "MPLC", "????"}) {
    EXPECT_EQ(read(record("MPLC", 22, count(2) + plate({}) + record(tag, 1, {'x'}))), -300) << tag;
    EXPECT_THAT(tagsOf(read_), IsEmpty()) << tag;
  }
}

TEST_F(StudyFileTest, CountPastTheFilesEndKeepsThePlatesThatAreThere) {
  EXPECT_EQ(read(record("MPLC", 22, count(65535) + plate({}) + plate({}))), 0);
  EXPECT_EQ(read_.GetRQPlateCount(), 2);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(wordAt(ReadBytes(path_), kPlates + 8) >> 16U, 2U) << "what is written is what is there";
}

TEST_F(StudyFileTest, CountOfPlatesInAFileWithoutAnyIsWrittenAsNone) {
  EXPECT_EQ(read(record("MPLC", 2, count(65535))), 0);
  EXPECT_EQ(read_.GetRQPlateCount(), 0);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(wordAt(ReadBytes(path_), kPlates + 8) >> 16U, 0U);
}

TEST_F(StudyFileTest, PlateWithoutItsEndIsAShortRead) {
  EXPECT_EQ(read(record("MPLC", 12, count(1) + plateHead(0) + Bytes(1024 - 72, 0xFF))), -100);
  EXPECT_THAT(tagsOf(read_), IsEmpty());
}

TEST_F(StudyFileTest, PlateEndsAtTheEndOfTheDocumentOrTheNextDocument) {
  for (const char* tag : {"EOF ", "Vex2"}) {
    const Bytes head = plateHead(0) + Bytes(1024 - 72, 0xFF);
    EXPECT_EQ(read(record("MPLC", 12, count(1) + head + record("CALR", 1, {'x'}) + ToBytes(tag))),
              0);
    ASSERT_EQ(read_.GetRQPlateCount(), 1) << tag;
    EXPECT_EQ(calibratorOf(read_.GetSinglePlatePtrByName("")), "x") << tag;
  }
}

TEST_F(StudyFileTest, UnknownRecordInAPlateIsSteppedOverFourBytesAtATime) {
  EXPECT_EQ(
      read(record("MPLC", 12,
                  count(1) + plate(record("????", 4, ToBytes("zzzz")) + record("CALR", 1, {'x'})))),
      0);
  EXPECT_THAT(tagsOf(*read_.GetSinglePlatePtrByName("")), ElementsAre("CALR"));
}

TEST_F(StudyFileTest, PlateOf65535RowsIsReadWithinTheFile) {
  EXPECT_EQ(read(record("MPLC", 12, count(1) + plateHead(65535))), -100);
  Bytes rows(std::size_t{65535} * 4, 0x11);
  EXPECT_EQ(
      read(record("MPLC", 12, count(1) + plateHead(65535) + rows + record("EOPl", 4, word(0)))), 0);
  const auto* held = read_.GetSinglePlatePtrByName("");
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(held->GetHeaderRows(), 65535);
  EXPECT_EQ(held->GetHeaderData().usage[65534], 0x11111111U);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0) << "no padding behind such a table";
  Vex2FileManager again;
  ASSERT_EQ(again.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(again.GetRQPlateCount(), 1);
}

TEST_F(StudyFileTest, PlateOfLengthZeroHasNoDocumentAndDoesNoHarm) {
  EXPECT_EQ(read(record("MPLC", 12, count(1) + record("RQPl", 0, {})) + record("CALR", 1, {'x'})),
            0);
  EXPECT_EQ(read_.GetRQPlateCount(), 1);
  EXPECT_EQ(read_.GetSinglePlatePtrByName(""), nullptr);
  EXPECT_EQ(read_.GetDataFrameCountByName("", DataRAWa), 0);
  const Vex2FileManager copy(read_);
  EXPECT_EQ(copy.GetRQPlateCount(), 1);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  Vex2FileManager again;
  EXPECT_EQ(again.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(again.GetRQPlateCount(), 1);
  EXPECT_EQ(calibratorOf(&again), "x");
}

TEST_F(StudyFileTest, LengthNearItsLimitKeepsThePlatesAndWhatStandsBehindThem) {
  const Bytes behind = record("CALR", 1, {'x'});
  EXPECT_EQ(read(record("MPLC", 0xFFFFFFF6U, count(1) + plate({})) + behind), 0);
  EXPECT_EQ(read_.GetRQPlateCount(), 1);
  EXPECT_EQ(calibratorOf(&read_), "x");
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  Vex2FileManager again;
  EXPECT_EQ(again.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(again.GetRQPlateCount(), 1);
}

TEST_F(StudyFileTest, StudyInAStudyReadsAndStudiesWithoutEndDoNot) {
  EXPECT_EQ(read(record("MPLC", 12, count(1) + plate(record("MPLC", 12, count(1) + plate({}))))),
            0);
  ASSERT_EQ(read_.GetRQPlateCount(), 1);
  EXPECT_EQ(read_.GetSinglePlatePtrByName("")->GetRQPlateCount(), 1);

  // Each level takes two of the depth that records may nest; what stands too deep is dropped.
  Bytes nested;
  for (int level = 0; level < 200; ++level) {
    nested = record("MPLC", 12, count(1) + plate(nested));
  }
  read(nested);
  int levels = 0;
  for (const Vex2FileManager* at = &read_; at != nullptr && at->GetRQPlateCount() > 0; ++levels) {
    at = at->GetSinglePlatePtrByName("");
  }
  EXPECT_EQ(levels, 31) << "the plate at the last depth cannot hold another";
}

// Refuses whatever would make a file longer than it allows.
class SmallDisk : public FileSystem {
 public:
  explicit SmallDisk(std::uint64_t room) : room_(room), before_(SetFileSystem(this)) {}
  ~SmallDisk() override { SetFileSystem(before_); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ssize_t WriteAt(int file, const void* bytes, std::size_t size, std::uint64_t offset) override {
    if (offset + size > room_) return -ENOSPC;
    return FileSystem::WriteAt(file, bytes, size, offset);
  }

 private:
  std::uint64_t room_;
  FileSystem* before_;
};

TEST_F(StudyFileTest, DiskThatFillsUpInsideAPlateFailsTheSave) {
  const Bytes before = saved();
  Vex2FileManager big = plateAt("C:\\runs\\big.vex");
  big.SetCalibrator(std::string(CFile::kBufferSize, 'x').c_str());
  ASSERT_TRUE(study_.AddRQPlate(&big, "d"));
  ASSERT_TRUE(study_.AddRQPlate(&study_, "d"));
  {
    const SmallDisk disk(CFile::kBufferSize);
    EXPECT_EQ(study_.SaveToFile(path_.c_str()), -200);
  }
  EXPECT_EQ(ReadBytes(path_), before) << "the old document stands";
  EXPECT_EQ(study_.SaveToFile(path_.c_str()), 0);
}

}  // namespace
}  // namespace vex2::test
