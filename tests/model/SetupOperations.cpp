#include <algorithm>
#include <memory>

#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

Detector drawDetector(Draw& draw) {
  Detector detector;
  for (Text& text : detector.texts) text = draw.Letters(6);
  detector.texts[0] = draw.Of<Text>({"", "one", "two", "three", "ONE"});
  detector.color = draw.Bytes(3);
  detector.created = static_cast<std::int32_t>(draw.Number());
  detector.modified = static_cast<std::int32_t>(draw.Number());
  detector.start = draw.Number() & 0xFFFFU;
  detector.threshold = static_cast<float>(draw.Below(9)) * 0.1F;
  detector.flags = draw.Number() & 0xFFFFU;
  detector.autoBaseline = draw.Below(2);
  detector.autoThreshold = static_cast<std::int32_t>(draw.Number());
  return detector;
}

Vex2Detector recordOf(const Detector& detector) {
  Vex2Detector record;
  CString* texts[] = {&record.name,        &record.reporterDye, &record.quencherDye,
                      &record.description, &record.comment,     &record.owner,
                      &record.location};
  for (int i = 0; i < 7; ++i) *texts[i] = detector.texts[i].c_str();
  std::copy(detector.color.begin(), detector.color.end(), record.color);
  record.dateCreated = detector.created;
  record.dateModified = detector.modified;
  record.baselineStart = static_cast<std::uint16_t>(detector.start);
  record.baselineEnd = static_cast<std::uint16_t>(detector.end);
  record.threshold = detector.threshold;
  record.analysisFlags = static_cast<std::uint16_t>(detector.flags);
  record.autoBaseline = detector.autoBaseline;
  record.autoThreshold = detector.autoThreshold;
  return record;
}

std::vector<Well> drawWells(Draw& draw) {
  std::vector<Well> wells(static_cast<std::size_t>(draw.Below(4)));
  for (Well& well : wells) {
    well.coord1 = draw.Number() & 0xFFFFU;
    well.coord2 = draw.Number() & 0xFFFFU;
    well.flag = draw.OneIn(2);
    well.name = draw.Letters(9);
    well.description = draw.Letters(9);
    well.detectors.resize(static_cast<std::size_t>(draw.Below(3)));
    for (WellDetector& detector : well.detectors) {
      detector = {draw.Letters(5), draw.Letters(4), static_cast<float>(draw.Below(99)),
                  draw.OneIn(2)};
    }
  }
  return wells;
}

void fill(Vex2PlateSetup& setup, const std::vector<Well>& wells) {
  const auto length = [](const Text& text) { return static_cast<std::int32_t>(text.size()); };
  setup.Resize(static_cast<std::uint16_t>(wells.size()));
  for (std::size_t i = 0; i < wells.size(); ++i) {
    const Well& well = wells[i];
    Vex2WellSetup& cell = setup.cells[i];
    cell.coord1 = static_cast<std::uint16_t>(well.coord1);
    cell.coord2 = static_cast<std::uint16_t>(well.coord2);
    cell.flag = well.flag;
    cell.SetName(well.name.data(), length(well.name));
    cell.SetDescription(well.description.data(), length(well.description));
    for (const WellDetector& from : well.detectors) {
      auto detector = std::make_unique<Vex2WellDetector>();
      detector->SetDetectorName(from.name.data(), length(from.name));
      detector->SetTask(from.task.data(), length(from.task));
      detector->quantity = from.quantity;
      detector->used = from.used;
      cell.detectors.AddTail(detector.release());
    }
  }
}

Operation setupOperation(Draw& draw) {
  const std::vector<Well> wells = drawWells(draw);
  const char* path = draw.Path();
  switch (draw.Below(4)) {
    case 0:
      return {"SaveSetupInfo(" + Shown(path) + ")",
              [=](OpenedManager& m) { return Shown(m.SaveSetupInfo(path)); },
              [=](Manager& m) { return Shown(m.saveSetup(path)); }};
    case 1:
      return {"WritePlateSetupComp()",
              [](OpenedManager& m) { return Shown(m.WritePlateSetupComp()); },
              [](Manager& m) { return Shown(m.writeSetup()); },
              [](const Manager& m) { return m.canTryToWrite(); }};
    default:
      return {"ReplacePlateSetup of " + std::to_string(wells.size()) + " wells",
              [=](OpenedManager& m) {
                Vex2PlateSetup setup;
                fill(setup, wells);
                return Shown(m.ReplacePlateSetup(&setup));
              },
              [=](Manager& m) { return Shown(m.replaceSetup(wells)); }};
  }
}

