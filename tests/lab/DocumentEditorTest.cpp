// Tests DocumentEditor as programs use it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "lab/model/Document.h"
#include "lab/model/DocumentEditor.h"
#include "lab/model/DocumentFile.h"
#include "lab/record/RunRecorder.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"

namespace vex2::test {
namespace {

using lab::DocumentEditor;
using lab::ErrorCode;
using lab::RunReader;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class DocumentEditorTest : public TempFolderTest {
 protected:
  void SetUp() override { Record(SmallRun(2, 0), path_); }

  static const lab::Detector* find(const std::vector<lab::Detector>& list, std::string_view name) {
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const lab::Detector& one) { return one.name == name; });
    return found != list.end() ? &*found : nullptr;
  }

  const std::string path_ = folder_ / "run.vex";
};

TEST_F(DocumentEditorTest, SaveChangesSampleAndKeepsTheRest) {
  const RunReader before(path_);
  const auto old = before.Readings();
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "S\u00e4ule";
  editor.Wells()[1].targets.clear();
  editor.Save();
  const RunReader after(path_);
  EXPECT_TRUE(after.IsWhole());
  EXPECT_EQ(after.Plate().Find("A1")->sample, "S\u00e4ule");
  EXPECT_EQ(after.Plate().Find("A1")->targets, before.Plate().Find("A1")->targets);
  EXPECT_TRUE(after.Plate().Find("A2")->targets.empty());
  EXPECT_EQ(after.Plate().Find("A3")->targets, before.Plate().Find("A3")->targets);
  EXPECT_EQ(after.Detectors(), before.Detectors());
  EXPECT_EQ(after.Settings(), before.Settings());
  const auto readings = after.Readings();
  EXPECT_TRUE(std::equal(readings.Values().begin(), readings.Values().end(), old.Values().begin(),
                         old.Values().end()));
}

TEST_F(DocumentEditorTest, SaveKeepsRawReadingsLast) {
  DocumentEditor editor(path_);
  editor.Set("calibrator", std::string("liver"));  // stored as a separate record, at the end
  editor.Save();
  EXPECT_EQ(lab::Document(path_).Records().back().tag, "RAWa");
}

TEST_F(DocumentEditorTest, WithoutSaveNothingChanges) {
  const Bytes before = ReadBytes(path_);
  {
    DocumentEditor editor(path_);
    editor.Well("A1").sample = "other";
    editor.Set("comment", std::string("other"));
  }
  EXPECT_EQ(ReadBytes(path_), before);
}

TEST_F(DocumentEditorTest, SaveRefusesDocumentThatHasChanged) {
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "mine";
  Bytes other = ReadBytes(path_);
  other[300] ^= 1;
  WriteBytes(path_, other);
  const lab::Error error = ErrorOf([&] { editor.Save(); });
  EXPECT_EQ(error.Code(), ErrorCode::kDocument);
  EXPECT_THAT(error.what(), HasSubstr("another program has changed it meanwhile"));
  EXPECT_EQ(ReadBytes(path_), other);
}

// A file with hard links cannot be replaced by a new file, so a save empties it and writes into it.
TEST_F(DocumentEditorTest, SaveRefusesChangedDocumentWithHardLinks) {
  std::filesystem::create_hard_link(path_, folder_ / "other.vex");
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "mine";
  Bytes other = ReadBytes(path_);
  other[300] ^= 1;
  WriteBytes(path_, other);
  EXPECT_THAT(ErrorOf([&] { editor.Save(); }).what(),
              HasSubstr("another program has changed it meanwhile"));
  EXPECT_EQ(ReadBytes(path_), other);
}

TEST_F(DocumentEditorTest, SaveComparesDocumentUnderItsLock) {
  lab::DocumentFile file;
  file.ExpectUnchanged(path_);
  ASSERT_EQ(file.ReadFromFile(path_.c_str()), kSuccess);
  Bytes other = ReadBytes(path_);
  other[300] ^= 1;
  WriteBytes(path_, other);
  EXPECT_EQ(file.SaveToFile(path_.c_str()), kWriteFailed);
  EXPECT_EQ(ReadBytes(path_), other);
}

TEST_F(DocumentEditorTest, SaveCanBeRepeated) {
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "one";
  editor.Save();
  editor.Well("A2").sample = "two";
  editor.Save();
  const RunReader run(path_);
  EXPECT_EQ(run.Plate().Find("A1")->sample, "one");
  EXPECT_EQ(run.Plate().Find("A2")->sample, "two");
}

