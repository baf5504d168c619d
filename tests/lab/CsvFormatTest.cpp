// Tests CSV files with other delimiters, decimal marks, encodings and names of columns.

#include <gmock/gmock.h>

#include "lab/Error.h"
#include "lab/csv/CsvReader.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

class CsvFormatTest : public TempFolderTest {
 protected:
  /// The column "name" of each row, and the number in "value".
  struct Row {
    std::string name;
    double value = 0;
    friend bool operator==(const Row&, const Row&) = default;
  };
  using Rows = std::vector<Row>;

  /// The default format of a file with one member changed.
  template <typename Member, typename Value>
  static lab::CsvFormat With(Member lab::CsvFormat::*member, Value value) {
    lab::CsvFormat format;
    format.*member = value;
    return format;
  }

  Rows Read(std::string_view content, const lab::CsvFormat& format = {}) {
    WriteBytes(folder_ / "some.csv", ToBytes(content));
    Rows rows;
    lab::ReadCsv(folder_ / "some.csv", {"name", "value"},
                 [&](const lab::CsvRow& row) {
                   rows.push_back({std::string(row.Text(0)), row.Decimal(1, 1e9)});
                 },
                 {.format = format});
    return rows;
  }

  std::string Refusal(std::string_view content, const lab::CsvFormat& format = {}) {
    try {
      Read(content, format);
    } catch (const lab::Error& error) {
      return error.what();
    }
    return "nothing";
  }

  /// ASCII as UTF-16 without a byte order mark.
  static std::string Utf16(std::string_view text, bool bigEndian) {
    std::string bytes;
    for (const char character : text) {
      if (bigEndian) bytes += '\0';
      bytes += character;
      if (!bigEndian) bytes += '\0';
    }
    return bytes;
  }
};

TEST_F(CsvFormatTest, FieldsArePartedByCommaSemicolonOrTab) {
  const Rows expected = {{"x", 1.5}};
  EXPECT_EQ(Read("name,value\nx,1.5\n"), expected);
  EXPECT_EQ(Read("name;value\nx;1.5\n"), expected);
  EXPECT_EQ(Read("name\tvalue\nx\t1.5\n"), expected);
  EXPECT_EQ(Read("sep=;\r\nname;value\r\nx;1.5\r\n"), expected);
}

TEST_F(CsvFormatTest, DelimiterIsTheOneThatPartsTheColumnsAskedFor) {
  EXPECT_EQ(Read("name;value;mean, all;a,b,c,d\nx;1;2;3\n"), (Rows{{"x", 1}}));
  EXPECT_EQ(Read("\"a;b\",name,value\n0,x,1\n"), (Rows{{"x", 1}}));
  EXPECT_THAT(Refusal("name;x,value\n"),
              EndsWith("row 1: it cannot be told whether commas, semicolons or tabs separate the "
                       "fields; set delimiter"));
}

TEST_F(CsvFormatTest, GivenDelimiterIsTheOnlyOne) {
  EXPECT_EQ(Read("name;value\nx;1\n", With(&lab::CsvFormat::delimiter, ';')), (Rows{{"x", 1}}));
  EXPECT_THAT(Refusal("name;value\nx;1\n", With(&lab::CsvFormat::delimiter, ',')),
              HasSubstr("row 1: has no column 'name' (it has 'name;value')"));
}

TEST_F(CsvFormatTest, LinesMayEndInCarriageReturnsAlone) {
  EXPECT_EQ(Read("name,value\rx,1\ry,2\r"), (Rows{{"x", 1}, {"y", 2}}));
}

TEST_F(CsvFormatTest, RowsWithoutContentArePassedOverAndCounted) {
  EXPECT_EQ(Read("name;value\nx;1\n;\n;\n"), (Rows{{"x", 1}}));
  EXPECT_THAT(Refusal("name;value\n;\nx;y\n"), HasSubstr("row 3: value 'y' is not a number"));
}

