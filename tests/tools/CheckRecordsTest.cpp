// Tests that `vex check` finds damaged headers and records, and reports nothing for similar correct
// ones.

#include "tests/support/DocumentBytes.h"
#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;

class CheckHeaders : public DamageTest {
 protected:
  void SetUp() override { MakeDocument({}); }
};

TEST_F(CheckHeaders, AnEmptyDocumentIsSound) {
  ExpectSound();
  EXPECT_EQ(Notes(), "");
}

TEST_F(CheckHeaders, OneThatIsCutShortIsAnError) {
  Change([](Bytes& bytes) { bytes.resize(1023); });
  ExpectError("header at 1023: the header is cut short: 1023 of 1024 bytes are there");
}

TEST_F(CheckHeaders, WhatIsNoDocumentIsAnError) {
  WriteBytes(path_, Bytes(100, 0));
  ExpectError("header at 0: it does not begin with Vex2");
  WriteBytes(path_, {});
  ExpectError("header at 0: it is empty");
  WriteBytes(path_, ToBytes("no document"));
  ExpectError("header at 0: it is a text");
}

TEST_F(CheckHeaders, WellsInUseThatThePlateHasNotAreAWarning) {
  SetLong(72, 0x3FFF);
  ExpectWarning(
      "header at 72: the masks of wells in use have 2 wells in columns that a plate of 8 x 12 does "
      "not have");
}

TEST_F(CheckHeaders, APlateThatItsTypeHasNotIsAWarning) {
  Change([](Bytes& bytes) { bytes[17] = '3'; });
  ExpectWarning("header at 20: a plate of 8 x 12 wells, but the type 'p3C ' has 384");
  Change([](Bytes& bytes) { bytes[17] = 'x'; });
  ExpectSound();
  EXPECT_THAT(Notes(), HasSubstr("the number of wells of the plate type 'pxC ' is not known"));
}

TEST_F(CheckHeaders, APlateOfMoreRowsThanAHeaderHoldsIsAnError) {
  Change([](Bytes& bytes) {
    bytes[21] = 239;
    bytes.resize(1028);
  });
  EXPECT_THAT(Errors(), HasSubstr("header at 20: a plate of 239 rows, more than a header has"));
}

class CheckRecords : public DamageTest {
 protected:
  static Bytes Global(unsigned long length) {
    return ByteString().Text("GLBL").Long(length).Short(1).Text("VERS").Long(4).Long(512);
  }
};

TEST_F(CheckRecords, ALengthThatIsRightIsSound) {
  MakeDocument(Global(14));
  ExpectSound();
}

TEST_F(CheckRecords, AListThatDeclaresLessThanItHoldsOverlapsTheNextRecord) {
  MakeDocument(Global(10));
  ExpectError(
      "GLBL at 1024: its length is 10, but what it holds takes 14 bytes, so the records "
      "overlap");
}

TEST_F(CheckRecords, AListThatDeclaresMoreThanItHoldsReachesOverWhatFollows) {
  Bytes records = Global(15);
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  ExpectError(
      "GLBL at 1024: its length is 15, but what it holds takes 14 bytes, so it overlaps what "
      "follows");
}

TEST_F(CheckRecords, AListWhoseTextLostItsZeroByteIsAWarning) {
  Bytes records = ByteString().Text("GLBL").Long(15).Short(1).Text("COMM").Long(4).Text("text");
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  ExpectWarning(
      "GLBL at 1024: its length is 15, but what it holds takes 14 bytes, as in lists whose texts "
      "lost a zero byte");
}

TEST_F(CheckRecords, ANumberOfAnotherSizeThanItsKindIsAnErrorAlsoWithinLists) {
  MakeDocument(ByteString().Text("GLBL").Long(14).Short(1).Text("VERS").Long(2).Long(512));
  ExpectError(
      "GLBL/VERS at 1034: its length is 2, but what it holds takes 4 bytes, so the records "
      "overlap");
}

TEST_F(CheckRecords, CalibrationThatDeclaresLessThanItsEntriesTakeIsAnError) {
  const auto dyes = [](unsigned long length) {
    return ByteString().Text("PDYE").Long(length).Zeros(8).Short(1).Zeros(62).Zeros(16);
  };
  MakeDocument(dyes(88));
  ExpectSound();
  MakeDocument(dyes(87));
  ExpectError(
      "PDYE at 1024: its length is 87, but what it holds takes 88 bytes, so the records "
      "overlap");
}