TEST_F(DocumentEditorTest, RefusesWhileRecorded) {
  const std::string live = folder_ / "live.vex";
  lab::RecordingPlan plan;
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
  std::optional<lab::RunRecorder> recorder(std::in_place, live, plan);
  EXPECT_EQ(ErrorOf([&] { DocumentEditor{live}; }).Code(), ErrorCode::kInUse);
  recorder.reset();  // the run can be resumed, so it is still in progress
  EXPECT_THAT(ErrorOf([&] { DocumentEditor{live}; }).what(), HasSubstr("its run is in progress"));
}

TEST_F(DocumentEditorTest, RecorderIsRefusedWhileEdited) {
  const DocumentEditor editor(path_);
  lab::RecordingPlan plan;
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
  EXPECT_EQ(ErrorOf([&] { lab::RunRecorder(path_, plan, {.resume = true}); }).Code(),
            ErrorCode::kInUse);
}

TEST_F(DocumentEditorTest, DetectorsAreAddedChangedAndRemoved) {
  DocumentEditor editor(path_);
  ASSERT_FALSE(editor.Detectors().empty());
  const std::string first = editor.Detectors().front().name;
  editor.Detectors().erase(editor.Detectors().begin());
  lab::Detector added;
  added.name = "MYC";
  added.reporterDye = "VIC";
  editor.Detectors().push_back(added);
  editor.Save();
  ASSERT_NE(find(RunReader(path_).Detectors(), "MYC"), nullptr);
  EXPECT_EQ(find(RunReader(path_).Detectors(), first), nullptr);
  editor.Detectors().back().threshold = 0.5F;
  editor.Save();
  EXPECT_EQ(find(RunReader(path_).Detectors(), "MYC")->threshold, 0.5F);
}

TEST_F(DocumentEditorTest, NewTargetTakesReporterOfItsDetector) {
  DocumentEditor editor(path_);
  lab::Detector added;
  added.name = "MYC";
  added.reporterDye = "VIC";
  editor.Detectors().push_back(added);
  editor.Well("A1").targets = {
      {.detector = "MYC", .task = "UNKN", .quantity = 2.5F, .reporter = {}}};
  editor.Save();
  const RunReader run(path_);
  EXPECT_THAT(run.Plate().Find("A1")->targets,
              ElementsAre(lab::Target{"MYC", "UNKN", 2.5F, "VIC"}));
  EXPECT_THAT(run.RequiredDyes(), Contains("VIC"));
}

TEST_F(DocumentEditorTest, DyesAreAddedAndRemoved) {
  DocumentEditor editor(path_);
  editor.RequiredDyes() = {"VIC", "ROX"};
  editor.Save();
  EXPECT_THAT(RunReader(path_).RequiredDyes(), testing::UnorderedElementsAre("VIC", "ROX"));
}

TEST_F(DocumentEditorTest, SettingsAndStatusAreSet) {
  DocumentEditor editor(path_);
  editor.Set("comment", std::string("second series"));
  editor.Set("sample-volume", std::int64_t{25});
  editor.SetStatus("ZERO");
  EXPECT_EQ(editor.Status(), "ZERO");
  editor.Save();
  const RunReader run(path_);
  EXPECT_THAT(run.Settings(), Contains(lab::SettingValue{"comment", std::string("second series")}));
  EXPECT_THAT(run.Settings(), Contains(lab::SettingValue{"sample-volume", std::int64_t{25}}));
  EXPECT_EQ(run.StatusCode(), "ZERO");
  EXPECT_EQ(ErrorOf([&] { editor.Set("none", {}); }).Code(), ErrorCode::kUnknownSetting);
  EXPECT_EQ(ErrorOf([&] { editor.Set("sample-volume", std::int64_t{70000}); }).Code(),
            ErrorCode::kInvalidValue);
  EXPECT_EQ(ErrorOf([&] { editor.SetStatus("done"); }).Class(), lab::ErrorClass::kUsage);
}

TEST_F(DocumentEditorTest, SetRunStatusEndsARunWhoseRecorderHasCrashed) {
  const std::string path = folder_ / "lost.vex";
  lab::RecordingPlan plan;
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
  {
    const lab::RunRecorder recorder(path, plan);
    EXPECT_EQ(ErrorOf([&] { lab::SetRunStatus(path, "DONE"); }).Code(), ErrorCode::kInUse);
  }
  EXPECT_EQ(ErrorOf([&] { DocumentEditor editor(path); }).Code(), ErrorCode::kDocument);
  lab::SetRunStatus(path, "DONE");
  EXPECT_EQ(DocumentEditor(path).Status(), "DONE");
}