TEST_F(CsvFormatTest, DecimalCommaIsReadWhereNumbersCannotBeThousands) {
  EXPECT_EQ(Read("name;value\nx;59,82\ny;0,125\nz;1234,567\n"),
            (Rows{{"x", 59.82}, {"y", 0.125}, {"z", 1234.567}}));
  EXPECT_EQ(Read("name\tvalue\nx\t59.82\ny\t12.345\n"), (Rows{{"x", 59.82}, {"y", 12.345}}));
  EXPECT_EQ(Read("name;value\nx;59,82\ny;12,345\n"), (Rows{{"x", 59.82}, {"y", 12.345}}));
}

TEST_F(CsvFormatTest, NumberThatMayBeThousandsIsRefusedUntilTheMarkIsKnown) {
  EXPECT_THAT(
      Refusal("name;value\nx;12,345\n"),
      EndsWith("row 2: value '12,345' may have a decimal comma or a mark between thousands; "
               "set decimalMark"));
  EXPECT_THAT(Refusal("name;value\nx;12.345\n"), HasSubstr("may have a decimal point or a mark"));
  EXPECT_EQ(Read("name;value\nx;12,345\n", With(&lab::CsvFormat::decimalMark, ',')),
            (Rows{{"x", 12.345}}));
  EXPECT_EQ(Read("name;value\nx;12.345\n", With(&lab::CsvFormat::decimalMark, '.')),
            (Rows{{"x", 12.345}}));
}

TEST_F(CsvFormatTest, OtherDecimalMarkThanBeforeIsRefused) {
  EXPECT_THAT(Refusal("name;value\nx;59,82\ny;1.5\n"),
              HasSubstr("row 3: value '1.5' has a point, but decimals are marked by a comma here"));
  EXPECT_THAT(Refusal("name;value\nx;1.234,5\n"),
              HasSubstr("has a point and a comma; write numbers without"));
  EXPECT_THAT(Refusal("name;value\nx;1.234.567\n", With(&lab::CsvFormat::decimalMark, '.')),
              EndsWith("is not a number"));
}

TEST_F(CsvFormatTest, DecimalCommaBetweenCommasNeedsQuotesAndDecimalComma) {
  EXPECT_THAT(
      Refusal("name,value\nx,59,82\n"),
      EndsWith("row 2: has 3 fields where the first row has 2; put numbers with a decimal comma in "
               "quotes and set decimalMark to ',', or separate the fields by semicolons"));
  EXPECT_THAT(Refusal("name,value\nx,\"59,82\"\n"), HasSubstr("set decimalMark to ','"));
  EXPECT_EQ(Read("name,value\nx,\"59,82\"\n", With(&lab::CsvFormat::decimalMark, ',')),
            (Rows{{"x", 59.82}}));
}

TEST_F(CsvFormatTest, ColumnsAreFoundInAnyCaseOfLetters) {
  EXPECT_EQ(Read("NAME, Value \nx,1\n"), (Rows{{"x", 1}}));
  EXPECT_THAT(
      Refusal("name,value,Name\nx,1,y\n"),
      EndsWith("row 1: has the column 'name' twice, as fields 1 and 3; rename or remove one "
               "of them"));
}

TEST_F(CsvFormatTest, ColumnsMayBeCalledOtherwise) {
  EXPECT_EQ(Read("Pos;Wert\nx;1\n",
                 With(&lab::CsvFormat::names, lab::CsvNames{{"name", "Pos"}, {"value", "wert"}})),
            (Rows{{"x", 1}}));
  EXPECT_EQ(Read("name,Name,value\nx,y,1\n",
                 With(&lab::CsvFormat::names, lab::CsvNames{{"name", "Name"}})),
            (Rows{{"y", 1}}));
  EXPECT_THAT(
      Refusal("Pos;Wert\nx;1\n"),
      EndsWith("row 1: has no column 'name' (it has 'Pos', 'Wert'); the first row must name "
               "the columns; use 'names name=NAME' if the file calls it otherwise"));
  // If a name is given for a column, the usual name is not accepted.
  EXPECT_THAT(
      Refusal("name,value\nx,1\n", With(&lab::CsvFormat::names, lab::CsvNames{{"value", "RFU"}})),
      HasSubstr("has no column 'RFU'"));
}

