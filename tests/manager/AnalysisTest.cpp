#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "tests/support/Counted.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {
namespace {

using Matrix = Counted<IDAMCMatrix>;
using Reporter = Counted<IDAClippedMatrix>;
using Points = Counted<IDAMeltingPoints>;

class AnalysisTest : public testing::Test {
 protected:
  AnalysisTest() {
    EXPECT_EQ(study_->CreateAnalysisStorage(1), kWells);
    Vex2FileManager plate;
    plate.SetFilePath("C:\\runs\\plate.vex");
    EXPECT_TRUE(study_->AddRQPlate(&plate, ""));
  }
  ~AnalysisTest() override {
    study_.reset();
    EXPECT_EQ(living(), 0) << "all that was stored is destroyed with the document";
  }

  static int living() { return Matrix::living + Reporter::living + Points::living; }
  static void setPlateType(Vex2FileManager& document, const char (&code)[5]) {
    Vex2HeaderData header = document.GetHeaderData();
    std::copy_n(code, 4, header.plateTypeCode);
    document.SetHeaderData(header);
  }
  // Stores one result of every kind for the document itself and for its plate.
  void fill() {
    study_->SetMCDataAt(new Matrix, 1);
    study_->SetReporterAt(new Reporter, 2, false);
    study_->SetReporterAt(new Reporter, 2, true);
    study_->SetMeltingDataAt(new Points, 3);
    study_->SetMCDataAt(kPlate, new Matrix, 96);
    study_->SetReporterAt(kPlate, new Reporter, 1, false);
    study_->SetReporterAt(kPlate, new Reporter, 1, true);
  }

