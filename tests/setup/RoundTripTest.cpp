// Sample documents that hold a plate setup, detectors, dyes or a calibration are saved byte for
// byte as they should be, and so are documents whose records went through hosts' hands.
#include <gtest/gtest.h>

#include "tests/support/RunDocument.h"
#include "tests/support/SampleData.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

class RoundTrip : public SampleDataTest {
 protected:
  static std::string documentOf(const std::string& name) {
    return Sample("golden/" + name + ".vex").string();
  }
  Bytes saved(Vex2FileManager& manager) {
    const std::string copy = folder_ / "copy.vex";
    EXPECT_EQ(manager.SaveToFile(copy.c_str()), kSuccess);
    return ReadBytes(copy);
  }

  TempFolder folder_;
};

TEST_F(RoundTrip, GivesTheExpectedBytes) {
  for (const char* name : {"06-plate-setup", "07-detectors", "08-calibration", "09-required-dyes",
                           "10-every-kind", "12-study", "13-whole-document", "14-odd-records"}) {
    Vex2FileManager manager;
    ASSERT_EQ(manager.ReadFromFile(documentOf(name).c_str()), kSuccess);
    const Bytes expected = ReadBytes(Sample("golden/" + std::string(name) + ".roundtrip.vex"));
    EXPECT_EQ(FirstDifference(saved(manager), expected), "") << name;
    Vex2FileManager copy(manager);
    EXPECT_EQ(FirstDifference(saved(copy), expected), "") << name;
  }
}

TEST_F(RoundTrip, ByWayOfTheRecordsLosesNothingThatHostsAreGiven) {
  Vex2FileManager manager;
  ASSERT_EQ(manager.ReadFromFile(documentOf("13-whole-document").c_str()), kSuccess);
  const auto through = [](Vex2FileManager& document) {
    Vex2PlateSetup setup;
    EXPECT_EQ(document.GetPlateSetupInfo(&setup), kSuccess);
    EXPECT_EQ(document.ReplacePlateSetup(&setup), kSuccess);
    Vex2Detector* detectors = nullptr;
    int count = 0;
    EXPECT_EQ(document.GetNumberOfDetectors(count), kSuccess);
    EXPECT_EQ(document.GetDetectorListInfo(detectors), kSuccess);
    EXPECT_EQ(document.UpdateDetectorList(detectors, count), kSuccess);
    delete[] detectors;
    CString* dyes = nullptr;
    EXPECT_EQ(document.GetNumberOfRequiredDyes(count), kSuccess);
    EXPECT_EQ(document.GetRequiredDyeListInfo(dyes), kSuccess);
    EXPECT_EQ(document.UpdateRequiredDyeList(dyes, count), kSuccess);
    delete[] dyes;
    Vex2PureDye* pureDye = nullptr;
    Vex2BGC* background = nullptr;
    int has[2] = {};
    EXPECT_EQ(document.GetCalibrationInfo(pureDye, &has[0], background, &has[1]), kSuccess);
    EXPECT_EQ(document.ReplaceCalibComponent(pureDye, background), kSuccess);
    delete pureDye;
    delete background;
  };
  through(manager);
  const Bytes once = saved(manager);
  EXPECT_GT(once.size(), 30000U);
  through(manager);
  EXPECT_EQ(FirstDifference(saved(manager), once), "");
}

}  // namespace
}  // namespace vex2::test
