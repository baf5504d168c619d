// Tests that a study that is saved, split into plates and built again holds the same plates.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/SampleData.h"
#include "tests/support/StudyDocument.h"

namespace vex2::test {
namespace {

constexpr const char* kDate = "Mar 05, 2003 02:07 PM";

class RebuiltStudy : public TempFolderTest {
 protected:
  // The paths of all test documents that are not studies and that a study can keep completely. The
  // others hold data blocks of version 1 or records that are cut off, which cannot be read back;
  // unknown records, which copies leave out; or an end record in the middle of a plate, which ends
  // the plate.
  std::vector<std::string> plateFiles() {
    std::vector<std::filesystem::path> files = SampleFiles("golden", ".vex");
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("tests/data"))) {
      if (entry.path().extension() == ".vex") files.push_back(entry.path());
    }
    std::vector<std::string> kept;
    for (const auto& file : files) {
      if (isKept(file.string())) kept.push_back(file.string());
    }
    return kept;
  }
  bool isKept(const std::string& file) {
    Vex2FileManager document;
    if (document.ReadFromFile(file.c_str()) != kSuccess || document.IsRQS()) return false;
    if (TagsOf(document).find("EOF ") != std::string::npos) return false;
    const Bytes once = savedAlone(document);
    Vex2FileManager again;
    if (again.ReadFromFile((folder_ / "alone.vex").c_str()) != kSuccess) return false;
    Vex2FileManager copy(again);
    return savedAlone(copy) == once;
  }
  Bytes savedAlone(Vex2FileManager& plate) {
    const std::string path = folder_ / "alone.vex";
    EXPECT_EQ(plate.SaveToFile(path.c_str()), kSuccess);
    return ReadBytes(path);
  }
  // Makes a study of these plates, saves and reads it, and saves each plate as a separate document.
  std::vector<std::string> takenApart(const std::vector<std::string>& files,
                                      const std::string& prefix) {
    Vex2FileManager study;
    SetAssay(study, "RQSt");
    std::vector<std::string> names;
    for (const std::string& file : files) {
      Vex2FileManager plate;
      EXPECT_EQ(plate.ReadFromFile(file.c_str()), kSuccess) << file;
      // The library names a plate after its path, so each plate needs a different path.
      names.push_back(prefix + std::to_string(names.size()));
      plate.SetFilePath((folder_ / (names.back() + ".vex")).c_str());
      EXPECT_TRUE(study.AddRQPlate(&plate, kDate)) << file;
    }
    const std::string path = folder_ / (prefix + "study.vex");
    EXPECT_EQ(study.SaveToFile(path.c_str()), kSuccess);
    Vex2FileManager again;
    EXPECT_EQ(again.ReadFromFile(path.c_str()), kSuccess);
    EXPECT_EQ(PlateNames(again), names);
    return extracted(again, names);
  }

 private:
  std::vector<std::string> extracted(const Vex2FileManager& study,
                                     const std::vector<std::string>& names) {
    std::vector<std::string> files;
    for (const std::string& name : names) {
      Vex2FileManager plate(*study.GetSinglePlatePtrByName(name.c_str()));
      files.push_back(folder_ / (name + ".vex"));
      EXPECT_EQ(plate.SaveToFile(files.back().c_str()), kSuccess);
    }
    return files;
  }
};

TEST_F(RebuiltStudy, HoldsItsPlatesRecordForRecordButForNameAndDate) {
  const std::vector<std::string> originals = plateFiles();
  ASSERT_GE(originals.size(), SampleFolder().empty() ? 3U : 16U);
  const std::vector<std::string> first = takenApart(originals, "first");
  const std::vector<std::string> second = takenApart(first, "second");
  for (std::size_t index = 0; index < originals.size(); ++index) {
    Vex2FileManager expected;
    ASSERT_EQ(expected.ReadFromFile(originals[index].c_str()), kSuccess);
    for (const auto& [file, prefix] :
         {std::pair{first[index], "first"}, std::pair{second[index], "second"}}) {
      EXPECT_EQ(expected.AppendPlateName((prefix + std::to_string(index)).c_str()), kSuccess);
      EXPECT_EQ(expected.AppendLastModifiedDate(kDate), kSuccess);
      EXPECT_EQ(FirstDifference(ReadBytes(file), savedAlone(expected)), "") << originals[index];
    }
  }
}

}  // namespace
}  // namespace vex2::test
