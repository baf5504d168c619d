// Tests the calibration of a document in memory and in files, and the values that are computed from
// it.
#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/setup/CBackgroundComp.h"
#include "vex2/setup/CPureDyeComp.h"

namespace vex2::test {
namespace {

class CalibrationOfADocument : public TempFolderTest {
 protected:
  CalibrationOfADocument() {
    dyes_.SetEntryCount(2);
    dyes_.entries[0].SetName("Fam", 3);
    dyes_.entries[0].dyeIndex = 4;
    const std::uint32_t values[] = {1, 2, 3, 4, 5};
    dyes_.entries[0].SetValues(values, 5);
    background_.SetEntryCount(1);
    background_.setting = 12;
  }
  // Describes the parts that are present, e.g. "dyes 2 background 1".
  std::string parts(const Vex2FileManager& document) const {
    Vex2PureDye* dyes = nullptr;
    Vex2BGC* background = nullptr;
    int has[2] = {5, 5};
    const int status = document.GetCalibrationInfo(dyes, &has[0], background, &has[1]);
    const std::unique_ptr<Vex2PureDye> dyesOwner(dyes);
    const std::unique_ptr<Vex2BGC> backgroundOwner(background);
    EXPECT_EQ(dyes != nullptr, has[0] == 1);
    EXPECT_EQ(background != nullptr, has[1] == 1);
    if (status != kSuccess) return "status " + std::to_string(status);
    return (dyes != nullptr ? "dyes " + std::to_string(dyes->entryCount) : "") +
           (background != nullptr ? " background " + std::to_string(background->entryCount) : "");
  }
  std::string parts() const { return parts(document_); }
  Bytes savedDocument() {
    EXPECT_EQ(document_.SaveToFile(path_.c_str()), kSuccess);
    return ReadBytes(path_);
  }
  std::string tagsInFile() const {
    Vex2FileManager reader;
    EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
    return TagsOf(reader);
  }

