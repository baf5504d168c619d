// Tests the document library as a module of an application that links only the framework.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "vex2/framework/CFile.h"
#include "vex2/framework/ExtensionModule.h"
#include "vex2/framework/LoadedModule.h"

namespace vex2::test {
namespace {

const std::string kLibrary = VEX2_MODULE;

bool isInMemory() {
  void* const handle = dlopen(kLibrary.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

class LibraryAsModule : public testing::Test {
 protected:
  void SetUp() override { ASSERT_FALSE(isInMemory()); }
  void TearDown() override {
    EXPECT_TRUE(RegisteredModules().empty());
    EXPECT_FALSE(isInMemory());
  }

  // Expects that the library cannot be loaded after `first` was registered, and that only `first`
  // stays registered.
  static void expectRefused(const ExtensionModule& first) {
    ASSERT_TRUE(RegisterModule(first));
    LoadedModule library;
    std::string error;
    EXPECT_FALSE(library.Load(kLibrary, error));
    EXPECT_THAT(error, testing::HasSubstr("registered already"));
    EXPECT_FALSE(isInMemory());
    ASSERT_EQ(RegisteredModules().size(), 1U);
    EXPECT_STREQ(RegisteredModules()[0].name, first.name);
    UnregisterModule(first);
  }

  static void expectLoads() {
    LoadedModule library;
    std::string error;
    ASSERT_TRUE(library.Load(kLibrary, error)) << error;
    EXPECT_NE(FindRuntimeClass("Vex2FileManager"), nullptr);
  }
};

TEST_F(LibraryAsModule, RegistersItsTwoClasses) {
  LoadedModule library;
  std::string error;
  ASSERT_TRUE(library.Load(kLibrary, error)) << error;
  ASSERT_EQ(RegisteredModules().size(), 1U);
  EXPECT_STREQ(RegisteredModules()[0].name, "vex2");
  EXPECT_EQ(RegisteredModules()[0].classes.size(), 2U);

  const CRuntimeClass* const manager = FindRuntimeClass("Vex2FileManager");
  const CRuntimeClass* const plate = FindRuntimeClass("Vex2FileManagerComponent");
  ASSERT_NE(manager, nullptr);
  ASSERT_NE(plate, nullptr);
  EXPECT_EQ(manager->baseClass, CFile::ClassRecord());
  EXPECT_TRUE(plate->IsDerivedFrom(manager));
}

TEST_F(LibraryAsModule, ManagersAreMadeByName) {
  LoadedModule library;
  std::string error;
  ASSERT_TRUE(library.Load(kLibrary, error)) << error;
  for (const char* name : {"Vex2FileManager", "Vex2FileManagerComponent"}) {
    const auto object = FindRuntimeClass(name)->CreateObject();
    ASSERT_NE(object, nullptr) << name;
    EXPECT_STREQ(object->GetRuntimeClass()->name, name);
    EXPECT_TRUE(object->IsKindOf(CFile::ClassRecord()));
  }
}

TEST_F(LibraryAsModule, UnloadingTakesItsClassesOutAndItCanComeBack) {
  LoadedModule library;
  std::string error;
  ASSERT_TRUE(library.Load(kLibrary, error)) << error;
  library.Unload();
  EXPECT_EQ(FindRuntimeClass("Vex2FileManager"), nullptr);
  EXPECT_EQ(FindRuntimeClass("Vex2FileManagerComponent"), nullptr);
  EXPECT_FALSE(isInMemory());
  expectLoads();
}

TEST_F(LibraryAsModule, FailsToLoadWhereItsNameIsTaken) {
  expectRefused({"vex2", {}});
  expectLoads();
}

TEST_F(LibraryAsModule, FailsToLoadWhereAClassOfItIsTaken) {
  static constexpr CRuntimeClass kImpostor{"Vex2FileManagerComponent", 8, nullptr, nullptr};
  static constexpr std::array kClasses = {&kImpostor};
  expectRefused({"older", kClasses});
  EXPECT_EQ(FindRuntimeClass("Vex2FileManagerComponent"), nullptr);
  expectLoads();
}

TEST_F(LibraryAsModule, LoadingItTwiceIsRefusedAndKeepsTheFirst) {
  LoadedModule first;
  std::string error;
  ASSERT_TRUE(first.Load(kLibrary, error)) << error;
  LoadedModule second;
  EXPECT_FALSE(second.Load(kLibrary, error));
  EXPECT_NE(FindRuntimeClass("Vex2FileManager"), nullptr);
}

}  // namespace
}  // namespace vex2::test
