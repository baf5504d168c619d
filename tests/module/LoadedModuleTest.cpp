// Tests the module loader with real libraries.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CWnd.h"
#include "vex2/framework/ExtensionModule.h"
#include "vex2/framework/LoadedModule.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;

const std::string kGood = VEX2_TEST_MODULES "/Good.so";

bool isInMemory(const std::string& library) {
  void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

class LoadedModuleTest : public TempFolderTest {
 protected:
  void TearDown() override { EXPECT_TRUE(RegisteredModules().empty()); }

  // Returns the reason why `path` cannot be loaded. Checks that nothing stays registered.
  std::string refusal(const std::string& path) {
    LoadedModule module;
    std::string error;
    EXPECT_FALSE(module.Load(path, error));
    EXPECT_FALSE(module.IsLoaded());
    EXPECT_EQ(error.find('\n'), std::string::npos);
    return error;
  }
};

TEST_F(LoadedModuleTest, ClassesOfALoadedModuleAreFoundByName) {
  LoadedModule module;
  std::string error;
  ASSERT_TRUE(module.Load(kGood, error)) << error;
  EXPECT_TRUE(module.IsLoaded());
  const CRuntimeClass* const record = FindRuntimeClass("GoodWindow");
  ASSERT_NE(record, nullptr);
  const auto window = record->CreateObject();
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->IsKindOf(CWnd::ClassRecord()));
}

TEST_F(LoadedModuleTest, UnloadingUnregistersAndClosesTheLibrary) {
  LoadedModule module;
  std::string error;
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(module.Load(kGood, error)) << error;
    EXPECT_TRUE(isInMemory(kGood));
    module.Unload();
    EXPECT_FALSE(module.IsLoaded());
    EXPECT_EQ(FindRuntimeClass("GoodWindow"), nullptr);
    EXPECT_FALSE(isInMemory(kGood));
  }
  module.Unload();
}

TEST_F(LoadedModuleTest, EndsWithTheObjectThatHoldsIt) {
  std::string error;
  {
    LoadedModule first;
    ASSERT_TRUE(first.Load(kGood, error)) << error;
    LoadedModule second(std::move(first));
    LoadedModule third;
    third = std::move(second);
    EXPECT_TRUE(third.IsLoaded());
    EXPECT_EQ(RegisteredModules().size(), 1U);
  }
  EXPECT_FALSE(isInMemory(kGood));
}

TEST_F(LoadedModuleTest, LoadingTwiceIsRefusedAndLeavesTheFirst) {
  LoadedModule first;
  std::string error;
  ASSERT_TRUE(first.Load(kGood, error)) << error;
  EXPECT_THAT(refusal(kGood), HasSubstr("registered already"));
  EXPECT_EQ(RegisteredModules().size(), 1U);
  EXPECT_NE(FindRuntimeClass("GoodWindow"), nullptr);
}

TEST_F(LoadedModuleTest, LoadingAgainThroughTheSameObjectReloads) {
  LoadedModule module;
  std::string error;
  ASSERT_TRUE(module.Load(kGood, error)) << error;
  ASSERT_TRUE(module.Load(kGood, error)) << error;
  EXPECT_FALSE(module.Load("absent.so", error));
  EXPECT_FALSE(module.IsLoaded());
}

TEST_F(LoadedModuleTest, AModuleWhoseNameIsTakenIsClosedAgain) {
  const ExtensionModule namesake{"good", {}};
  ASSERT_TRUE(RegisterModule(namesake));
  EXPECT_THAT(refusal(kGood), HasSubstr(kGood));
  EXPECT_FALSE(isInMemory(kGood));
  EXPECT_EQ(FindRuntimeClass("GoodWindow"), nullptr);
  UnregisterModule(namesake);
}

TEST_F(LoadedModuleTest, WhatIsNoModuleIsRefusedWithAReason) {
  EXPECT_THAT(refusal(""), HasSubstr("no module"));
  EXPECT_THAT(refusal(folder_ / "absent.so"), HasSubstr("absent.so"));
  EXPECT_THAT(refusal(folder_.Path().string()), HasSubstr(folder_.Path().string()));
  WriteBytes(folder_ / "text.so", ToBytes("no library at all"));
  EXPECT_THAT(refusal(folder_ / "text.so"), HasSubstr("text.so"));
  EXPECT_THAT(refusal(VEX2_TEST_MODULES "/NoEntry.so"), HasSubstr("vex2ModuleLoad"));
  EXPECT_FALSE(isInMemory(VEX2_TEST_MODULES "/NoEntry.so"));
  EXPECT_THAT(refusal(VEX2_TEST_MODULES "/NoUnload.so"), HasSubstr("vex2ModuleUnload"));
}

}  // namespace
}  // namespace vex2::test