  const std::string path_ = folder_ / "calibration.vex";
  Vex2PureDye dyes_;
  Vex2BGC background_;
  Vex2FileManager document_;
};

TEST_F(CalibrationOfADocument, IsReplacedAsAWhole) {
  EXPECT_EQ(parts(), "status -300");
  EXPECT_EQ(document_.GetPureDyeCount(), 0);
  EXPECT_EQ(document_.ReplaceCalibComponent(&dyes_, &background_), kSuccess);
  EXPECT_EQ(parts(), "dyes 2 background 1");
  EXPECT_EQ(document_.GetPureDyeCount(), 2);
  EXPECT_EQ(document_.ReplaceCalibComponent(nullptr, &background_), kSuccess);
  EXPECT_EQ(parts(), " background 1");
  EXPECT_EQ(document_.GetPureDyeCount(), 0);
  EXPECT_EQ(document_.ReplaceCalibComponent(nullptr, nullptr), kSuccess);
  EXPECT_EQ(parts(), "");
  EXPECT_EQ(TagsOf(document_), "CALI");
}

TEST_F(CalibrationOfADocument, IsReplacedPartByPart) {
  EXPECT_EQ(document_.ReplaceBackground(&background_), kSuccess);
  EXPECT_EQ(document_.ReplacePureDye(&dyes_), kSuccess);
  EXPECT_EQ(parts(), "dyes 2 background 1");
  dyes_.SetEntryCount(3);
  EXPECT_EQ(document_.ReplacePureDye(&dyes_), kSuccess);
  EXPECT_EQ(parts(), "dyes 3 background 1");
  EXPECT_EQ(document_.ReplacePureDye(nullptr), kSuccess);
  EXPECT_EQ(parts(), " background 1");
  EXPECT_EQ(document_.ReplaceBackground(nullptr), kSuccess);
  EXPECT_EQ(parts(), "");
}

TEST_F(CalibrationOfADocument, IsStoredInExistingRecords) {
  EXPECT_EQ(document_.ReplaceCalibComponent(&dyes_, &background_), kSuccess);
  Vex2PureDye dyes;
  dyes.SetEntryCount(9);
  Vex2PureDye* given = &dyes;
  Vex2BGC background;
  Vex2BGC* givenBackground = &background;
  int has[2] = {};
  EXPECT_EQ(document_.GetCalibrationInfo(given, &has[0], givenBackground, &has[1]), kSuccess);
  EXPECT_EQ(given, &dyes);
  EXPECT_EQ(dyes.entryCount, 2);
  EXPECT_EQ(dyes.entries[0].values[4], 5U);
  EXPECT_EQ(background.setting, 12U);
}

TEST_F(CalibrationOfADocument, LosesThePartsThatAreRemoved) {
  EXPECT_EQ(document_.RemoveCalibComponents(false, false), kSuccess);
  EXPECT_EQ(document_.RemoveCalibComponents(true, false), kNotFound);
  EXPECT_EQ(document_.RemoveCalibComponents(true, true), kNotFound);
  EXPECT_EQ(document_.ReplaceCalibComponent(&dyes_, &background_), kSuccess);
  EXPECT_EQ(document_.RemoveCalibComponents(true, false), kSuccess);
  EXPECT_EQ(document_.RemoveCalibComponents(true, false), kNotFound);
  EXPECT_EQ(parts(), " background 1");
  EXPECT_EQ(document_.RemoveCalibComponents(false, true), kSuccess);
  EXPECT_EQ(document_.RemoveCalibComponents(false, true), kNotFound);
  EXPECT_EQ(TagsOf(document_), "CALI");
  EXPECT_EQ(document_.RemoveCalibComponents(true, true), kSuccess);
  EXPECT_EQ(TagsOf(document_), "");
}

TEST_F(CalibrationOfADocument, TopLevelPartsAreAppendedToAFile) {
  EXPECT_EQ(document_.AppendPureDye(nullptr, &dyes_), kWriteFailed);
  EXPECT_EQ(document_.AppendBackground((folder_ / "missing/x.vex").c_str(), &background_),
            kWriteFailed);
  EXPECT_EQ(TagsOf(document_), "PDYE BKGD") << "the document keeps them all the same";
  ASSERT_EQ(Vex2FileManager().SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(document_.AppendPureDye(path_.c_str(), &dyes_), kSuccess);
  EXPECT_EQ(document_.AppendBackground(path_.c_str(), &background_), kSuccess);
  EXPECT_EQ(TagsOf(document_), "PDYE BKGD");
  EXPECT_EQ(tagsInFile(), "PDYE BKGD");
  EXPECT_EQ(parts(), "status -300") << "they are no part of the calibration";
}

TEST_F(CalibrationOfADocument, GivenPartsAreAppendedEvenIfOthersHaveTheirKind) {
  Vex2FileManager writer;
  ASSERT_EQ(writer.SaveToFile(path_.c_str()), kSuccess);
  for (const char name : {'A', 'B', 'C'}) {
    dyes_.entries[0].SetName(&name, 1);
    background_.entries[0].SetName(&name, 1);
    Vex2FileManager host;
    ASSERT_EQ(host.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_EQ(host.AppendPureDye(path_.c_str(), &dyes_), kSuccess);
    EXPECT_EQ(host.AppendBackground(path_.c_str(), &background_), kSuccess);
  }
  Vex2FileManager reader;
  ASSERT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
  ASSERT_EQ(TagsOf(reader), "PDYE BKGD PDYE BKGD PDYE BKGD");
  std::string names;
  for (int i = 0; i < 6; i += 2) {
    names += *dynamic_cast<CPureDyeComp&>(*reader.GetComponent(i)).GetRecord().entries[0].name;
    names += *dynamic_cast<CBackgroundComp&>(*reader.GetComponent(i + 1)).GetRecord().entries->name;
  }
  EXPECT_EQ(names, "AABBCC");
}

TEST_F(CalibrationOfADocument, IsReplacedAmongPlaceholdersOfItsTag) {
  document_.initTestData();
  document_.initTestData();
  EXPECT_EQ(document_.ReplaceBackground(&background_), kSuccess);
  EXPECT_EQ(document_.ReplaceBackground(nullptr, &background_), kReadFailed);
}

// A list that declares less than it holds can be read, so it can also be changed.
TEST_F(CalibrationOfADocument, PartIsReplacedInAListThatDeclaresTooLittle) {
  EXPECT_EQ(document_.ReplaceCalibComponent(&dyes_, &background_), kSuccess);
  for (const std::uint32_t declared : {2U, 3U, 60U, 84U, 100U}) {
    Bytes bytes = savedDocument();
    SetLongAt(bytes, 1024 + 4, declared);
    WriteBytes(path_, bytes);
    Vex2FileManager host;
    ASSERT_EQ(host.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_EQ(host.SetCalibrator("behind"), kSuccess);
    Vex2BGC shorter;
    shorter.setting = declared;
    EXPECT_EQ(host.ReplaceBackground(&shorter), kSuccess) << declared;
    EXPECT_EQ(parts(host), "dyes 2 background 0") << declared;
    EXPECT_EQ(host.ReplaceBackground(&background_), kSuccess) << declared;
    EXPECT_EQ(host.ReplacePureDye(nullptr), kSuccess) << declared;
    EXPECT_EQ(parts(host), " background 1") << declared;
    EXPECT_EQ(host.SaveToFile(path_.c_str()), kSuccess);
    EXPECT_EQ(tagsInFile(), "CALI CALR") << declared;
    Vex2FileManager reader;
    EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
    EXPECT_EQ(parts(reader), " background 1") << declared;
  }
}

TEST_F(CalibrationOfADocument, KeepsThePartWhoseReplacementIsRefused) {
  EXPECT_EQ(document_.ReplaceBackground(&background_), kSuccess);
  Bytes bytes = savedDocument();
  SetLongAt(bytes, 1024 + 4, 0xFFFFFFFF);
  WriteBytes(path_, bytes);
  ASSERT_EQ(document_.ReadFromFile(path_.c_str()), kSuccess);
  background_.SetEntryCount(2);
  EXPECT_EQ(document_.ReplaceBackground(&background_), kWriteFailed);
  EXPECT_EQ(parts(), " background 1");
}

TEST_F(CalibrationOfADocument, AloneIsSaved) {
  EXPECT_EQ(document_.SaveCalibrationInfo(path_.c_str()), kNotFound);
  EXPECT_EQ(document_.ReplaceCalibComponent(&dyes_, &background_), kSuccess);
  EXPECT_EQ(document_.SetCalibrator("not in it"), kSuccess);
  EXPECT_EQ(document_.SaveCalibrationInfo(nullptr), kWriteFailed);
  EXPECT_EQ(document_.SaveCalibrationInfo((folder_ / "missing/x.vex").c_str()), kWriteFailed);
  EXPECT_EQ(document_.SaveCalibrationInfo(path_.c_str()), kSuccess);
  EXPECT_EQ(document_.GetFilePath(), path_.c_str());
  EXPECT_EQ(tagsInFile(), "CALI");
  Vex2FileManager reader;
  EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(parts(reader), "dyes 2 background 1");
}

class BackgroundInAFile : public CalibrationOfADocument {
 protected:
  // A file with a background, but no list around it, after the settings.
  Bytes fileWithBackground() {
    EXPECT_EQ(Vex2FileManager().SaveToFile(path_.c_str()), kSuccess);
    Vex2FileManager writer;
    EXPECT_EQ(writer.SetCalibrator("first"), kSuccess);
    EXPECT_EQ(writer.SaveToFile(path_.c_str()), kSuccess);
    EXPECT_EQ(writer.AppendBackground(path_.c_str(), &background_), kSuccess);
    return ReadBytes(path_);
  }
};

TEST_F(BackgroundInAFile, OfTheSameSizeIsOverwrittenInPlace) {
  const Bytes before = fileWithBackground();
  background_.setting = 99;
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSuccess);
  const Bytes after = ReadBytes(path_);
  ASSERT_EQ(after.size(), before.size());
  int changed = 0;
  for (std::size_t i = 0; i < after.size(); ++i) changed += after[i] != before[i] ? 1 : 0;
  EXPECT_EQ(changed, 1);
  EXPECT_EQ(parts(), " background 1");
}

TEST_F(BackgroundInAFile, OfAnotherSizeIsRefusedButNotInMemory) {
  const Bytes before = fileWithBackground();
  background_.SetEntryCount(2);
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSizeDiffers);
  EXPECT_EQ(ReadBytes(path_), before);
  EXPECT_EQ(parts(), " background 2");
  EXPECT_FALSE(document_.IsOpen());
}

TEST_F(BackgroundInAFile, WithoutOneReceivesTheWholeCalibration) {
  ASSERT_EQ(Vex2FileManager().SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(document_.ReplacePureDye(&dyes_), kSuccess);
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSuccess);
  EXPECT_EQ(tagsInFile(), "CALI");
  Vex2FileManager reader;
  EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(parts(reader), "dyes 2 background 1");
}

TEST_F(BackgroundInAFile, OfTheCalibrationIsNotTheTopLevelOne) {
  EXPECT_EQ(document_.ReplaceBackground(&background_), kSuccess);
  savedDocument();
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSuccess);
  EXPECT_EQ(tagsInFile(), "CALI CALI");
}

TEST_F(BackgroundInAFile, ThatCannotBeReadIsAStatus) {
  EXPECT_EQ(document_.ReplaceBackground(nullptr, &background_), kReadFailed);
  EXPECT_EQ(document_.ReplaceBackground((folder_ / "missing.vex").c_str(), &background_),
            kReadFailed);
  EXPECT_EQ(parts(), " background 1");
}

TEST_F(BackgroundInAFile, NeedsNoHeader) {
  WriteBytes(path_, {});
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSuccess);
  const Bytes calibration = ReadBytes(path_);
  EXPECT_EQ(ToBytes("CALI"), Slice(calibration, 0, 4));
  EXPECT_EQ(calibration.size(), 8U + LongAt(calibration, 4));
  for (const std::uint16_t entries : {std::uint16_t{1}, std::uint16_t{200}}) {
    std::filesystem::remove(path_);
    dyes_.SetEntryCount(entries);
    Vex2FileManager host;
    ASSERT_EQ(host.AppendPureDye(path_.c_str(), &dyes_), kSuccess);
    const Bytes before = ReadBytes(path_);
    EXPECT_EQ(host.ReplaceBackground(path_.c_str(), &background_), kSuccess) << entries;
    EXPECT_EQ(FirstDifference(ReadBytes(path_), Join({before, calibration})), "") << entries;
  }
}

TEST_F(BackgroundInAFile, OfAnotherSizeIsReportedBeforeARefusedWrite) {
  const Bytes before = fileWithBackground();
  FaultyFileSystem files;
  files.RefuseWriters(EACCES);
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kWriteFailed);
  background_.SetEntryCount(2);
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSizeDiffers);
  EXPECT_FALSE(document_.IsOpen());
  EXPECT_EQ(ReadBytes(path_), before);
}

