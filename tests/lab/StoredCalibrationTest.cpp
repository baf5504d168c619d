#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "lab/model/StoredCalibration.h"
#include "vex2/setup/CCalibrationComp.h"

namespace vex2::lab {
namespace {

CCalibrationComp& CalibrationIn(const Vex2FileManager& document) {
  return dynamic_cast<CCalibrationComp&>(*document.GetComponent(0));
}

TEST(StoreCalibration, KeepsTheReservedWordsOfThePartsThatItReplaces) {
  Vex2FileManager document;
  StoreCalibration(document, SimulatedCalibration());
  std::array<std::uint8_t, 48> ofDyes{};
  std::array<std::uint8_t, 48> ofBackground{};
  ofDyes.fill(7);
  ofBackground.fill(9);
  CalibrationIn(document).Find<CPureDyeComp>()->SetReserved(ofDyes);
  CalibrationIn(document).Find<CBackgroundComp>()->SetReserved(ofBackground);

  StoreCalibration(document, SimulatedCalibration());

  EXPECT_TRUE(
      std::ranges::equal(CalibrationIn(document).Find<CPureDyeComp>()->GetReserved(), ofDyes));
  EXPECT_TRUE(std::ranges::equal(CalibrationIn(document).Find<CBackgroundComp>()->GetReserved(),
                                 ofBackground));
}

}  // namespace
}  // namespace vex2::lab
