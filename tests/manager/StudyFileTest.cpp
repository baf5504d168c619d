// Tests studies in files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tests/support/StudyDocument.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {
namespace {

using testing::ElementsAre;

TEST_F(StudyFileTest, PlatesAreWrittenWithLengthsThatDoNotDescribeThem) {
  add("C:\\runs\\a.vex", "d");
  add("C:\\runs\\b.vex", "e");
  const Bytes bytes = saved();
  EXPECT_EQ(TextAt(bytes, kPlates, 4), "MPLC");
  EXPECT_EQ(LongAt(bytes, kPlates + 4), 22U);
  EXPECT_EQ(LongAt(bytes, kPlates + 8) >> 16U, 2U);
  EXPECT_EQ(TextAt(bytes, kPlates + 10, 4), "RQPl");
  EXPECT_EQ(LongAt(bytes, kPlates + 14), 2U);
  EXPECT_EQ(LongAt(bytes, kPlates + 18) >> 16U, 0U);

  const std::size_t header = kPlates + 20;
  EXPECT_EQ(TextAt(bytes, header, 4), "Vex2");
  for (std::size_t at = header + 72 + 4 * 8; at < header + 1024; ++at) {
    ASSERT_EQ(bytes.at(at), 0xFF) << at;
  }
  const std::size_t records = header + 1024;
  EXPECT_EQ(TextAt(bytes, records, 4), "CALR");
  const std::size_t path = records + 8 + std::strlen("C:\\runs\\a.vex");
  EXPECT_EQ(TextAt(bytes, path, 4), "Path");
  EXPECT_EQ(TextAt(bytes, path + 9, 4), "RQPD");
  const std::size_t end = path + 18;
  EXPECT_EQ(TextAt(bytes, end, 4), "EOPl");
  EXPECT_EQ(LongAt(bytes, end + 4), 4U);
  EXPECT_EQ(LongAt(bytes, end + 8), 0U);
  EXPECT_EQ(TextAt(bytes, end + 12, 4), "RQPl");
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
    EXPECT_EQ(LongAt(ReadBytes(path_), kPlates + 4), expected);
  }
}

TEST_F(StudyFileTest, StudyReadsBackWithTheRecordsAfterItsPlates) {
  add("C:\\runs\\a.vex", "date of a");
  add("C:\\runs\\b.vex", "date of b");
  EXPECT_EQ(study_.SetCalibrator("behind"), kSuccess);
  saved();
  ASSERT_EQ(read_.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(TagsOf(read_), "MPLC CALR EOF ");
  CStringList names;
  CStringList dates;
  read_.GetMultiPlateList(names, dates);
  EXPECT_THAT(TextsOf(names), ElementsAre("a", "b"));
  EXPECT_THAT(TextsOf(dates), ElementsAre("date of a", "date of b"));
  EXPECT_EQ(CalibratorOf(read_.GetSinglePlatePtrByName("b")), "C:\\runs\\b.vex");
}

TEST_F(StudyFileTest, OnlyAStudysOwnKindsAreWrittenAndAnEnd) {
  add("C:\\runs\\a.vex", "d");
  EXPECT_EQ(study_.AppendPlateName("no study has one"), kSuccess);
  EXPECT_EQ(study_.SetCalibrator("c"), kSuccess);
  const Bytes bytes = saved();
  EXPECT_EQ(TextAt(bytes, bytes.size() - 12, 4), "EOF ");
  EXPECT_EQ(LongAt(bytes, bytes.size() - 4), 0U);
  EXPECT_EQ(read_.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(TagsOf(read_), "MPLC CALR EOF ");
}

TEST_F(StudyFileTest, ReadPlateIsKnownByTheNameInItsOwnRecord) {
  add("C:\\runs\\a.vex", "d");
  EXPECT_EQ(study_.GetSinglePlatePtrByName("a")->AppendPlateName("renamed"), kSuccess);
  saved();
  EXPECT_EQ(read_.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_THAT(PlateNames(read_), ElementsAre("renamed"));
}

TEST_F(StudyFileTest, LongNameIsCutInTheFileAndWholeUntilThen) {
  const std::string name(2000, 'n');
  add(("C:\\runs\\" + name + ".vex").c_str(), "d");
  EXPECT_THAT(PlateNames(study_), ElementsAre(name));
  saved();
  ASSERT_EQ(read_.ReadFromFile(path_.c_str()), 0);
  const std::string cut = name.substr(0, 1023);
  EXPECT_THAT(PlateNames(read_), ElementsAre(cut));
  ASSERT_NE(read_.GetSinglePlatePtrByName(cut.c_str()), nullptr);
}

TEST_F(StudyFileTest, ReadStudyAcceptsATakenNameUntilItsStorageIsMade) {
  add("C:\\runs\\a.vex", "d");
  saved();
  EXPECT_EQ(read_.ReadFromFile(path_.c_str()), kSuccess);
  read_.SyncPlatesWithAnalysisStorageMap();
  const Vex2FileManager plate = PlateAt("C:\\runs\\a.vex");
  EXPECT_FALSE(read_.AddRQPlate(&plate, "d"));
}

TEST_F(StudyFileTest, ExtractedPlateSavesAsADocumentOfItsOwn) {
  add("C:\\runs\\a.vex", "d");
  saved();
  EXPECT_EQ(read_.ReadFromFile(path_.c_str()), kSuccess);
  Vex2FileManager plate(*read_.GetSinglePlatePtrByName("a"));
  const std::string path = folder_ / "a.vex";
  ASSERT_EQ(plate.SaveToFile(path.c_str()), 0);
  Vex2FileManager again;
  ASSERT_EQ(again.ReadFromFile(path.c_str()), 0);
  EXPECT_EQ(TagsOf(again), "CALR Path RQPD");
}

TEST_F(StudyFileTest, ResetDropsThePlatesAndTheirTakenNames) {
  add("C:\\runs\\a.vex", "d");
  study_.Reset();
  EXPECT_EQ(study_.GetRQPlateCount(), 0);
  add("C:\\runs\\a.vex", "d");
}

// Refuses every write that would make a file longer than the limit.
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
  Vex2FileManager big = PlateAt("C:\\runs\\big.vex");
  EXPECT_EQ(big.SetCalibrator(std::string(CFile::kBufferSize, 'x').c_str()), kSuccess);
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