TEST_F(CsvFormatTest, Utf16IsReadWithAMarkAndWithout) {
  const Rows expected = {{"x", 1.5}};
  const std::string text = "name\tvalue\r\nx\t1.5\r\n";
  EXPECT_EQ(Read("\xFF\xFE" + Utf16(text, false)), expected);
  EXPECT_EQ(Read("\xFE\xFF" + Utf16(text, true)), expected);
  EXPECT_EQ(Read(Utf16(text, false)), expected);
  EXPECT_EQ(Read(Utf16(text, true)), expected);
  EXPECT_THAT(Refusal("\xFF\xFE" + Utf16(text, false) + "x"), HasSubstr("are not UTF-16LE"));
}

TEST_F(CsvFormatTest, LongUtf16FileIsReadToItsEnd) {
  std::string text = "name,value\n";
  for (int i = 0; i < 20'000; ++i) text += "x,1\n";
  EXPECT_EQ(Read("\xFF\xFE" + Utf16(text, false)).size(), 20'000U);
}

TEST_F(CsvFormatTest, Latin1IsReadWhereItIsNamed) {
  EXPECT_EQ(Read("name,value\n\xE4,1\n", With(&lab::CsvFormat::encoding, "latin1")),
            (Rows{{"\xC3\xA4", 1}}));
  EXPECT_EQ(Read("name,value\n\x80,1\n", With(&lab::CsvFormat::encoding, "windows-1252")),
            (Rows{{"\xE2\x82\xAC", 1}}));
}

TEST_F(CsvFormatTest, BytesThatAreNotUtf8AreNamedWithOffsetRowAndRemedy) {
  EXPECT_THAT(
      Refusal("name,value\nx,1\n\xE4,1\n"),
      EndsWith("some.csv: at byte 15: row 3: these bytes are not UTF-8; if the file is "
               "Latin-1, set encoding to latin1; if it comes from Windows, to windows-1252"));
  EXPECT_THAT(Refusal("name,value\nx\xC3"), HasSubstr("at byte 12: row 2: these bytes are not"));
}

TEST_F(CsvFormatTest, ByteOrderMarkCountsMoreThanTheEncodingNamed) {
  EXPECT_EQ(Read("\xEF\xBB\xBFname,value\n\xC3\xA4,1\n", With(&lab::CsvFormat::encoding, "latin1")),
            (Rows{{"\xC3\xA4", 1}}));
}

TEST_F(CsvFormatTest, UnknownEncodingIsTheCallsFault) {
  EXPECT_THAT(Refusal("name,value\n", With(&lab::CsvFormat::encoding, "klingon")),
              testing::StartsWith("the encoding 'klingon' is not known; "));
}

TEST_F(CsvFormatTest, FilesOfOtherKindsAreCalledWhatTheyAre) {
  EXPECT_THAT(Refusal("Vex2\0\0\0"sv), HasSubstr("at byte 0: is a plate document, not a CSV file"));
  EXPECT_THAT(Refusal("PK\x03\x04 and more"), HasSubstr("is a ZIP archive, as workbooks"));
  EXPECT_THAT(Refusal("\xD0\xCF\x11\xE0\xA1\xB1"), HasSubstr("is a workbook (.xls)"));
}

TEST(CsvFileName, EmptyOneIsRefused) {
  EXPECT_THROW(lab::ReadCsv("", {"a"}, [](const lab::CsvRow&) {}), lab::Error);
}

}  // namespace
}  // namespace vex2::test