TEST_F(CheckRecords, ARecordThatIsCutShortIsAnErrorWithItsPlaceInLists) {
  MakeDocument(ByteString().Text("GLBL").Long(14).Short(1).Text("VERS").Long(4).Short(2));
  ExpectError("GLBL/VERS at 1034: the record \"VERS\" is cut short: 2 of 4 bytes are there");
}

TEST_F(CheckRecords, AListThatHasFewerRecordsThanItCountsIsAnError) {
  MakeDocument(ByteString().Text("SPEC").Long(2).Short(3));
  ExpectError("SPEC at 1024: the record \"SPEC\" is cut short: 0 of 3 records are there");
}

TEST_F(CheckRecords, OnesOfNoKnownKindAreWarnings) {
  Bytes records;
  AppendRecord(records, "Zzzz", {1, 2, 3});
  MakeDocument(records);
  ExpectWarning("Zzzz at 1024: a record of no known kind, of 3 bytes");
  MakeDocument(ByteString().Text("SPEC").Long(13).Short(1).Text("Zzzz").Long(3).Zeros(3));
  ExpectWarning("SPEC/Zzzz at 1034: a record of no known kind within another, of 3 bytes");
}

TEST_F(CheckRecords, BytesBetweenRecordsThatAreNoneAreAnError) {
  Bytes records = ByteString().Long(1).Long(5).Zeros(5);
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  EXPECT_THAT(Errors(),
              HasSubstr("at 1024: these bytes are not a record, and known records follow\n"));
}

TEST_F(CheckRecords, BytesThatAreNoRecordsInAListAreOneError) {
  MakeDocument(
      ByteString().Text("GLBL").Long(38).Short(3).Zeros(24).Text("VERS").Long(4).Long(512));
  const auto errors = Found(lab::Severity::kError);
  EXPECT_THAT(Told(errors), HasSubstr("GLBL at 1034: from here on there are bytes that are no"));
  for (const lab::Finding& error : errors) {
    EXPECT_THAT(error.remedy, HasSubstr("Recover")) << error.problem;
  }
  EXPECT_EQ(Warnings(), "");
}

TEST_F(CheckRecords, BytesAfterTheLastRecordAreAnErrorIfTheyMayHoldOne) {
  Bytes records;
  AppendRecord(records, "COMM", ToBytes("text"));
  records.insert(records.end(), 7, 0xFF);
  MakeDocument(records);
  ExpectWarning(" at 1036: 7 bytes follow the last record, and are not a known record");
  Append({0xFF});
  ExpectError(" at 1036: 8 bytes follow the last record, and are not a known record");
}

TEST_F(CheckRecords, ASecondOneOfAKindOfWhichTheFirstIsUsedIsAWarning) {
  Bytes records;
  AppendRecord(records, "TPro", {1});
  AppendRecord(records, "TPro", {1});
  MakeDocument(records);
  ExpectWarning("TPro at 1033: there is already a record of this kind at byte 1024");
}

TEST_F(CheckRecords, WhatTheReaderNeverReachesByItsCountIsAnError) {
  // The list declares more bytes than it holds, so the reader stops before the text.
  Bytes records = ByteString().Text("SPEC").Long(40).Short(0);
  AppendRecord(records, "COMM", ToBytes("text"));
  MakeDocument(records);
  EXPECT_THAT(Errors(), HasSubstr("COMM at 1034: the record \"COMM\" could not be read, nor what "
                                  "follows it\n"));
}

TEST_F(CheckRecords, FindingsEndSomewhere) {
  Bytes records;
  for (int i = 0; i < 1500; ++i) AppendRecord(records, "Zzzz", {});
  MakeDocument(records);
  const lab::Findings findings = lab::Check(path_);
  EXPECT_EQ(findings.list.size(), lab::Findings::kMost);
  EXPECT_EQ(findings.LeftOut(), 500U);
  EXPECT_EQ(findings.Count(lab::Severity::kWarning), 1500U);
}

}  // namespace
}  // namespace vex2::test
