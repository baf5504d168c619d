#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/RunDocument.h"

/// Makes documents with any number of wells, detectors and other records.
namespace vex2::test {

inline void FillFrames(Vex2FileManager& document, int size) {
  for (int i = 0; i < size; ++i) {
    const Vex2FrameData frame = MakeFrame(24, i);
    static_cast<void>(document.AppendAcquisitionDataFrame(nullptr, &frame, DataRAWa));
  }
}

inline void FillWells(Vex2FileManager& document, int size) {
  Vex2PlateSetup setup;
  setup.Resize(static_cast<std::uint16_t>(size));
  for (int i = 0; i < size; ++i) {
    Vex2WellSetup& well = setup.cells[i];
    well.SetName("sample", 6);
    for (int k = 0; k < 2; ++k) {
      well.detectors.AddTail(new Vex2WellDetector);
      well.detectors.GetTail()->SetDetectorName("detector", 8);
      well.detectors.GetTail()->SetTask("UNKN", 4);
    }
  }
  ASSERT_EQ(document.ReplacePlateSetup(&setup), kSuccess);
}

inline void FillDetectorsOfAWell(Vex2FileManager& document, int size) {
  Vex2PlateSetup setup;
  setup.Resize(1);
  for (int i = 0; i < size; ++i) {
    setup.cells[0].detectors.AddTail(new Vex2WellDetector);
    setup.cells[0].detectors.GetTail()->SetDetectorName("detector", 8);
  }
  ASSERT_EQ(document.ReplacePlateSetup(&setup), kSuccess);
}

inline void FillDetectors(Vex2FileManager& document, int size) {
  std::vector<Vex2Detector> detectors(static_cast<std::size_t>(size));
  for (int i = 0; i < size; ++i) {
    auto& detector = detectors[static_cast<std::size_t>(i)];
    detector.name = CString("detector " + std::to_string(i));
    detector.reporterDye = CString("FAM");
  }
  ASSERT_EQ(document.UpdateDetectorList(detectors.data(), size), kSuccess);
}

inline void FillDyes(Vex2FileManager& document, int size) {
  std::vector<CString> dyes;
  for (int i = 0; i < size; ++i) dyes.emplace_back("dye " + std::to_string(i));
  ASSERT_EQ(document.UpdateRequiredDyeList(dyes.data(), size), kSuccess);
}

inline void FillCalibration(Vex2FileManager& document, int size) {
  const std::vector<std::uint32_t> values(20, 7);
  Vex2PureDye dyes;
  dyes.SetEntryCount(static_cast<std::uint16_t>(size));
  Vex2BGC background;
  background.SetEntryCount(static_cast<std::uint16_t>(size));
  for (int i = 0; i < size; ++i) {
    dyes.entries[i].SetName("dye", 3);
    dyes.entries[i].SetValues(values.data(), 20);
    background.entries[i].SetValues(values.data(), 20);
  }
  ASSERT_EQ(document.ReplaceCalibComponent(&dyes, &background), kSuccess);
}

inline void FillStudy(Vex2FileManager& document, int size) {
  Vex2HeaderData header = document.GetHeaderData();
  std::memcpy(header.assayCode, "RQSt", 4);
  document.SetHeaderData(header);
  Vex2FileManager plate;
  FillFrames(plate, 2);
  for (int i = 0; i < size; ++i) {
    plate.SetFilePath(("/runs/plate " + std::to_string(i) + ".vex").c_str());
    ASSERT_TRUE(document.AddRQPlate(&plate, "today"));
  }
}

inline void FillProgram(Vex2FileManager& document, int size) {
  ThermocycleProgram program;
  program.length = static_cast<std::uint32_t>(size);
  program.Allocate();
  std::memset(program.data, 'p', program.length);
  ASSERT_EQ(document.ReplaceThermocycleProgram(&program), kSuccess);
}

}  // namespace vex2::test