TEST_F(DocumentEditorTest, SetRunStatusRefusesOtherTextsAndFiles) {
  const Bytes before = ReadBytes(path_);
  EXPECT_EQ(ErrorOf([&] { lab::SetRunStatus(path_, "done"); }).Class(), lab::ErrorClass::kUsage);
  EXPECT_EQ(ErrorOf([&] { lab::SetRunStatus(path_, "OVER!"); }).Class(), lab::ErrorClass::kUsage);
  EXPECT_EQ(ReadBytes(path_), before);
  const std::string text = folder_ / "notes.txt";
  WriteBytes(text, ToBytes("not a document"));
  EXPECT_EQ(ErrorOf([&] { lab::SetRunStatus(text, "DONE"); }).Code(), ErrorCode::kNoDocument);
  EXPECT_EQ(ReadBytes(text), ToBytes("not a document"));
}

TEST_F(DocumentEditorTest, CalibrationPartIsReplacedButNotTakenAway) {
  DocumentEditor editor(path_);
  editor.Calibration() = lab::SimulatedCalibration();
  editor.Calibration().pureDyes->entries.front().name = "FAM2";
  editor.Save();
  EXPECT_EQ(RunReader(path_).Calibration(), editor.Calibration());
  EXPECT_EQ(editor.Calibration().pureDyes->entries.front().name, "FAM2");
  editor.Calibration().background.reset();
  EXPECT_EQ(ErrorOf([&] { editor.Save(); }).Code(), ErrorCode::kInvalidValue);
}

TEST_F(DocumentEditorTest, InvalidValueSavesNothingAndCanBeCorrected) {
  const Bytes before = ReadBytes(path_);
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "\u4e2d";
  editor.Well("A2").sample = "two";
  const lab::Error error = ErrorOf([&] { editor.Save(); });
  EXPECT_EQ(error.Code(), ErrorCode::kInvalidValue);
  EXPECT_EQ(error.File(), path_);
  EXPECT_THAT(error.what(), HasSubstr("sample of well A1"));
  EXPECT_EQ(ReadBytes(path_), before);
  editor.Well("A1").sample = "one";
  editor.Save();
  EXPECT_EQ(RunReader(path_).Plate().Find("A2")->sample, "two");
}

TEST_F(DocumentEditorTest, NameGivenTwiceIsRefused) {
  DocumentEditor editor(path_);
  editor.RequiredDyes() = {"VIC", "VIC"};
  EXPECT_THAT(ErrorOf([&] { editor.Save(); }).what(), HasSubstr("'VIC' is given twice"));
  editor.RequiredDyes() = {"VIC"};
  editor.Detectors().push_back(editor.Detectors().front());
  EXPECT_THAT(ErrorOf([&] { editor.Save(); }).what(), HasSubstr("is given twice"));
}

TEST_F(DocumentEditorTest, WellOutsideThePlateIsRefused) {
  DocumentEditor editor(path_);
  EXPECT_EQ(ErrorOf([&] { editor.Well("Z99"); }).Code(), ErrorCode::kNoSuchWell);
  EXPECT_EQ(editor.Well("h12").number, 96);
}

TEST_F(DocumentEditorTest, DocumentWithoutSetupGetsOne) {
  Vex2FileManager empty;
  ASSERT_EQ(empty.SaveToFile(path_.c_str()), 0);
  DocumentEditor editor(path_);
  EXPECT_TRUE(editor.Wells().empty());
  editor.Well("B1").sample = "b";
  editor.Well("A1").sample = "a";
  EXPECT_EQ(editor.Wells()[0].name, "A1");
  editor.Save();
  EXPECT_EQ(RunReader(path_).Plate().wells.size(), 96U);
  EXPECT_EQ(RunReader(path_).Plate().Find("B1")->sample, "b");
}

