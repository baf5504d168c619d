// Tests how CSV files are read, and the errors for malicious files.

#include <gmock/gmock.h>

#include "lab/Error.h"
#include "lab/csv/CsvReader.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

class ReadCsvTest : public TempFolderTest {
 protected:
  using Rows = std::vector<std::vector<std::string>>;

  /// Reads the columns a and b of a file with this content.
  Rows Read(std::string_view content) {
    WriteBytes(folder_ / "some.csv", ToBytes(content));
    Rows rows;
    lab::ReadCsv(folder_ / "some.csv", {"a", "b"}, [&](const lab::CsvRow& row) {
      rows.push_back({std::string(row.Text(0)), std::string(row.Text(1))});
    });
    return rows;
  }

  /// The error of reading this content.
  std::string Refusal(std::string_view content) {
    try {
      Read(content);
    } catch (const lab::Error& error) {
      EXPECT_EQ(error.Class(), lab::ErrorClass::kDocument);
      return error.what();
    }
    return "nothing";
  }
};

TEST_F(ReadCsvTest, TakesBothLineEndsAndALastLineWithoutOne) {
  const Rows expected = {{"1", "2"}, {"3", "4"}};
  EXPECT_EQ(Read("a,b\n1,2\n3,4\n"), expected);
  EXPECT_EQ(Read("a,b\r\n1,2\r\n3,4\r\n"), expected);
  EXPECT_EQ(Read("a,b\n1,2\n3,4"), expected);
  EXPECT_EQ(Read("a,b\n\n1,2\n\n3,4\n\n"), expected);
}

TEST_F(ReadCsvTest, QuotedFieldsHoldCommasQuotesAndLineEnds) {
  EXPECT_EQ(Read("a,\"b\"\n\"1,\"\"x\"\"\",\"2\n3\"\n"), (Rows{{"1,\"x\"", "2\n3"}}));
}

TEST_F(ReadCsvTest, PassesOverAByteOrderMark) {
  EXPECT_EQ(Read("\xEF\xBB\xBF"
                 "a,b\n1,2\n"),
            (Rows{{"1", "2"}}));
  EXPECT_THAT(Refusal("\xEF\xBB"), HasSubstr("at byte 0: row 1: these bytes are not UTF-8"));
}

TEST_F(ReadCsvTest, FindsColumnsByNameAndSkipsOthers) {
  EXPECT_EQ(Read("x,b,y,a\n0,2,0,1\n"), (Rows{{"1", "2"}}));
  EXPECT_THAT(Refusal("a,c\n1,2\n"), HasSubstr("some.csv: row 1: has no column 'b'"));
  EXPECT_THAT(Refusal("a,b,a\n1,2,3\n"),
              HasSubstr("row 1: has the column 'a' twice, as fields 1 and 3"));
}

TEST_F(ReadCsvTest, OptionalColumnsMayBeMissing) {
  const auto read = [&](std::string_view content) {
    WriteBytes(folder_ / "some.csv", ToBytes(content));
    Rows rows;
    EXPECT_TRUE(lab::ReadCsv(folder_ / "some.csv", {"a"},
                             [&](const lab::CsvRow& row) {
                               rows.push_back({std::string(row.Text(0)), std::string(row.Text(1))});
                               EXPECT_EQ(row.Has(1), content.substr(0, 3) != "a,c");
                             },
                             {.optionalColumns = {"b"}, .keepsWaiting = {}}));
    return rows;
  };
  EXPECT_EQ(read("a,b\n1,2\n"), (Rows{{"1", "2"}}));
  EXPECT_EQ(read("b,a\n,1\n"), (Rows{{"1", ""}}));
  EXPECT_EQ(read("a,c\n1,2\n"), (Rows{{"1", ""}}));
}

TEST_F(ReadCsvTest, ReadingEndsWhenTheCallerWaitsNoLonger) {
  WriteBytes(folder_ / "some.csv", ToBytes("a\n1\n"));
  EXPECT_FALSE(lab::ReadCsv(folder_ / "some.csv", {"a"}, [](const lab::CsvRow&) { FAIL(); },
                            {.optionalColumns = {}, .keepsWaiting = [] { return false; }}));
}

TEST_F(ReadCsvTest, RowOfAnotherLengthIsRefused) {
  EXPECT_THAT(Refusal("a,b\n1,2\n3\n"), EndsWith("row 3: has 1 fields where the first row has 2"));
  EXPECT_THAT(Refusal("a,b\n1,2,3\n"), HasSubstr("row 2: has 3 fields where the first row has 2"));
}

TEST_F(ReadCsvTest, EmptyFileIsRefused) {
  EXPECT_THAT(Refusal(""), EndsWith("some.csv: is empty"));
  EXPECT_THAT(Refusal("\n\n"), EndsWith("some.csv: is empty"));
  EXPECT_THAT(Refusal("\xEF\xBB\xBF"), EndsWith("some.csv: is empty"));
}

TEST_F(ReadCsvTest, QuoteOutOfPlaceIsRefused) {
  EXPECT_THAT(Refusal("a,b\n1,2\n3,4\"\n"), HasSubstr("row 3: "));
  EXPECT_THAT(Refusal("a,b\n\"1\"x,2\n"), HasSubstr("row 2: "));
  EXPECT_THAT(Refusal("a,b\n1,\"2\n"), HasSubstr("row 2: "));
}

TEST_F(ReadCsvTest, EndlessLineIsRefused) {
  EXPECT_THAT(Refusal(std::string(10'000'000, 'a')), EndsWith("row 1: is too long"));
  EXPECT_THAT(Refusal("a,b\n\"" + std::string(10'000'000, '\n')), EndsWith("row 2: is too long"));
  EXPECT_THAT(Refusal(std::string(10'000'000, ',')), EndsWith("row 1: is too long"));
}

TEST_F(ReadCsvTest, ZeroBytesAreRefused) {
  using namespace std::string_view_literals;
  EXPECT_THAT(Refusal("a,b\n1,\0\n"sv), EndsWith("row 2: holds a zero byte"));
  EXPECT_THAT(Refusal(std::string(1000, '\0')), HasSubstr("row 1: has no column 'a'"));
}

TEST_F(ReadCsvTest, MessagesHoldNothingThatATerminalObeys) {
  WriteBytes(folder_ / "some.csv", ToBytes("a\n\x1b[2J\n"));
  try {
    lab::ReadCsv(folder_ / "some.csv", {"a"}, [](const lab::CsvRow& row) { row.Whole(0, 1, 2); });
    FAIL();
  } catch (const lab::Error& error) {
    EXPECT_THAT(error.what(), EndsWith("row 2: a '\\x1b[2J' is not a whole number from 1 to 2"));
  }
}

}  // namespace
}  // namespace vex2::test
