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

/// The arguments for all operations, made before memory runs out.
struct Materials {
  static constexpr std::uint16_t kWells = 3;

  /// `theRun` is the path of the document, `theTarget` a path to which operations can save.
  Materials(std::string theRun, std::string theTarget);

  /// Writes the document to its path again, and fills `document` with the records of a plate and of
  /// a study.
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
  // Other objects that operations change.
  mutable std::unique_ptr<Vex2FileManagerComponent> part;
  mutable Vex2HeaderData scratch;
  mutable CAnalysisSettingsMap map;
};

/// A public operation: its name as `PublicOperations` returns it, and a function that calls it.
struct Operation {
  const char* name;
  std::function<void(OpenedManager&, const Materials&)> run;
};

/// The operations of `Vex2FileManager` and `Vex2FileManagerComponent`, without destructors and
/// without constructors, which may throw.
const std::vector<Operation>& ManagerOperations();
const std::vector<Operation>& PlateOperations();

}  // namespace vex2::test
