#include "tools/vex/document/RecordKinds.h"

#include <algorithm>
#include <array>
#include <memory>

#include "vex2/container/TagFactory.h"

namespace vex2::tool {

namespace {

using enum BodyLayout;

constexpr auto kKinds = std::to_array<RecordKind>({
    {"GLBL", kList, "run-wide settings"},
    {"VERS", kLong, "version"},
    {"PRER", kByte, "pre flag"},
    {"POSR", kByte, "post flag"},
    {"LOGT", kText, "log"},
    {"COMM", kText, "comment"},
    {"PCRV", kShort, "sample volume"},
    {"FTRD", kByte, "FTRD value"},
    {"DRKS", kByte, "DRKS value"},
    {"UOMC", kShort, "unit code"},
    {"RefN", kText, "passive reference"},
    {"PDYE", kPureDyes, "pure dyes"},
    {"BKGD", kBackground, "background"},
    {"CALI", kList, "calibration"},
    {"TPro", kBytes, "thermal cycling program"},
    {"SPEC", kList, ""},
    {"TSMP", kLong, "time stamp"},
    {"RFID", kLong, ""},
    {"SPNM", kText, ""},
    {"SPON", kByte, ""},
    {"SPRV", kByte, ""},
    {"SPCH", kBytes, "spectrum channel"},
    {"CNTL", kList, ""},
    {"CELS", kList, "plate setup"},
    {"CELL", kCell, "well"},
    {"ROWN", kShort, ""},
    {"COLN", kShort, ""},
    {"HDAT", kByte, ""},
    {"NAME", kText, "name"},
    {"DESC", kText, "description"},
    {"1CTL", kShort, ""},
    {"CPLT", kList, ""},
    {"CPNM", kList, ""},
    {"STVL", kFloat, ""},
    {"STUM", kShort, ""},
    {"DYCD", kLong, ""},
    {"RAWa", kData, "raw readings"},
    {"DETT", kList, "detector in the well"},
    {"DNAM", kText, "detector name"},
    {"TASK", kText, "task"},
    {"QANT", kFloat, "quantity"},
    {"DUSE", kByte, "in use"},
    {"REPr", kData, "reporting data"},
    {"REPn", kData, "reporting data"},
    {"REPd", kData, "reporting data"},
    {"REPt", kData, "reporting data"},
    {"DETL", kList, "detectors"},
    {"DETX", kList, "detector"},
    {"DETN", kText, "name"},
    {"DYER", kText, "reporter dye"},
    {"DYEQ", kText, "quencher dye"},
    {"COMT", kText, "comment"},
    {"COLR", kColour, "colour"},
    {"DATC", kLong, "created"},
    {"DATM", kLong, "modified"},
    {"OWNR", kText, "owner"},
    {"LOCS", kText, "location"},
    {"DASB", kShort, "baseline start"},
    {"DAEB", kShort, "baseline end"},
    {"DATH", kFloat, "threshold"},
    {"DAAB", kByte, "automatic baseline"},
    {"DAAT", kByte, "automatic threshold"},
    {"DAQF", kShort, "analysis options"},
    {"RqDy", kList, "required dyes"},
    {"aDye", kText, "dye"},
    {"Conf", kFloat, "confidence percent"},
    {"MPLC", kList, "plates of a study"},
    {"RQPl", kPlate, "plate"},
    {"Path", kText, "plate name"},
    {"RQPD", kText, "last modified"},
    {"EOPl", kLong, "end of plate"},
    {"EOF ", kLong, "end of file"},
    {"CALR", kText, "calibrator"},
    {"ENDO", kText, "endogenous control"},
    {"RQAT", kShort, "analysis type"},
});

constexpr RecordKind kNoKind = {"", kUnknown, "unknown"};

}  // namespace

std::uint64_t FixedSize(BodyLayout layout) {
  switch (layout) {
    case kByte:
      return 1;
    case kShort:
      return 2;
    case kColour:
      return 3;
    case kLong:
    case kFloat:
      return 4;
    default:
      return 0;
  }
}

bool IsOfAnyLength(BodyLayout layout) {
  return layout == kText || layout == kBytes || layout == kPureDyes || layout == kBackground;
}

const RecordKind& KindOf(std::string_view tag) {
  const auto* found = std::find_if(kKinds.begin(), kKinds.end(),
                                   [&](const RecordKind& kind) { return kind.tag == tag; });
  return found != kKinds.end() ? *found : kNoKind;
}

bool IsKnownToLibrary(std::string_view tag) {
  std::unique_ptr<CComponent> component;
  return CreateComponent(tag, component) == 1;
}

}  // namespace vex2::tool
