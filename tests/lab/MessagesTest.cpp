// Tests that the errors of `vex2::lab` are whole sentences that use the names of its own interface.
#include <functional>
#include <vector>

#include "lab/check/Check.h"
#include "lab/model/DocumentEditor.h"
#include "lab/model/RunReader.h"
#include "lab/record/RunRecorder.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::test {
namespace {

using lab::ErrorRemedy;

class LabMessages : public TempFolderTest {
 protected:
  static lab::RecordingPlan planned() {
    lab::RecordingPlan plan;
    plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}},
                        {.number = 2, .name = {}, .sample = "B", .targets = {}}};
    return plan;
  }

  // Returns the error of a recorder for the plan after `change`.
  std::string refusal(const std::function<void(lab::RecordingPlan&)>& change) const {
    lab::RecordingPlan plan = planned();
    change(plan);
    return ErrorOf([&] { lab::RunRecorder(path_, plan); }).Message();
  }

  const std::string path_ = folder_ / "run.vex";
};

TEST_F(LabMessages, PlanSaysWhichWellOrNameCannotBe) {
  EXPECT_EQ(refusal([](auto& plan) { plan.plate.wells.clear(); }), "the plan has no wells");
  EXPECT_EQ(refusal([](auto& plan) { plan.wells = {97}; }), "the plate has no well 97");
  EXPECT_EQ(refusal([](auto& plan) {
              plan.wells = {2, 1};
            }),
            "the wells of the plan are not ascending");
  EXPECT_EQ(refusal([](auto& plan) { plan.plate.rows = 0; }),
            "a plate has 1 to 238 rows and 1 to 32 columns, not 0 and 12");
  EXPECT_EQ(refusal([](auto& plan) { plan.channels = {"a,b"}; }),
            "the channel name 'a,b' must be unique and not empty, and must not contain a comma or "
            "line end");
  EXPECT_EQ(refusal([](auto& plan) {
              for (char name = 'a'; name <= 'q'; ++name) plan.channels.emplace_back(1, name);
            }),
            "a well has at most 16 channels");
  EXPECT_EQ(refusal([](auto& plan) {
              plan.settings = {{"log", std::string("x")}};
            }),
            "the setting log cannot be planned: the recorder writes it");
  EXPECT_EQ(refusal([](auto& plan) { plan.plate.wells[0].sample = "\xce\xb1"; }),
            "the sample of well A1 '\xce\xb1' cannot be stored: documents hold characters of "
            "Latin-1");
}

TEST_F(LabMessages, PlanSaysWhichTextOfAWellCannotBeStored) {
  const std::string alpha = "\xce\xb1";
  const std::string end = alpha + "' cannot be stored: documents hold characters of Latin-1";
  const auto refusalOf = [&](const lab::Target& target) {
    return refusal([&](auto& plan) { plan.plate.wells[0].targets = {target}; });
  };
  EXPECT_EQ(refusalOf({alpha, "", {}, ""}), "the detector of well A1 '" + end);
  EXPECT_EQ(refusalOf({"MYC", alpha, {}, ""}), "the task of well A1 '" + end);
  EXPECT_EQ(refusalOf({"MYC", "UNKN", {}, alpha}), "the reporter dye of well A1 '" + end);
}

TEST_F(LabMessages, EditorSaysWhatOfTheCalibrationCannotBe) {
  Record(SmallRun(2, 0), path_);
  lab::DocumentEditor editor(path_);
  editor.Calibration() = lab::SimulatedCalibration();
  editor.Save();
  editor.Calibration().pureDyes->entries.front().name = "\xce\xb1";
  EXPECT_EQ(ErrorOf([&] { editor.Save(); }).Message(),
            "the name of a spectrum is not a text of 255 Latin-1 characters at most");
  editor.Calibration().pureDyes.reset();
  EXPECT_EQ(ErrorOf([&] { editor.Save(); }).Message(),
            "a part of the calibration can be replaced, but not removed");
}

TEST_F(LabMessages, RecorderSaysWhatTheFrameLacks) {
  lab::RunRecorder recorder(path_, planned());
  const lab::RawRecord record{.well = 1, .leading = {1}, .readings = {}};
  const std::vector<lab::RawRecord> twice = {record, record};
  EXPECT_EQ(ErrorOf([&] { recorder.Append(twice); }).Message(),
            "frame 0 has two readings of well A1");
  const std::vector<lab::RawRecord> unfilled = {{.well = 1, .leading = {}, .readings = {}},
                                                {.well = 2, .leading = {1}, .readings = {}}};
  EXPECT_EQ(ErrorOf([&] { recorder.Append(unfilled); }).Message(),
            "frame 0 is incomplete: the record of well A1 is not filled (its first value is 0)");
  EXPECT_EQ(ErrorOf([&] { recorder.Append(lab::MeasuredFrame()); }).Message(),
            "cannot append frame 0: the plan has no scale, so frames are given as raw records");
  EXPECT_EQ(ErrorOf([&] {
              lab::RunRecorder(folder_ / "both.vex", planned(), {.resume = true, .replace = true});
            }).Message(),
            "cannot be recorded: resume and replace exclude each other");
}

TEST_F(LabMessages, RemedyIsApartFromTheProblem) {
  { const lab::RunRecorder recorder(path_, planned()); }
  const lab::Error exists = ErrorOf([&] { lab::RunRecorder(path_, planned()); });
  EXPECT_EQ(exists.Problem(), "already exists");
  EXPECT_EQ(exists.Remedy(), ErrorRemedy::kResumeOrReplace);
  EXPECT_EQ(exists.Message(),
            "already exists; set resume to continue it or replace to overwrite it");
  EXPECT_EQ(exists.what(), path_ + ": " + exists.Message());
  const lab::Error running = ErrorOf([&] { lab::DocumentEditor{path_}; });
  EXPECT_EQ(running.Remedy(), ErrorRemedy::kEndRun);
  EXPECT_EQ(running.Message(),
            "its run is in progress, and saving would break it; let the recorder finish, or call "
            "SetRunStatus if it never will");
}

TEST_F(LabMessages, ReaderAndEditorSayWhatIsNotThere) {
  Record(SmallRun(2, 0), path_);
  const lab::RunReader run(path_);
  EXPECT_EQ(ErrorOf([&] { run.Frame(9); }).Message(),
            "it has no frame 9; the block RAWa has 2 frames");
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(run.Readings().Values(0, 96)); }).Message(),
            "no well has the index 96; there are 96");
  lab::DocumentEditor editor(path_);
  EXPECT_EQ(ErrorOf([&] { editor.Well("Z1"); }).Message(), "its plate has no well 'Z1'");
  editor.Wells().push_back({.number = 97, .name = {}, .sample = "A", .targets = {}});
  EXPECT_EQ(ErrorOf([&] { editor.Save(); }).Message(), "the plate has no well 97");
}

TEST_F(LabMessages, FindingsNameOperationsAsTheCallerDoes) {
  { const lab::RunRecorder recorder(path_, planned()); }
  lab::SetRunStatus(path_, "OVER");
  const auto adviceOf = [&](const lab::OperationNames& names) {
    for (const lab::Finding& finding : lab::Check(path_, names).list) {
      if (finding.offset == HeaderLayout::kStatusAt) return finding.remedy;
    }
    return std::string();
  };
  EXPECT_EQ(adviceOf({}), "SetRunStatus sets it when the run is over");
  lab::OperationNames names;
  names.setStatus = "the button End";
  EXPECT_EQ(adviceOf(names), "the button End sets it when the run is over");
}

}  // namespace
}  // namespace vex2::test
