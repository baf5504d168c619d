// Tests the run-wide settings.
#include <gtest/gtest.h>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/run/CGlobalComp.h"

namespace vex2::test {
namespace {

Bytes defaultSettings(unsigned sampleVolume, unsigned pre = 0, unsigned post = 0) {
  return ByteString()
      .Text("GLBL")
      .Long(2 + 12 + 2 * 10 + 4 * 9)
      .Short(7)
      .Text("VERS")
      .Long(4)
      .Long(512)
      .Text("PCRV")
      .Long(2)
      .Short(sampleVolume)
      .Text("UOMC")
      .Long(2)
      .Short(1)
      .Text("FTRD")
      .Long(1)
      .Byte(0)
      .Text("DRKS")
      .Long(1)
      .Byte(0)
      .Text("PRER")
      .Long(1)
      .Byte(pre)
      .Text("POSR")
      .Long(1)
      .Byte(post);
}

class GlobalSettings : public TempFolderTest {
 protected:
  // The bytes that a save writes after the header.
  Bytes saved() {
    EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kSuccess);
    const Bytes all = ReadBytes(path_);
    return Slice(all, 1024, all.size() - 1024);
  }
  std::string childTags() {
    const auto* settings = dynamic_cast<CGlobalComp*>(manager_.includesComponent("GLBL"));
    std::string tags;
    for (int i = 0; settings != nullptr && i < settings->GetChildCount(); ++i) {
      tags += std::string(settings->GetChild(i)->GetTag()) + ' ';
    }
    return tags;
  }

  OpenedManager manager_;
  std::string path_ = folder_ / "run.vex";
};

TEST_F(GlobalSettings, DocumentWithoutThemReturnsTheDefaults) {
  CString reference("old");
  int pre = 9;
  int post = 9;
  manager_.GetPassiveReference(reference);
  manager_.GetPrePostFlags(pre, post);
  EXPECT_EQ(manager_.GetSampleVolume(), 0);
  EXPECT_TRUE(reference.IsEmpty());
  EXPECT_EQ(pre, 0);
  EXPECT_EQ(post, 0);
  Vex2GlobalComplex info;
  info.sampleVolume = 77;
  EXPECT_EQ(manager_.GetGlobalComplexInfo(&info), kNotFound);
  EXPECT_EQ(info.sampleVolume, 77);
}

TEST_F(GlobalSettings, FirstSetterMakesThemWithTheDefaults) {
  manager_.SetSampleVolume(25);
  EXPECT_EQ(FirstDifference(saved(), defaultSettings(25)), "");
}

TEST_F(GlobalSettings, RecordsHaveTheirOrderAndEmptyTextsAreLeftOut) {
  Vex2GlobalComplex info;
  info.SetComment("c", 1);
  info.SetPassiveReference("r", 1);
  info.SetLog("l", 1);
  EXPECT_EQ(manager_.ReplaceGlobalComplexComp(&info), kSuccess);
  EXPECT_EQ(childTags(), "VERS COMM PCRV RefN UOMC FTRD DRKS PRER POSR LOGT ");
  info.SetPassiveReference("", 0);
  EXPECT_EQ(manager_.ReplaceGlobalComplexComp(&info), kSuccess);
  EXPECT_EQ(childTags(), "VERS COMM PCRV UOMC FTRD DRKS PRER POSR LOGT ");
}

TEST_F(GlobalSettings, EverySettingSurvivesASave) {
  Vex2GlobalComplex info;
  info.version = 0xFFFFFFFF;
  info.SetComment("comment", 7);
  info.sampleVolume = 65535;
  info.SetPassiveReference(CString("ROX"));
  info.unitCode = 65534;
  info.ftrd = 127;
  info.drks = 128;
  info.preFlag = -1;
  info.postFlag = 0x1234;
  info.SetLog("log\nlog", 7);
  EXPECT_EQ(manager_.ReplaceGlobalComplexComp(&info), kSuccess);
  static_cast<void>(saved());
  Vex2FileManager again;
  EXPECT_EQ(again.ReadFromFile(path_.c_str()), kSuccess);
  Vex2GlobalComplex read;
  EXPECT_EQ(again.GetGlobalComplexInfo(&read), kSuccess);
  EXPECT_EQ(read.version, 0xFFFFFFFF);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(read.commentData), read.commentLength), "comment");
  EXPECT_EQ(read.sampleVolume, 65535);
  EXPECT_EQ(
      std::string(reinterpret_cast<char*>(read.passiveReferenceData), read.passiveReferenceLength),
      "ROX");
  EXPECT_EQ(read.unitCode, 65534);
  EXPECT_EQ(read.ftrd, 127);
  EXPECT_EQ(read.drks, -128);
  EXPECT_EQ(read.preFlag, -1);
  EXPECT_EQ(read.postFlag, 0x34);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(read.logData), read.logLength), "log\nlog");
}

