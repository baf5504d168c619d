#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include "vex2/framework/ExtensionModule.h"

namespace vex2::test {
namespace {

constexpr CRuntimeClass kReader{"Reader", 8, nullptr, nullptr};
constexpr CRuntimeClass kWriter{"Writer", 8, nullptr, nullptr};
constexpr CRuntimeClass kOtherReader{"Reader", 8, nullptr, nullptr};
constexpr CRuntimeClass kPlotter{"Plotter", 8, nullptr, nullptr};

constexpr std::array kFileClasses = {&kReader, &kWriter};
constexpr std::array kPlotClasses = {&kPlotter};
constexpr std::array kClashingClasses = {&kPlotter, &kOtherReader};
constexpr std::array kTwinClasses = {&kReader, &kOtherReader};
constexpr std::array<const CRuntimeClass*, 2> kNullClasses = {&kPlotter, nullptr};

constexpr ExtensionModule kFiles{"files", kFileClasses};
constexpr ExtensionModule kPlots{"plots", kPlotClasses};

// Checks after every test that no module is registered.
class ExtensionModuleTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(RegisterModule(kFiles)); }
  void TearDown() override {
    UnregisterModule(kFiles);
    EXPECT_TRUE(RegisteredModules().empty());
  }

  static void expectRefused(const ExtensionModule& module) {
    EXPECT_FALSE(RegisterModule(module));
    ASSERT_EQ(RegisteredModules().size(), 1U);
    EXPECT_STREQ(RegisteredModules()[0].name, "files");
    EXPECT_EQ(FindRuntimeClass("Plotter"), nullptr);
    EXPECT_EQ(FindRuntimeClass("Reader"), &kReader);
  }
};

TEST_F(ExtensionModuleTest, ClassesOfARegisteredModuleAreFoundByName) {
  EXPECT_EQ(FindRuntimeClass("Reader"), &kReader);
  EXPECT_EQ(FindRuntimeClass("Writer"), &kWriter);
  EXPECT_EQ(FindRuntimeClass("reader"), nullptr);
  EXPECT_EQ(FindRuntimeClass(""), nullptr);
}

TEST_F(ExtensionModuleTest, ModulesAreListedOldestFirst) {
  ASSERT_TRUE(RegisterModule(kPlots));
  const auto modules = RegisteredModules();
  ASSERT_EQ(modules.size(), 2U);
  EXPECT_STREQ(modules[0].name, "files");
  EXPECT_EQ(modules[0].classes.size(), 2U);
  EXPECT_STREQ(modules[1].name, "plots");
  UnregisterModule(kPlots);
}

TEST_F(ExtensionModuleTest, UnregisteredModuleIsGoneAndCanComeBack) {
  UnregisterModule(kFiles);
  EXPECT_EQ(FindRuntimeClass("Reader"), nullptr);
  UnregisterModule(kFiles);
  EXPECT_TRUE(RegisterModule(kFiles));
  EXPECT_EQ(FindRuntimeClass("Reader"), &kReader);
}

TEST_F(ExtensionModuleTest, AClashRefusesTheModuleAndLeavesNothingBehind) {
  expectRefused(kFiles);
  expectRefused({"files", kPlotClasses});
  expectRefused({"clash", kClashingClasses});
}

TEST_F(ExtensionModuleTest, AModuleThatIsNotWellFormedIsRefused) {
  expectRefused({nullptr, kPlotClasses});
  expectRefused({"", kPlotClasses});
  expectRefused({"null class", kNullClasses});
  UnregisterModule(kFiles);
  EXPECT_FALSE(RegisterModule({"twins", kTwinClasses}));
  ASSERT_TRUE(RegisterModule(kFiles));
}

TEST_F(ExtensionModuleTest, UnregisteringARefusedOneLeavesItsNamesake) {
  const ExtensionModule namesake{"files", kPlotClasses};
  EXPECT_FALSE(RegisterModule(namesake));
  UnregisterModule(namesake);
  EXPECT_EQ(FindRuntimeClass("Reader"), &kReader);
}

TEST_F(ExtensionModuleTest, RegisteringFromManyThreadsTakesEachOnce) {
  std::atomic<int> taken = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      if (RegisterModule(kPlots)) ++taken;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(taken, 1);
  UnregisterModule(kPlots);
}

}  // namespace
}  // namespace vex2::test