TEST_F(BackgroundInAFile, OfAStudyIsAppendedAfterItsPlates) {
  Vex2FileManager study;
  document_.SetFilePath("plate.vex");
  ASSERT_TRUE(study.AddRQPlate(&document_, ""));
  ASSERT_EQ(study.SaveToFile(path_.c_str()), kSuccess);
  const std::size_t size = ReadBytes(path_).size();
  EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kSuccess);
  const Bytes after = ReadBytes(path_);
  ASSERT_GT(after.size(), size);
  EXPECT_EQ(Slice(after, size, 4), ToBytes("CALI"));
}

TEST_F(BackgroundInAFile, IsNotAppendedToACutOffFile) {
  Bytes bytes = fileWithBackground();
  for (const std::size_t cut : {1028U, 1030U, 1033U}) {
    Bytes torn(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut));
    WriteBytes(path_, torn);
    EXPECT_EQ(document_.ReplaceBackground(path_.c_str(), &background_), kNotFound);
    EXPECT_EQ(ReadBytes(path_), torn);
  }
}

class AssayType : public CalibrationOfADocument {
 protected:
  void setAssay(const char* code) {
    Vex2HeaderData header = document_.GetHeaderData();
    std::memcpy(header.assayCode, code, 4);
    document_.SetHeaderData(header);
  }
};