TEST_F(DocumentEditorTest, BlockOfVersion1IsUpgradedWhenAllowed) {
  Vex2FileManager old;
  ASSERT_EQ(old.SaveToFile(path_.c_str()), 0);
  Bytes bytes = ReadBytes(path_);
  const Bytes block = ToBytes(std::string("RAWa\0\0\0\x04\0\x01\0\0", 12));
  bytes.insert(bytes.end(), block.begin(), block.end());
  WriteBytes(path_, bytes);
  EXPECT_THAT(ErrorOf([&] { DocumentEditor{path_}; }).what(),
              HasSubstr("set upgradeBlocks to make it version 2"));
  DocumentEditor(path_, {.upgradeBlocks = true}).Save();
  EXPECT_EQ(RunReader(path_).Blocks().front().version, 2);
}

TEST_F(DocumentEditorTest, UnknownRecordIsDroppedOnlyWhenAllowed) {
  Vex2FileManager empty;
  ASSERT_EQ(empty.SaveToFile(path_.c_str()), 0);
  Bytes bytes = ReadBytes(path_);
  const Bytes record = ToBytes(std::string("Zzzz\0\0\0\x02xx", 10));
  bytes.insert(bytes.end(), record.begin(), record.end());
  WriteBytes(path_, bytes);
  EXPECT_THAT(ErrorOf([&] { DocumentEditor{path_}; }).what(),
              HasSubstr("set dropUnknown to accept that"));
  EXPECT_NO_THROW(DocumentEditor(path_, {.dropUnknown = true}));
}

TEST_F(DocumentEditorTest, RefusesDocumentReadInPart) {
  const Bytes whole = ReadBytes(path_);
  const auto refusal = [&](std::size_t size) -> std::string {
    WriteBytes(path_, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    return ErrorOf([&] { DocumentEditor{path_}; }).what();
  };
  EXPECT_THAT(refusal(whole.size() - 10), HasSubstr("it cannot be read whole, so it is not saved"));
  EXPECT_THAT(refusal(500), HasSubstr("the header is cut short: 500 of 1024 bytes are there"));
}

TEST_F(DocumentEditorTest, RefusesHeaderThatCannotBeSaved) {
  constexpr int kRows = 300;  // more rows than the header has room for
  WriteBytes(path_, StoredHeader(0, kRows));
  EXPECT_TRUE(RunReader(path_).IsWhole());
  EXPECT_THAT(ErrorOf([&] { DocumentEditor{path_}; }).what(),
              HasSubstr("a plate of 300 rows does not fit into a header that is saved"));
}

class StudyEditorTest : public DocumentEditorTest {
 protected:
  void SetUp() override {
    DocumentEditorTest::SetUp();
    Vex2FileManager study;
    Vex2HeaderData header = study.GetHeaderData();
    std::copy_n("RQSt", 4, header.assayCode);
    study.SetHeaderData(header);
    Vex2FileManager plate;
    ASSERT_EQ(plate.ReadFromFile(path_.c_str()), 0);
    ASSERT_TRUE(study.AddRQPlate(&plate, "Mar 05, 2003 02:07 PM"));
    ASSERT_EQ(study.SaveToFile(study_.c_str()), 0);
  }

  const std::string study_ = folder_ / "study.vex";
};

TEST_F(StudyEditorTest, PlateIsChangedInItsStudy) {
  DocumentEditor editor(study_);
  EXPECT_THAT(editor.PlateNames(), ElementsAre("run"));
  editor.Plate("run").Well("A1").sample = "one";
  editor.Plate("run").Set("comment", std::string("within"));
  editor.Set("calibrator", std::string("liver"));
  editor.Save();
  const RunReader study(study_);
  EXPECT_TRUE(study.IsWhole());
  EXPECT_EQ(study.Plate("run").Plate().Find("A1")->sample, "one");
  EXPECT_THAT(study.Settings(), Contains(lab::SettingValue{"calibrator", std::string("liver")}));
  EXPECT_EQ(study.Plate("run").Readings().FrameCount(), 2U);
  EXPECT_EQ(ErrorOf([&] { editor.Plate("none"); }).Code(), ErrorCode::kNoSuchPlate);
}

TEST_F(StudyEditorTest, StudyItselfHoldsNoWells) {
  DocumentEditor editor(study_);
  const lab::Error error = ErrorOf([&] { editor.Set("comment", std::string("x")); });
  EXPECT_EQ(error.Code(), ErrorCode::kInvalidValue);
  EXPECT_THAT(error.what(), HasSubstr("a study keeps no comment of its own; set it in a plate"));
  editor.RequiredDyes() = {"VIC"};
  EXPECT_THAT(ErrorOf([&] { editor.Save(); }).what(),
              HasSubstr("it is a study: change its plates instead"));
}

}  // namespace
}  // namespace vex2::test