Operation appendListOperation(Draw& draw) {
  const char* path = draw.Path();
  const bool dyes = draw.OneIn(2);
  return {
      Text(dyes ? "AppendRequiredDyeListToFile(" : "AppendDetectorListToFile(") + Shown(path) + ")",
      [=](OpenedManager& m) {
        return Shown(dyes ? m.AppendRequiredDyeListToFile(path) : m.AppendDetectorListToFile(path));
      },
      [=](Manager& m) { return Shown(m.appendToFile(path, dyes ? "RqDy" : "DETL")); }};
}

Operation detectorOperation(Draw& draw) {
  const Detector first = drawDetector(draw);
  std::vector<Detector> list;
  for (int left = draw.Below(3); left > 0; --left) list.push_back(drawDetector(draw));
  switch (draw.Below(5)) {
    case 0:
      return {
          "UpdateDetectorList of " + std::to_string(list.size()),
          [=](OpenedManager& m) {
            std::vector<Vex2Detector> records;
            for (const Detector& detector : list) records.push_back(recordOf(detector));
            return Shown(m.UpdateDetectorList(records.data(), static_cast<int>(records.size())));
          },
          [=](Manager& m) { return Shown(m.updateDetectors(list)); }};
    case 1:
      return {"RemoveDetectorInfo(\"" + first.texts[0] + "\")",
              [=](OpenedManager& m) { return Shown(m.RemoveDetectorInfo(first.texts[0].c_str())); },
              [=](Manager& m) { return Shown(m.removeDetector(first.texts[0])); }};
    case 2:
      return {"GetNumberOfDetectors",
              [](OpenedManager& m) {
                int found = -1;
                const int status = m.GetNumberOfDetectors(found);
                return Shown(status) + " " + Shown(found);
              },
              [](Manager& m) {
                int found = -1;
                const int status = m.countOf("DETL", found);
                return Shown(status) + " " + Shown(found);
              }};
    default:
      return {"AppendDetectorInfo(\"" + first.texts[0] + "\")",
              [=](OpenedManager& m) {
                const Vex2Detector record = recordOf(first);
                return Shown(m.AppendDetectorInfo(&record));
              },
              [=](Manager& m) { return Shown(m.appendDetector(first)); }};
  }
}

Operation dyeOperation(Draw& draw) {
  const std::vector<Text> names = {draw.Letters(3), draw.Letters(3)};
  const Text name = draw.Of<Text>({"", "FAM", "ROX", "rox"});
  switch (draw.Below(4)) {
    case 0:
      return {"UpdateRequiredDyeList",
              [=](OpenedManager& m) {
                const CString list[] = {names[0].c_str(), names[1].c_str()};
                return Shown(m.UpdateRequiredDyeList(list, 2));
              },
              [=](Manager& m) { return Shown(m.updateDyes(names)); }};
    case 1:
      return {"RemoveRequiredDyeInfo(\"" + name + "\")",
              [=](OpenedManager& m) { return Shown(m.RemoveRequiredDyeInfo(name.c_str())); },
              [=](Manager& m) { return Shown(m.removeDye(name)); }};
    default:
      return {"AppendRequiredDyenfo(\"" + name + "\")",
              [=](OpenedManager& m) {
                CString dye = name.c_str();
                return Shown(m.AppendRequiredDyenfo(dye));
              },
              [=](Manager& m) { return Shown(m.appendDye(name)); }};
  }
}

}  // namespace

Operation DrawSetupOperation(Draw& draw) {
  switch (draw.Below(6)) {
    case 0:
    case 1:
      return setupOperation(draw);
    case 2:
      return appendListOperation(draw);
    case 3:
    case 4:
      return detectorOperation(draw);
    default:
      return dyeOperation(draw);
  }
}

}  // namespace vex2::test::model