TEST_F(GlobalSettings, AbsentChildrenLeaveTheRecordAndUnknownOnesAreSkipped) {
  auto settings = std::make_unique<CGlobalComp>();
  settings->AddChild(std::make_unique<CShortValueComp>("RQAT", std::uint16_t{9}));
  settings->AddChild(std::make_unique<CShortValueComp>("PCRV", std::uint16_t{30}));
  settings->AddChild(std::make_unique<CBlockValueComp>("CALR", CString("x")));
  manager_.Append(std::move(settings));
  Vex2GlobalComplex info;
  info.version = 1;
  info.unitCode = 3;
  EXPECT_EQ(manager_.GetGlobalComplexInfo(&info), kSuccess);
  EXPECT_EQ(info.version, 1U);
  EXPECT_EQ(info.unitCode, 3);
  EXPECT_EQ(info.sampleVolume, 30);
}

TEST_F(GlobalSettings, NullRecordMakesAListWithoutChildren) {
  EXPECT_EQ(manager_.ReplaceGlobalComplexComp(nullptr), kSuccess);
  EXPECT_EQ(saved(), Bytes(ByteString().Text("GLBL").Long(2).Short(0)));
}

TEST_F(GlobalSettings, PrePostFlagsKeepTheLowByteWithItsSign) {
  manager_.SetPrePostFlags(200, -1);
  int pre = 0;
  int post = 0;
  manager_.GetPrePostFlags(pre, post);
  EXPECT_EQ(pre, -56);
  EXPECT_EQ(post, -1);
  EXPECT_EQ(FirstDifference(saved(), defaultSettings(0, 200, 255)), "");
}

TEST_F(GlobalSettings, SettersCarryTheOtherSettingsOver) {
  manager_.SetSampleVolume(25);
  manager_.SetPassiveReference(CString("ROX"));
  manager_.SetPrePostFlags(1, 2);
  CString reference;
  int pre = 0;
  int post = 0;
  manager_.GetPassiveReference(reference);
  manager_.GetPrePostFlags(pre, post);
  EXPECT_EQ(manager_.GetSampleVolume(), 25);
  EXPECT_EQ(reference, CString("ROX"));
  EXPECT_EQ(pre, 1);
  EXPECT_EQ(post, 2);
  EXPECT_EQ(manager_.GetAllComponentCount(), 1);
}

TEST_F(GlobalSettings, SampleVolumeHasNoSign) {
  manager_.SetSampleVolume(65535);
  EXPECT_EQ(manager_.GetSampleVolume(), 65535);
}

TEST_F(GlobalSettings, PassiveReferenceEndsAtTheFirstZeroByte) {
  Vex2GlobalComplex info;
  info.SetPassiveReference("RO\0X", 4);
  EXPECT_EQ(manager_.ReplaceGlobalComplexComp(&info), kSuccess);
  CString reference;
  manager_.GetPassiveReference(reference);
  EXPECT_EQ(reference, CString("RO"));
}

TEST_F(GlobalSettings, EmptyPassiveReferenceDropsItsChild) {
  manager_.SetPassiveReference(CString("ROX"));
  EXPECT_EQ(childTags(), "VERS PCRV RefN UOMC FTRD DRKS PRER POSR ");
  manager_.SetPassiveReference(CString(""));
  EXPECT_EQ(childTags(), "VERS PCRV UOMC FTRD DRKS PRER POSR ");
}

TEST_F(GlobalSettings, MaxDyesPerWellWithoutARecordIs4AndNotFound) {
  int count = 0;
  EXPECT_EQ(manager_.GetMaxDyesPerWell(count), kNotFound);
  EXPECT_EQ(count, 4);
}

TEST_F(GlobalSettings, MaxDyesPerWellOfADocumentThatWasReadIsAlwaysNotFound) {
  WriteBytes(path_, Join({StoredHeader(), ByteString().Text("MDPW").Long(2).Short(6)}));
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  int count = 0;
  EXPECT_EQ(manager_.GetMaxDyesPerWell(count), kNotFound);
  EXPECT_EQ(count, 4);
}

TEST_F(GlobalSettings, MaxDyesPerWellThatIsThereIsHandedOut) {
  manager_.Append(std::make_unique<CShortValueComp>("MDPW", std::uint16_t{6}));
  int count = 0;
  EXPECT_EQ(manager_.GetMaxDyesPerWell(count), kSuccess);
  EXPECT_EQ(count, 6);
}

TEST_F(GlobalSettings, ConfidencePercentIsStoredLittleEndian) {
  float percent = 7;
  EXPECT_EQ(manager_.GetConfidencePercent(percent), kNotFound);
  EXPECT_EQ(percent, 7);
  EXPECT_EQ(manager_.UpdateConfidencePercent(1), kSuccess);
  EXPECT_EQ(manager_.UpdateConfidencePercent(95.5F), kSuccess);
  EXPECT_EQ(manager_.GetConfidencePercent(percent), kSuccess);
  EXPECT_EQ(percent, 95.5F);
  EXPECT_EQ(saved(),
            Bytes(ByteString().Text("Conf").Long(4).Byte(0).Byte(0).Byte(0xBF).Byte(0x42)));
}