TEST_F(AssayType, IsThatOfTheHeadersCode) {
  for (const auto& [code, number] :
       {std::pair("BGND", 950), std::pair("PDye", 951), std::pair("AbsQ", 1000),
        std::pair("RelQ", 1001), std::pair("RQSt", 1002), std::pair("AllD", 1003),
        std::pair("+/- ", 1004), std::pair("absq", 0), std::pair("+/-\0", 0)}) {
    setAssay(code);
    for (const int type : {0, 950, 951, 1000, 1001, 1002, 1003, 1004, 1005}) {
      EXPECT_EQ(document_.IsAssayType(type), type == number) << code << ' ' << type;
    }
    EXPECT_EQ(document_.IsBackground(), number == 950);
    EXPECT_EQ(document_.IsPureSpectra(), number == 951);
    EXPECT_EQ(document_.IsAQ(), number == 1000);
    EXPECT_EQ(document_.IsRQP(), number == 1001);
    EXPECT_EQ(document_.IsRQS(), number == 1002);
    EXPECT_EQ(document_.IsAD(), number == 1003);
    EXPECT_EQ(document_.IsPM(), number == 1004);
    EXPECT_EQ(document_.IsRealTime(), number >= 1000 && number <= 1002) << code;
    EXPECT_EQ(document_.IsPlateRead(), number >= 1003) << code;
  }
}

