#include <gtest/gtest.h>

#include <string>

#include "tests/support/DocumentBytes.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/RunDocument.h"
#include "vex2/format/RecordWalker.h"

namespace vex2::test {
namespace {

using Reason = WalkFault::Reason;

constexpr const char* kWalkedFile = "/walked.vex";
constexpr std::uint64_t kFirstRecord = 1024;

// Notes the events of a walk: "(TAG" for the begin of a record, ")" for its end, "-" for four
// skipped bytes.
class Notes final : public RecordVisitor {
 public:
  void Begin(const FileRecord& record, CFile& /*file*/) override {
    text += "(" + std::string(record.Tag());
  }
  void End(const FileRecord& record) override {
    text += ")";
    end = record.end;
  }
  void Pass(std::uint64_t /*offset*/) override { text += "-"; }

  std::string text;
  std::uint64_t end = 0;
};

class RecordWalker : public testing::Test {
 protected:
  void put(const std::string& bytes) {
    files_.Put(kWalkedFile, ToBytes(bytes));
    ASSERT_TRUE(file_.Open(kWalkedFile, CFile::modeRead));
  }
  // The notes of a walk over these records, which must end at the end of the file.
  std::string walked(const std::string& records) {
    put(HeaderBytes() + records);
    Notes notes;
    const RecordWalk walk = WalkRecordsOf(file_, notes);
    EXPECT_FALSE(walk.fault);
    EXPECT_EQ(walk.offset, kFirstRecord + records.size());
    return notes.text;
  }
  WalkFault faultOf(const std::string& records) {
    put(HeaderBytes() + records);
    Notes notes;
    const RecordWalk walk = WalkRecordsOf(file_, notes);
    EXPECT_TRUE(walk.fault) << notes.text;
    return walk.fault.value_or(WalkFault{});
  }
  void expectFault(Reason reason, const std::string& records, std::uint64_t available = 0,
                   std::uint64_t expected = 0) {
    const WalkFault fault = faultOf(records);
    EXPECT_EQ(static_cast<int>(fault.reason), static_cast<int>(reason));
    EXPECT_EQ(fault.available, available);
    EXPECT_EQ(fault.expected, expected);
  }