TEST_F(GlobalSettings, EmptyCalibratorRemovesIt) {
  EXPECT_EQ(manager_.SetCalibrator(CString("S1")), kSuccess);
  CString name;
  EXPECT_EQ(manager_.GetCalibrator(name), kSuccess);
  EXPECT_EQ(name, CString("S1"));
  EXPECT_EQ(manager_.SetCalibrator(CString("")), kSuccess);
  EXPECT_EQ(manager_.GetCalibrator(name), kNotFound);
  EXPECT_TRUE(name.IsEmpty());
  EXPECT_EQ(manager_.GetAllComponentCount(), 0);
}

TEST_F(GlobalSettings, EmptyEndoControlRemovesIt) {
  EXPECT_EQ(manager_.SetEndoControl(CString("18S")), kSuccess);
  EXPECT_EQ(saved(), Bytes(ByteString().Text("ENDO").Long(3).Text("18S")));
  CString name;
  EXPECT_EQ(manager_.GetEndoControl(name), kSuccess);
  EXPECT_EQ(name, CString("18S"));
  EXPECT_EQ(manager_.SetEndoControl(CString("")), kSuccess);
  EXPECT_EQ(manager_.GetEndoControl(name), kNotFound);
  EXPECT_TRUE(name.IsEmpty());
}

TEST_F(GlobalSettings, RQAnalysisTypeIsAnUnsignedNumber) {
  unsigned short type = 7;
  EXPECT_EQ(manager_.GetRQAnalysisType(type), kNotFound);
  EXPECT_EQ(type, 7);
  EXPECT_EQ(manager_.SetRQAnalysisType(65535), kSuccess);
  EXPECT_EQ(manager_.GetRQAnalysisType(type), kSuccess);
  EXPECT_EQ(type, 65535);
  EXPECT_EQ(saved(), Bytes(ByteString().Text("RQAT").Long(2).Short(65535)));
}

TEST_F(GlobalSettings, ReplacedSettingsMoveToTheEndOfTheDocument) {
  const std::vector<Bytes> records = {StoredHeader(),
                                      ByteString().Text("CALR").Long(1).Text("c"),
                                      ByteString().Text("ENDO").Long(1).Text("e"),
                                      ByteString().Text("RQAT").Long(2).Short(1),
                                      ByteString().Text("Conf").Long(4).Zeros(4),
                                      ByteString().Text("GLBL").Long(2).Short(0)};
  WriteBytes(path_, Join(records));
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  ASSERT_EQ(TagsOf(manager_), "CALR ENDO RQAT Conf GLBL");
  static_cast<void>(manager_.SetCalibrator(CString("x")));
  EXPECT_EQ(TagsOf(manager_), "ENDO RQAT Conf GLBL CALR");
  static_cast<void>(manager_.SetEndoControl(CString("x")));
  EXPECT_EQ(TagsOf(manager_), "RQAT Conf GLBL CALR ENDO");
  static_cast<void>(manager_.SetRQAnalysisType(2));
  EXPECT_EQ(TagsOf(manager_), "Conf GLBL CALR ENDO RQAT");
  static_cast<void>(manager_.UpdateConfidencePercent(2));
  EXPECT_EQ(TagsOf(manager_), "GLBL CALR ENDO RQAT Conf");
  manager_.SetSampleVolume(1);
  EXPECT_EQ(TagsOf(manager_), "CALR ENDO RQAT Conf GLBL");
  manager_.SetSampleVolume(2);
  static_cast<void>(manager_.SetCalibrator(CString("y")));
  static_cast<void>(saved());
  Vex2FileManager again;
  EXPECT_EQ(again.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(TagsOf(again), "ENDO RQAT Conf GLBL CALR");
}

TEST_F(GlobalSettings, AppendingWritesThemAtTheEndOfTheFileAtOnce) {
  WriteBytes(path_, Join({StoredHeader(), ToBytes("tail")}));
  Vex2GlobalComplex info;
  info.sampleVolume = 25;
  EXPECT_EQ(manager_.AppendGlobalComplexComp(path_.c_str(), &info), kSuccess);
  EXPECT_EQ(FirstDifference(ReadBytes(path_),
                            Join({StoredHeader(), ToBytes("tail"), defaultSettings(25)})),
            "");
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(TagsOf(manager_), "GLBL");
}

TEST_F(GlobalSettings, AppendingWithoutAWritableFileFailsAndKeepsThemInMemory) {
  EXPECT_EQ(manager_.AppendGlobalComplexComp(nullptr, nullptr), kWriteFailed);
  EXPECT_EQ(manager_.AppendGlobalComplexComp((folder_ / "none/run.vex").c_str(), nullptr),
            kWriteFailed);
  EXPECT_EQ(TagsOf(manager_), "GLBL");
}

TEST_F(GlobalSettings, AppendingToAFullDiskLeavesTheFile) {
  WriteBytes(path_, StoredHeader());
  FaultyFileSystem files;
  files.FailKind(FileCall::write, ENOSPC);
  EXPECT_EQ(manager_.AppendGlobalComplexComp(path_.c_str(), nullptr), kWriteFailed);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), StoredHeader()), "");
}

}  // namespace
}  // namespace vex2::test