using DyeList = CalibrationOfADocument;

TEST_F(DyeList, HasTheNamedDyesInUpperCaseWithTheirFirstValues) {
  dyes_.SetEntryCount(6);
  const char* names[] = {"Fam", "", "<None>", "(NONE)", "none", "Vi c"};
  for (int i = 0; i < 6; ++i) {
    dyes_.entries[i].SetName(names[i], static_cast<std::uint8_t>(std::strlen(names[i])));
    dyes_.entries[i].dyeIndex = static_cast<std::uint16_t>(i);
  }
  const std::uint32_t values[] = {1, 2, 3, 4, 5};
  dyes_.entries[0].SetValues(values, 5);
  dyes_.entries[5].SetValues(values, 2);
  EXPECT_EQ(document_.ReplacePureDye(&dyes_), kSuccess);
  CObList list;
  ASSERT_TRUE(document_.LoadDyeList(&list));
  ASSERT_EQ(list.GetCount(), 3);
  const auto next = [&] {
    return std::unique_ptr<Vex2DyeInfo>(dynamic_cast<Vex2DyeInfo*>(list.RemoveHead()));
  };
  const auto fam = next();
  EXPECT_EQ(fam->name, "FAM");
  EXPECT_EQ(fam->index, 0);
  EXPECT_EQ(fam->values[3], 4U);
  EXPECT_EQ(next()->name, "NONE");
  const auto vic = next();
  EXPECT_EQ(vic->name, "VI C");
  EXPECT_EQ(vic->index, 5);
  EXPECT_EQ(vic->values[1], 2U);
  EXPECT_EQ(vic->values[2], 0U) << "a value that is not there";
}

TEST_F(DyeList, WithoutACalibrationIsUnchanged) {
  CObList list;
  EXPECT_FALSE(document_.LoadDyeList(&list));
  EXPECT_EQ(document_.ReplaceBackground(&background_), kSuccess);
  EXPECT_TRUE(document_.LoadDyeList(&list));
  EXPECT_TRUE(list.IsEmpty());
  EXPECT_FALSE(document_.LoadDyeList(nullptr));
}

}  // namespace
}  // namespace vex2::test
