// Tests the document library as a module of an application that links it.
#include <gtest/gtest.h>

#include <string>

#include "vex2/framework/CObject.h"
#include "vex2/framework/ExtensionModule.h"
#include "vex2/framework/LoadedModule.h"

namespace vex2::test {
namespace {

void expectRegisteredOnce() {
  ASSERT_EQ(RegisteredModules().size(), 1U);
  EXPECT_STREQ(RegisteredModules()[0].name, "vex2");
  EXPECT_NE(FindRuntimeClass("Vex2FileManagerComponent"), nullptr);
  const CRuntimeClass* const manager = FindRuntimeClass("Vex2FileManager");
  ASSERT_NE(manager, nullptr);
  EXPECT_NE(manager->CreateObject(), nullptr);
}

TEST(LinkedLibrary, IsRegisteredWithoutBeingLoadedAsAModule) {
  expectRegisteredOnce();
}

TEST(LinkedLibrary, IsRegisteredOnceWhenItIsLoadedAsWell) {
  std::string error;
  for (int round = 0; round < 2; ++round) {
    LoadedModule module;
    ASSERT_TRUE(module.Load(VEX2_MODULE, error)) << error;
    expectRegisteredOnce();
    module.Unload();
    expectRegisteredOnce();
  }
}

TEST(LinkedLibrary, IsHeldByOneLoadedModuleAtATime) {
  std::string error;
  LoadedModule first;
  ASSERT_TRUE(first.Load(VEX2_MODULE, error)) << error;
  LoadedModule second;
  EXPECT_FALSE(second.Load(VEX2_MODULE, error));
  EXPECT_NE(error.find("registered already"), std::string::npos) << error;
  expectRegisteredOnce();
  first.Unload();
  EXPECT_TRUE(second.Load(VEX2_MODULE, error)) << error;
}

}  // namespace
}  // namespace vex2::test
