#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/RunDocument.h"
#include "vex2/framework/CObList.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CNamedObject.h"

namespace vex2::test {

/// All that operations are tried with, made while there is memory.
struct Materials {
  static constexpr std::uint16_t kWells = 3;

  /// The document is at `run`; `target` is a path for others.
  Materials(std::string theRun, std::string theTarget);

  /// Writes the document anew and makes `document` one that holds a plate's parts and a study's.
  void Fill(Vex2FileManager& document) const;

  const std::string run;
  const std::string target;
  Bytes bytes;
  Vex2FileManager plate;
  ThermocycleProgram program;
  Vex2PlateSetup setup;
  Vex2Detector detector;
  Vex2PureDye dyes;
  Vex2BGC background;
  TAGPROBE probe;
  Vex2FrameData frame = MakeFrame(kWells, 1);
  Vex2AcquisitionData data{&frame, 1};
  Vex2WellRecord record = MakeRecord(1, 0);
  TimeStamp time{};
  Vex2HeaderData header;
  bool usage[4] = {true, false, true, true};
  unsigned short wells[2] = {1, 2};
  CNamedObject named;
  CObList query;
  Vex2GlobalComplex settings;
  Vex2FileManagerComponent source;
  // What operations change besides the document.
  mutable std::unique_ptr<Vex2FileManagerComponent> part;
  mutable Vex2HeaderData scratch;
  mutable CAnalysisSettingsMap map;
};

/// An operation under its name as `PublicOperations` gives it, and a call of it.
struct Operation {
  const char* name;
  std::function<void(OpenedManager&, const Materials&)> run;
};

/// Of `Vex2FileManager` and `Vex2FileManagerComponent`, without constructors, which throw, and
/// destructors.
const std::vector<Operation>& ManagerOperations();
const std::vector<Operation>& PlateOperations();

}  // namespace vex2::test
