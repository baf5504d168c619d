// Makes each allocation of each public operation fail. No exception may leave the operation,
// nothing may leak, no file may stay open, the header must keep its usage table, and the operation
// must be repeatable.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "tests/memory/AllocationSweep.h"
#include "tests/memory/Operations.h"
#include "tests/memory/PublicOperations.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

// A host whose file chooser returns a path that is too long for the internal buffer of a string.
class ChoosingHost : public SilentHost {
 public:
  explicit ChoosingHost(std::string path) : path_(std::move(path)) {}
  bool ChooseFile(const ChooserRequest&, ChooserResult& result) override {
    result.path = path_;
    result.title = path_.substr(path_.rfind('/') + 1);
    return true;
  }

 private:
  std::string path_;
};

std::vector<std::string> namesOf(const std::vector<Operation>& operations) {
  std::vector<std::string> names;
  for (const auto& operation : operations) names.emplace_back(operation.name);
  return names;
}

// The operations that a header declares, without constructors and destructor.
std::vector<std::string> declaredIn(const std::string& header, const std::string& className) {
  std::vector<std::string> names = PublicOperations(header);
  std::erase_if(names, [&](const std::string& name) {
    return name.starts_with(className + "(") || name == "~" + className || name == className;
  });
  return names;
}

class EveryOperation : public TempFolderTest {
 protected:
  EveryOperation() {
    OpenedManager warmUp;  // objects that are made only once must not count as leaked
    for (const auto* operations : {&ManagerOperations(), &PlateOperations()}) {
      for (const Operation& operation : *operations) {
        materials_.Fill(warmUp);
        operation.run(warmUp, materials_);
      }
    }
    materials_.part.reset();
  }

  void sweep(const std::vector<Operation>& operations) const {
    for (const Operation& operation : operations) {
      SCOPED_TRACE(operation.name);
      const AllocationSweep sweep{[this](OpenedManager& document) { materials_.Fill(document); },
                                  [&](OpenedManager& document) {
                                    EXPECT_NO_THROW(operation.run(document, materials_));
                                    return 0;
                                  },
                                  [&](OpenedManager& document, int) {
                                    EXPECT_TRUE(hasItsTable(document.GetHeaderData()));
                                    EXPECT_TRUE(hasItsTable(materials_.part->GetHeaderData()));
                                    EXPECT_TRUE(hasItsTable(materials_.scratch));
                                    EXPECT_NO_THROW(operation.run(document, materials_));
                                    materials_.part.reset();
                                  }};
      sweep.Run();
      if (HasFailure()) return;
    }
  }
  static bool hasItsTable(const Vex2HeaderData& header) {
    return (header.rows > 0) == (header.usage != nullptr);
  }

  const std::string target_ = folder_ / "another document with a name of some length.vex";
  ChoosingHost host_{target_};
  Materials materials_{folder_ / "a document with a name of some length.vex", target_};
};

TEST_F(EveryOperation, OfTheManagersHeaderIsListed) {
  EXPECT_THAT(namesOf(ManagerOperations()),
              testing::UnorderedElementsAreArray(
                  declaredIn("vex2/manager/Vex2FileManager.h", "Vex2FileManager")));
}

TEST_F(EveryOperation, OfThePlatesHeaderIsListed) {
  EXPECT_THAT(namesOf(PlateOperations()),
              testing::UnorderedElementsAreArray(declaredIn(
                  "vex2/manager/Vex2FileManagerComponent.h", "Vex2FileManagerComponent")));
}

TEST_F(EveryOperation, OfAManagerLetsNoExceptionOut) {
  sweep(ManagerOperations());
}

TEST_F(EveryOperation, OfAPlateLetsNoExceptionOut) {
  sweep(PlateOperations());
}

TEST_F(EveryOperation, KeepsTheOldUsageTableWhereTheNewOneFindsNoMemory) {
  OpenedManager document;
  materials_.Fill(document);
  const auto keepsTable = [&](auto change) {
    const Vex2HeaderData before = document.GetHeaderData();
    const FailingMemory memory(0);
    change();
    const Vex2HeaderData& after = document.GetHeaderData();
    return FailingMemory::HasFailed() && after.rows == before.rows &&
           std::equal(before.usage, before.usage + before.rows, after.usage);
  };
  const bool usage[] = {false, true};
  Vex2HeaderData other;
  other.SetRows(3);
  EXPECT_TRUE(keepsTable([&] { EXPECT_FALSE(document.SetUsageArray(usage, 1, 2)); }));
  EXPECT_TRUE(keepsTable([&] { document.SetHeaderData(other); }));
  EXPECT_TRUE(
      keepsTable([&] { EXPECT_EQ(document.SaveHeader(target_.c_str(), other), kWriteFailed); }));
}

TEST_F(EveryOperation, OfConstructionThrowsAndLeaksNothing) {
  for (int allocation = 0;; ++allocation) {
    const long before = BlocksInUse();
    const FailingMemory memory(allocation);
    bool threw = false;
    try {
      const Vex2FileManager copy(materials_.plate);
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    EXPECT_EQ(BlocksInUse(), before);
    ASSERT_EQ(threw, FailingMemory::HasFailed());
    if (!threw) break;
  }
}

}  // namespace
}  // namespace vex2::test
