#pragma once

#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/RunDocument.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::test {

/// An operation of a manager on a file, with its name.
struct Work {
  std::string name;
  std::function<int(Vex2FileManager&, const char* path)> run;

  friend std::ostream& operator<<(std::ostream& out, const Work& work) { return out << work.name; }
};

struct SomeBackground : Vex2BGC {
  explicit SomeBackground(std::uint16_t given = 0) {
    SetEntryCount(1);
    const std::uint32_t values[] = {1, 2, 3};
    entries[0].SetValues(values, 3);
    setting = given;
  }
};

struct SomeDyes : Vex2PureDye {
  SomeDyes() {
    SetEntryCount(2);
    entries[0].SetName("Fam", 3);
  }
};

/// Fills the document with records of every kind except data blocks.
inline void FillDocument(Vex2FileManager& document) {
  document.SetSampleVolume(25);
  EXPECT_EQ(document.SetCalibrator("calibrator"), kSuccess);
  ThermocycleProgram program;
  program.length = 3;
  program.Allocate();
  std::memcpy(program.data, "abc", 3);
  EXPECT_EQ(document.ReplaceThermocycleProgram(&program), kSuccess);
  Vex2PlateSetup setup;
  setup.Resize(4);
  EXPECT_EQ(document.ReplacePlateSetup(&setup), kSuccess);
  Vex2Detector detector;
  detector.name = "detector";
  EXPECT_EQ(document.UpdateDetectorList(&detector, 1), kSuccess);
  const CString dye = "Fam";
  EXPECT_EQ(document.UpdateRequiredDyeList(&dye, 1), kSuccess);
  const SomeDyes dyes;
  const SomeBackground background;
  EXPECT_EQ(document.ReplaceCalibComponent(&dyes, &background), kSuccess);
}

/// Makes a study with a plate that has records of every kind.
inline void MakeStudy(Vex2FileManager& study) {
  Vex2FileManager plate;
  FillDocument(plate);
  plate.SetFilePath("plate.vex");
  Vex2HeaderData header = study.GetHeaderData();
  std::memcpy(header.assayCode, "RQSt", sizeof header.assayCode);
  study.SetHeaderData(header);
  study.InitMultiplate();
  study.AddRQPlate(&plate, "Mar 05, 2003 02:07 PM");
}

inline int ReplaceBlock(Vex2FileManager& document, const char* path, Vex2DataType type) {
  Vex2FrameData frames[2] = {MakeFrame(3, 7), MakeFrame(3, 8)};
  const Vex2AcquisitionData data{frames, 2};
  return document.ReplaceAcquisitionDataBlock(path, &data, type);
}

/// The operations that write a whole document, or a part that must be written completely or not at
/// all.
inline std::vector<Work> WholeWriters() {
  return {{"SaveToFile", [](auto& it, const char* path) { return it.SaveToFile(path); }},
          {"SaveToFile of a study",
           [](auto&, const char* path) {
             Vex2FileManager study;
             MakeStudy(study);
             return study.SaveToFile(path);
           }},
          {"SaveHeader",
           [](auto& it, const char* path) { return it.SaveHeader(path, Vex2HeaderData()); }},
          {"SaveSetupInfo", [](auto& it, const char* path) { return it.SaveSetupInfo(path); }},
          {"SaveCalibrationInfo",
           [](auto& it, const char* path) { return it.SaveCalibrationInfo(path); }},
          {"ReplaceAcquisitionDataBlock of raw data",
           [](auto& it, const char* path) { return ReplaceBlock(it, path, DataRAWa); }},
          {"ReplaceAcquisitionDataBlock of a reporter",
           [](auto& it, const char* path) { return ReplaceBlock(it, path, DataREPr); }},
          {"ReplaceBackground", [](auto& it, const char* path) {
             const SomeBackground background(9);
             return it.ReplaceBackground(path, &background);
           }}};
}

/// The operations that append to a document.
inline std::vector<Work> Appenders() {
  return {{"AppendPureDye",
           [](auto& it, const char* path) {
             const SomeDyes dyes;
             return it.AppendPureDye(path, &dyes);
           }},
          {"AppendBackground",
           [](auto& it, const char* path) {
             const SomeBackground background;
             return it.AppendBackground(path, &background);
           }},
          {"AppendDetectorListToFile",
           [](auto& it, const char* path) { return it.AppendDetectorListToFile(path); }},
          {"AppendRequiredDyeListToFile",
           [](auto& it, const char* path) { return it.AppendRequiredDyeListToFile(path); }},
          {"AppendGlobalComplexComp",
           [](auto& it, const char* path) { return it.AppendGlobalComplexComp(path, nullptr); }}};
}

}  // namespace vex2::test