  static constexpr int kWells = 96;
  const CString kPlate = "plate";
  std::unique_ptr<Vex2FileManager> study_ = std::make_unique<Vex2FileManager>();
};

TEST_F(AnalysisTest, StoredResultsAreHandedOut) {
  auto* matrix = new Matrix;
  auto* reporter = new Reporter;
  auto* points = new Points;
  EXPECT_TRUE(study_->SetMCDataAt(matrix, 1));
  EXPECT_TRUE(study_->SetReporterAt(reporter, 96, true));
  EXPECT_TRUE(study_->SetMeltingDataAt(points, 5));

  IDAMCMatrix* gotMatrix = nullptr;
  IDAClippedMatrix* gotReporter = nullptr;
  IDAMeltingPoints* gotPoints = nullptr;
  EXPECT_TRUE(study_->GetMCDataAt(gotMatrix, 1));
  EXPECT_TRUE(study_->GetReporterAt(gotReporter, 96, true));
  EXPECT_TRUE(study_->GetMeltingDataAt(gotPoints, 5));
  EXPECT_EQ(gotMatrix, matrix);
  EXPECT_EQ(gotReporter, reporter);
  EXPECT_EQ(gotPoints, points);
  EXPECT_FALSE(study_->GetReporterAt(gotReporter, 96, false)) << "the first set has none";
  EXPECT_EQ(gotReporter, nullptr);
}

TEST_F(AnalysisTest, WellsOutsideThePlateHaveNothingAndTakeNothing) {
  Matrix matrix;
  Reporter reporter;
  Points points;
  for (const int well : {INT_MIN, -1, 0, kWells + 1, INT_MAX}) {
    IDAMCMatrix* gotMatrix = &matrix;
    IDAClippedMatrix* gotReporter = &reporter;
    IDAMeltingPoints* gotPoints = &points;
    EXPECT_FALSE(study_->GetMCDataAt(gotMatrix, well));
    EXPECT_FALSE(study_->GetReporterAt(kPlate, gotReporter, well, false));
    EXPECT_FALSE(study_->GetMeltingDataAt(gotPoints, well));
    EXPECT_EQ(gotMatrix, nullptr);
    EXPECT_EQ(gotReporter, nullptr);
    EXPECT_EQ(gotPoints, nullptr);
    EXPECT_FALSE(study_->SetMCDataAt(kPlate, &matrix, well));
    EXPECT_FALSE(study_->SetReporterAt(&reporter, well, true));
    EXPECT_FALSE(study_->SetMeltingDataAt(&points, well));
    EXPECT_FALSE(study_->RemoveReporterAt(well, true));
    EXPECT_FALSE(study_->RemoveReporterAt(kPlate, well, false));
    EXPECT_FALSE(study_->RemoveMeltingDataAt(well));
  }
}

TEST_F(AnalysisTest, SettingNullClearsAndDestroysNothing) {
  auto* matrix = new Matrix;
  study_->SetMCDataAt(matrix, 1);
  EXPECT_TRUE(study_->SetMCDataAt(static_cast<IDAMCMatrix*>(nullptr), 1));
  EXPECT_EQ(Matrix::living, 1);
  IDAMCMatrix* got = matrix;
  EXPECT_FALSE(study_->GetMCDataAt(got, 1));
  EXPECT_EQ(got, nullptr);
  delete matrix;
}

TEST_F(AnalysisTest, SettingOverAResultDestroysNothing) {
  const auto old = std::make_unique<Reporter>();
  study_->SetReporterAt(kPlate, old.get(), 1, false);
  study_->SetReporterAt(kPlate, new Reporter, 1, false);
  EXPECT_EQ(Reporter::living, 2);
}

TEST_F(AnalysisTest, RemovingAReporterLeavesTheOtherSet) {
  for (const bool set : {false, true}) {
    for (const bool other : {false, true}) {
      EXPECT_TRUE(study_->SetReporterAt(new Reporter, 1, other));
    }
    EXPECT_TRUE(study_->RemoveReporterAt(1, set));
    EXPECT_EQ(Reporter::living, 1);
    IDAClippedMatrix* left = nullptr;
    EXPECT_FALSE(study_->GetReporterAt(left, 1, set));
    EXPECT_TRUE(study_->GetReporterAt(left, 1, !set));
    EXPECT_FALSE(study_->RemoveReporterAt(1, set)) << "nothing is left to destroy";
    EXPECT_TRUE(study_->RemoveReporterAt(1, !set));
  }
}

TEST_F(AnalysisTest, NamedPlateHasResultsOfItsOwn) {
  fill();
  IDAMCMatrix* matrix = nullptr;
  EXPECT_TRUE(study_->GetMCDataAt(kPlate, matrix, 96));
  EXPECT_FALSE(study_->GetMCDataAt(kPlate, matrix, 1));
  EXPECT_TRUE(study_->RemoveReporterAt(kPlate, 1, true));
  IDAClippedMatrix* reporter = nullptr;
  EXPECT_TRUE(study_->GetReporterAt(kPlate, reporter, 1, false));
  EXPECT_TRUE(study_->GetReporterAt(reporter, 2, true));
}

TEST_F(AnalysisTest, UnknownPlateIsFalseAndLeavesTheArgument) {
  Matrix matrix;
  Reporter reporter;
  IDAMCMatrix* gotMatrix = &matrix;
  IDAClippedMatrix* gotReporter = &reporter;
  const CString unknown = "Plate";
  EXPECT_FALSE(study_->GetMCDataAt(unknown, gotMatrix, 1));
  EXPECT_FALSE(study_->GetMCDataAt("Plate", gotMatrix, 1));
  EXPECT_FALSE(study_->GetReporterAt(unknown, gotReporter, 1, false));
  EXPECT_EQ(gotMatrix, &matrix);
  EXPECT_EQ(gotReporter, &reporter);
  EXPECT_FALSE(study_->SetMCDataAt(unknown, &matrix, 1));
  EXPECT_FALSE(study_->SetReporterAt(unknown, &reporter, 1, false));
  EXPECT_FALSE(study_->SetReporterAt("Plate", &reporter, 1, false));
  EXPECT_FALSE(study_->RemoveReporterAt(unknown, 1, false));
}

TEST_F(AnalysisTest, OverloadsForCharactersWorkAndAnswerFalseButForOne) {
  auto* matrix = new Matrix;
  auto* reporter = new Reporter;
  EXPECT_FALSE(study_->SetMCDataAt("plate", matrix, 1));
  EXPECT_TRUE(study_->SetReporterAt("plate", reporter, 1, true));
  IDAMCMatrix* gotMatrix = nullptr;
  IDAClippedMatrix* gotReporter = nullptr;
  EXPECT_FALSE(study_->GetMCDataAt("plate", gotMatrix, 1));
  EXPECT_FALSE(study_->GetReporterAt("plate", gotReporter, 1, true));
  EXPECT_EQ(gotMatrix, matrix);
  EXPECT_EQ(gotReporter, reporter);
  EXPECT_FALSE(study_->RemoveReporterAt("plate", 1, true));
  EXPECT_EQ(Reporter::living, 0) << "removed all the same";
}

TEST_F(AnalysisTest, NullNameMeansTheDocumentItself) {
  const char* const none = nullptr;
  auto* matrix = new Matrix;
  auto* reporter = new Reporter;
  EXPECT_FALSE(study_->SetMCDataAt(none, matrix, 1));
  EXPECT_TRUE(study_->SetReporterAt(none, reporter, 1, false));
  IDAMCMatrix* gotMatrix = nullptr;
  IDAClippedMatrix* gotReporter = nullptr;
  EXPECT_TRUE(study_->GetMCDataAt(gotMatrix, 1));
  EXPECT_EQ(gotMatrix, matrix);
  gotMatrix = nullptr;
  EXPECT_FALSE(study_->GetMCDataAt(none, gotMatrix, 1));
  EXPECT_EQ(gotMatrix, matrix);
  EXPECT_FALSE(study_->GetReporterAt(none, gotReporter, 1, false));
  EXPECT_EQ(gotReporter, reporter);
  EXPECT_FALSE(study_->RemoveReporterAt(none, 1, false));
  EXPECT_EQ(Reporter::living, 0);
}

TEST_F(AnalysisTest, CreatingStorageAgainDestroysTheDocumentsOwnResults) {
  fill();
  EXPECT_EQ(study_->CreateAnalysisStorage(1), kWells);
  EXPECT_EQ(living(), 3) << "the plate's stay";
  IDAMCMatrix* matrix = nullptr;
  EXPECT_FALSE(study_->GetMCDataAt(matrix, 1));
  EXPECT_TRUE(study_->GetMCDataAt(kPlate, matrix, 96));
}

TEST_F(AnalysisTest, OtherModesDestroyAllStorage) {
  fill();
  EXPECT_EQ(study_->CreateAnalysisStorage(0), kWells);
  EXPECT_EQ(living(), 0);
  IDAMeltingPoints* points = nullptr;
  EXPECT_FALSE(study_->GetMeltingDataAt(points, 3));
  EXPECT_EQ(points, nullptr);
  Points none;
  EXPECT_FALSE(study_->SetMeltingDataAt(&none, 3));
}

TEST_F(AnalysisTest, PlateWithoutWellsGetsNoStorageAndKeepsWhatThereIs) {
  fill();
  setPlateType(*study_, "none");
  EXPECT_EQ(study_->CreateAnalysisStorage(1), 0);
  EXPECT_EQ(study_->CreateAnalysisStorage(0), 0);
  EXPECT_EQ(living(), 7);
}

TEST_F(AnalysisTest, StorageMadeForASmallerPlateStoresNothingPastItButSaysTrue) {
  setPlateType(*study_, "c3C ");
  Matrix matrix;
  EXPECT_TRUE(study_->SetMCDataAt(&matrix, 384));
  IDAMCMatrix* got = nullptr;
  EXPECT_FALSE(study_->GetMCDataAt(got, 384));
  EXPECT_FALSE(study_->SetMCDataAt(&matrix, 385));
}

TEST_F(AnalysisTest, PlateThatBecameSmallerStillGivesAndRemoves) {
  study_->CreateAnalysisStorage(1);
  study_->SetReporterAt(new Reporter, 96, false);
  setPlateType(*study_, "none");
  IDAClippedMatrix* got = nullptr;
  EXPECT_TRUE(study_->GetReporterAt(got, 96, false));
  EXPECT_TRUE(study_->RemoveReporterAt(96, false));
  EXPECT_EQ(Reporter::living, 0);
  EXPECT_FALSE(study_->GetReporterAt(got, 96, false)) << "and the slot is empty";
}

TEST_F(AnalysisTest, RemovedPlateTakesItsResultsWithIt) {
  fill();
  EXPECT_TRUE(study_->RemoveRQPlate(kPlate));
  EXPECT_EQ(living(), 4);
  IDAClippedMatrix* got = nullptr;
  EXPECT_FALSE(study_->GetReporterAt(kPlate, got, 1, false));
}

TEST_F(AnalysisTest, SyncKeepsWhatPlatesHaveAndDestroysTheRest) {
  fill();
  study_->SyncPlatesWithAnalysisStorageMap();
  EXPECT_EQ(living(), 7);
  IDAMCMatrix* matrix = nullptr;
  EXPECT_TRUE(study_->GetMCDataAt(kPlate, matrix, 96));
  study_->InitMultiplate();
  study_->SyncPlatesWithAnalysisStorageMap();
  EXPECT_EQ(living(), 4);
  Matrix none;
  EXPECT_FALSE(study_->SetMCDataAt(kPlate, &none, 1));
}

TEST_F(AnalysisTest, SyncMakesStorageForPlatesThatHaveNone) {
  Vex2FileManager copy(*study_);
  Matrix none;
  EXPECT_FALSE(copy.SetMCDataAt(kPlate, &none, 1));
  copy.SyncPlatesWithAnalysisStorageMap();
  EXPECT_TRUE(copy.SetMCDataAt(kPlate, new Matrix, 96));
}

TEST_F(AnalysisTest, ResetKeepsTheDocumentsOwnResults) {
  fill();
  study_->Reset();
  EXPECT_EQ(living(), 4);
  IDAMCMatrix* matrix = nullptr;
  EXPECT_TRUE(study_->GetMCDataAt(matrix, 1));
}

TEST_F(AnalysisTest, CopiesHaveNoResultsAndAssignmentDestroysThem) {
  fill();
  Vex2FileManager copy(*study_);
  IDAMCMatrix* matrix = nullptr;
  EXPECT_FALSE(copy.GetMCDataAt(matrix, 1));
  EXPECT_EQ(copy.CreateAnalysisStorage(1), kWells);
  copy.SetMCDataAt(new Matrix, 1);
  EXPECT_EQ(living(), 8);
  copy = *study_;
  EXPECT_EQ(living(), 7);
  EXPECT_FALSE(copy.GetMCDataAt(matrix, 1));
}

}  // namespace
}  // namespace vex2::test
