// Tests studies with wrong counts, lengths and records.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/DocumentBytes.h"
#include "tests/support/StudyDocument.h"

namespace vex2::test {
namespace {

constexpr std::size_t kFixedHeader = 72;  // bytes before the masks of the rows

class HostileStudy : public StudyFileTest {
 protected:
  // Reads a study whose records are `body`.
  int read(const std::string& body) {
    Bytes bytes = headerBytes();
    bytes.insert(bytes.end(), body.begin(), body.end());
    WriteBytes(path_, bytes);
    EXPECT_EQ(read_.SafeOpen(path_.c_str(), 0, 0), 1);
    const int status = read_.ReadComponentFile(nullptr);
    read_.Abort();
    return status;
  }

 private:
  Bytes headerBytes() {
    Vex2FileManager empty;
    EXPECT_EQ(empty.SaveHeader(path_.c_str(), study_.GetHeaderData()), 0);
    return ReadBytes(path_);
  }
};

// A plate record whose header declares `rows` rows and ends after its fixed part.
std::string plateHead(std::uint16_t rows) {
  std::string header = "Vex2" + std::string(kFixedHeader - 4, '\0');
  header.replace(20, 2, BigEndian(rows, 2));
  return RecordDeclaring("RQPl", 2, BigEndian(0, 2) + header);
}

// The head of a plate record, with a complete header without rows.
std::string emptyHead() {
  return plateHead(0) + std::string(kPlates - kFixedHeader, '\xFF');
}

std::string plate(const std::string& records) {
  return emptyHead() + records + Record("EOPl", BigEndian(0, 4));
}

TEST_F(HostileStudy, ChildThatIsNoPlateEndsTheReadAsNotFound) {
  for (const char* tag : {"CALR", "EOF ", "MPLC", "????"}) {
    EXPECT_EQ(read(RecordDeclaring("MPLC", 22, BigEndian(2, 2) + plate("") + Record(tag, "x"))),
              -300)
        << tag;
    EXPECT_EQ(TagsOf(read_), "") << tag;
  }
}

TEST_F(HostileStudy, PlatesCountAsLittleAsTheyDeclare) {
  const std::string tooLong = RecordDeclaring("CNTL", 500, BigEndian(0, 2));
  const std::string plates = RecordDeclaring("MPLC", 12, BigEndian(1, 2) + plate(""));
  EXPECT_EQ(read(tooLong + plates + Record("CALR", "last")), 0);
  EXPECT_EQ(TagsOf(read_), "CNTL MPLC CALR");
}

TEST_F(HostileStudy, CountPastTheFilesEndKeepsThePlatesThatAreThere) {
  EXPECT_EQ(read(RecordDeclaring("MPLC", 22, BigEndian(65535, 2) + plate("") + plate(""))), 0);
  EXPECT_EQ(read_.GetRQPlateCount(), 2);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(LongAt(ReadBytes(path_), kPlates + 8) >> 16U, 2U) << "what is written is what is there";
}

TEST_F(HostileStudy, CountOfPlatesInAFileWithoutAnyIsWrittenAsNone) {
  EXPECT_EQ(read(RecordDeclaring("MPLC", 2, BigEndian(65535, 2))), 0);
  EXPECT_EQ(read_.GetRQPlateCount(), 0);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  EXPECT_EQ(LongAt(ReadBytes(path_), kPlates + 8) >> 16U, 0U);
}

TEST_F(HostileStudy, PlateWithoutItsEndIsAShortRead) {
  EXPECT_EQ(read(RecordDeclaring("MPLC", 12, BigEndian(1, 2) + emptyHead())), -100);
  EXPECT_EQ(TagsOf(read_), "");
}

TEST_F(HostileStudy, PlateEndsAtTheEndOfTheDocumentOrTheNextDocument) {
  for (const char* tag : {"EOF ", "Vex2"}) {
    const std::string head = emptyHead();
    EXPECT_EQ(read(RecordDeclaring("MPLC", 12, BigEndian(1, 2) + head + Record("CALR", "x") + tag)),
              0);
    ASSERT_EQ(read_.GetRQPlateCount(), 1) << tag;
    EXPECT_EQ(CalibratorOf(read_.GetSinglePlatePtrByName("")), "x") << tag;
  }
}

TEST_F(HostileStudy, UnknownRecordInAPlateIsSteppedOverFourBytesAtATime) {
  EXPECT_EQ(read(RecordDeclaring(
                "MPLC", 12, BigEndian(1, 2) + plate(Record("????", "zzzz") + Record("CALR", "x")))),
            0);
  EXPECT_EQ(TagsOf(*read_.GetSinglePlatePtrByName("")), "CALR");
}

TEST_F(HostileStudy, PlateOf65535RowsIsReadWithinTheFile) {
  EXPECT_EQ(read(RecordDeclaring("MPLC", 12, BigEndian(1, 2) + plateHead(65535))), -100);
  const std::string rows(std::size_t{65535} * 4, '\x11');
  EXPECT_EQ(
      read(RecordDeclaring(
          "MPLC", 12, BigEndian(1, 2) + plateHead(65535) + rows + Record("EOPl", BigEndian(0, 4)))),
      0);
  const auto* held = read_.GetSinglePlatePtrByName("");
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(held->GetHeaderRows(), 65535);
  EXPECT_EQ(held->GetHeaderData().usage[65534], 0x11111111U);
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0) << "no padding behind such a table";
  Vex2FileManager again;
  ASSERT_EQ(again.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(again.GetRQPlateCount(), 1);
}

TEST_F(HostileStudy, PlateOfLengthZeroHasNoDocument) {
  EXPECT_EQ(read(RecordDeclaring("MPLC", 12, BigEndian(1, 2) + RecordDeclaring("RQPl", 0, "")) +
                 Record("CALR", "x")),
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
  EXPECT_EQ(CalibratorOf(&again), "x");
}

TEST_F(HostileStudy, PlateIsAnEmptyListWhateverItsLengthAndCountSay) {
  const std::string head = RecordDeclaring("RQPl", 77, BigEndian(9, 2)) + emptyHead().substr(10);
  EXPECT_EQ(
      read(RecordDeclaring("MPLC", 12, BigEndian(1, 2) + head + Record("EOPl", BigEndian(0, 4)))),
      0);
  ASSERT_EQ(read_.GetRQPlateCount(), 1);
  EXPECT_EQ(read_.GetComponent(0)->GetLength(), 22U) << "ten more than the file says";
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  const Bytes bytes = ReadBytes(path_);
  EXPECT_EQ(LongAt(bytes, kPlates + 14), 2U);
  EXPECT_EQ(LongAt(bytes, kPlates + 18) >> 16U, 0U);
}

TEST_F(HostileStudy, LengthNearItsLimitKeepsPlatesAndLaterRecords) {
  const std::string behind = Record("CALR", "x");
  EXPECT_EQ(read(RecordDeclaring("MPLC", 0xFFFFFFF6U, BigEndian(1, 2) + plate("")) + behind), 0);
  EXPECT_EQ(read_.GetRQPlateCount(), 1);
  EXPECT_EQ(CalibratorOf(&read_), "x");
  ASSERT_EQ(read_.SaveToFile(path_.c_str()), 0);
  Vex2FileManager again;
  EXPECT_EQ(again.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(again.GetRQPlateCount(), 1);
}

TEST_F(HostileStudy, StudyInAStudyReadsAndStudiesWithoutEndDoNot) {
  EXPECT_EQ(read(RecordDeclaring(
                "MPLC", 12,
                BigEndian(1, 2) + plate(RecordDeclaring("MPLC", 12, BigEndian(1, 2) + plate(""))))),
            0);
  ASSERT_EQ(read_.GetRQPlateCount(), 1);
  EXPECT_EQ(read_.GetSinglePlatePtrByName("")->GetRQPlateCount(), 1);

  // Each study takes two levels of nesting, of at most 64; deeper records are dropped.
  std::string nested;
  for (int level = 0; level < 200; ++level) {
    nested = RecordDeclaring("MPLC", 12, BigEndian(1, 2) + plate(nested));
  }
  read(nested);
  int levels = 0;
  for (const Vex2FileManager* at = &read_; at != nullptr && at->GetRQPlateCount() > 0; ++levels) {
    at = at->GetSinglePlatePtrByName("");
  }
  EXPECT_EQ(levels, 31) << "the plate at the last depth cannot hold another";
}

}  // namespace
}  // namespace vex2::test