  MemoryFiles files_;
  CFile file_;
};

std::string zeros(std::size_t count) {
  return std::string(count, '\0');
}

std::string plate(const std::string& records) {
  return RecordDeclaring("RQPl", 2, BigEndian(0, 2) + HeaderBytes(8, '\xFF') + records);
}

std::string block(const std::string& tag, std::uint16_t wells, int frames) {
  const Bytes bytes = StoredBlock(tag, wells, frames);
  return {bytes.begin(), bytes.end()};
}

TEST_F(RecordWalker, GoesIntoListsAndCells) {
  const std::string cell = Record("CELL", BigEndian(1, 2) + zeros(5) + Record("NAME", "A"));
  EXPECT_EQ(walked(ListRecord("GLBL", 2, Record("VERS", zeros(4)) + Record("PRER", zeros(1))) +
                   ListRecord("CELS", 1, cell)),
            "(GLBL(VERS)(PRER))(CELS(CELL(NAME)))");
}

TEST_F(RecordWalker, UsesTheContentOfRecordsNotTheirLength) {
  EXPECT_EQ(walked(RecordDeclaring("PCRV", 99, zeros(2)) + RecordDeclaring("COLR", 1, zeros(3)) +
                   RecordDeclaring("QANT", 7, zeros(4)) + RecordDeclaring("DUSE", 5, zeros(1)) +
                   Record("TPro", "program") + Record("Xyz1", "unknown") + Record("COMM", "")),
            "(PCRV)(COLR)(QANT)(DUSE)(TPro)(Xyz1)(COMM)");
}

TEST_F(RecordWalker, StepsOverDataBlocksOfBothVersionsAndSpectra) {
  const std::string old = RecordDeclaring(
      "REPr", 18 + 80, BigEndian(1, 2) + BigEndian(1, 2) + BigEndian(1, 2) + zeros(80));
  const std::string spectra = Record("PDYE", zeros(8) + BigEndian(1, 2) + zeros(62) + zeros(8) +
                                                 "\1D" + zeros(6) + "\1" + zeros(4));
  const std::string background =
      Record("BKGD", zeros(8) + BigEndian(1, 2) + zeros(62) + zeros(8) + "\2De" + "\1" + zeros(4));
  EXPECT_EQ(walked(old + spectra + background + block("RAWa", 2, 1)), "(REPr)(PDYE)(BKGD)(RAWa)");
  EXPECT_EQ(walked(block("REPt", 0, 0)), "(REPt)");
}

TEST_F(RecordWalker, WalksAPlateUntilOneOfItsThreeEnds) {
  const std::string end = Record("EOPl", zeros(4));
  EXPECT_EQ(walked(ListRecord("MPLC", 1, plate(Record("Path", "p") + "????" + end))),
            "(MPLC(RQPl(Path)-(EOPl)))");
  EXPECT_EQ(walked(ListRecord("MPLC", 1, plate("EOF "))), "(MPLC(RQPl))");
  EXPECT_EQ(walked(ListRecord("MPLC", 1, plate("Vex2"))), "(MPLC(RQPl))");
}

TEST_F(RecordWalker, LeavesFewBytesThatBeginNoKnownRecord) {
  put(HeaderBytes() + "?????");
  Notes notes;
  const RecordWalk walk = WalkRecordsOf(file_, notes);
  EXPECT_FALSE(walk.fault);
  EXPECT_EQ(walk.offset, kFirstRecord);
  EXPECT_EQ(notes.text, "");
}

TEST_F(RecordWalker, FindsNothingInAFileThatEndsBeforeTheNumberOfRows) {
  put("Vex2");
  Notes notes;
  EXPECT_EQ(WalkRecordsOf(file_, notes).offset, 4U);
}

TEST_F(RecordWalker, ReportsWhyARecordCannotBeWalked) {
  expectFault(Reason::kNoLength, "COMM" + zeros(2));
  expectFault(Reason::kTooDeep, NestedLists("SPEC", 65));
  expectFault(Reason::kBytesMissing, RecordDeclaring("COMM", 10, "abc"), 3, 10);
  expectFault(Reason::kBytesMissing, RecordDeclaring("VERS", 4, zeros(3)), 3, 4);
  expectFault(Reason::kNoCount, RecordDeclaring("GLBL", 2, zeros(1)));
  expectFault(Reason::kBytesMissing, RecordDeclaring("CELL", 7, BigEndian(0, 2) + zeros(2)), 2, 5);
  expectFault(Reason::kRecordsMissing, ListRecord("GLBL", 2, ""), 0, 2);
  expectFault(Reason::kNoFrames, RecordDeclaring("RAWa", 18, BigEndian(2, 2)));
  expectFault(Reason::kNoFrames,
              RecordDeclaring("RAWa", 18, BigEndian(2, 2) + zeros(14) + BigEndian(500, 2)));
  const std::string cut = block("RAWa", 2, 2);
  expectFault(Reason::kFramesMissing, cut.substr(0, cut.size() - 1), 1, 2);
}

TEST_F(RecordWalker, ReportsWhyAPlateCannotBeWalked) {
  expectFault(Reason::kBytesMissing, RecordDeclaring("RQPl", 2, zeros(1)), 1, 2);
  expectFault(Reason::kBytesMissing, RecordDeclaring("RQPl", 2, zeros(2) + "Vex2"), 4, 1024);
  expectFault(Reason::kNoPlateEnd, plate("????"));
  expectFault(Reason::kNoLength, ListRecord("MPLC", 1, plate("COMM")));
}

TEST_F(RecordWalker, SpectraThatTheFileCutsOffMissBytes) {
  const std::string whole =
      Record("PDYE", zeros(8) + BigEndian(3, 2) + zeros(62) + zeros(8) + "\1D" + zeros(6) + "\1");
  EXPECT_EQ(faultOf(whole).reason, Reason::kBytesMissing);
}

TEST_F(RecordWalker, EndOfARecordIsWhereTheReaderContinues) {
  put(HeaderBytes() + RecordDeclaring("PCRV", 99, zeros(2)) + RecordDeclaring("COMM", 9, "x"));
  EXPECT_EQ(EndOfRecordAt(file_, kFirstRecord), kFirstRecord + 10);
  EXPECT_EQ(EndOfRecordAt(file_, kFirstRecord + 10), std::nullopt);
}

TEST_F(RecordWalker, DeclaredRecordsEndAtTheFilesEndOrWithinAHead) {
  put(HeaderBytes() + Record("COMM", "abc") + "RAW");
  DeclaredRecords records(file_, kFirstRecord);
  ASSERT_TRUE(records.Next());
  EXPECT_EQ(records.Record().Tag(), "COMM");
  EXPECT_FALSE(records.EndsInHead());
  EXPECT_FALSE(records.Next());
  EXPECT_TRUE(records.EndsInHead());
  DeclaredRecords behind(file_, file_.GetLength());
  EXPECT_FALSE(behind.Next());
  EXPECT_FALSE(behind.EndsInHead());
}

TEST(PrintableTag, HasFourPrintableCharacters) {
  EXPECT_TRUE(IsPrintableTag("Xyz "));
  EXPECT_FALSE(IsPrintableTag("Xyz"));
  EXPECT_FALSE(IsPrintableTag("Xyz\x7f"));
  EXPECT_FALSE(IsPrintableTag("\1yz1"));
}

}  // namespace
}  // namespace vex2::test
