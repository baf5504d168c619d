#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::test {

/// The texts in the list, from head to tail.
inline std::vector<std::string> TextsOf(const CStringList& list) {
  std::vector<std::string> texts;
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    texts.emplace_back(list.GetNext(at).View());
  }
  return texts;
}

/// The names of the plates of the study, in order.
inline std::vector<std::string> PlateNames(const Vex2FileManager& study) {
  CStringList names;
  CStringList dates;
  study.GetMultiPlateList(names, dates);
  return TextsOf(names);
}

inline void SetAssay(Vex2FileManager& document, const char* code) {
  Vex2HeaderData header = document.GetHeaderData();
  std::memcpy(header.assayCode, code, sizeof header.assayCode);
  document.SetHeaderData(header);
}

/// A plate with the file path `path`; the file need not exist.
inline Vex2FileManager PlateAt(const char* path, const char* calibrator = "one") {
  Vex2FileManager plate;
  plate.SetFilePath(path);
  EXPECT_EQ(plate.SetCalibrator(calibrator), kSuccess);
  return plate;
}

inline CString CalibratorOf(const Vex2FileManager* document) {
  CString name;
  // Without a calibrator the name is empty.
  if (document != nullptr) std::ignore = document->GetCalibrator(name);
  return name;
}

/// The offset of the first record of a document.
constexpr std::size_t kPlates = 1024;

inline std::string TextAt(const Bytes& bytes, std::size_t at, std::size_t count) {
  return {reinterpret_cast<const char*>(bytes.data()) + at, count};
}

/// A study with plates, and a file for it.
class StudyFileTest : public TempFolderTest {
 protected:
  StudyFileTest() { SetAssay(study_, "RQSt"); }

  void add(const char* path, const char* date) {
    const Vex2FileManager plate = PlateAt(path, path);
    ASSERT_TRUE(study_.AddRQPlate(&plate, date));
  }
  Bytes saved() {
    EXPECT_EQ(study_.SaveToFile(path_.c_str()), 0);
    return ReadBytes(path_);
  }
  std::string path_ = folder_ / "study.vex";
  Vex2FileManager study_;
  Vex2FileManager read_;
};

}  // namespace vex2::test
