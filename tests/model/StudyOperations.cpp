#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

Text listOf(const Vex2FileManager& m) {
  CStringList names;
  CStringList dates;
  if (!m.GetMultiPlateList(names, dates)) return "false";
  Text list = "true";
  POSITION date = dates.GetHeadPosition();
  for (POSITION name = names.GetHeadPosition(); name != nullptr;) {
    const Text first = TextOf(names.GetNext(name));
    list += " " + first + "|" + TextOf(dates.GetNext(date));
  }
  return list;
}

Operation addOperation(Draw& draw) {
  const Text date = draw.Letters(10);
  const int to = draw.OneIn(3) ? 1 : 0;
  Operation operation;
  operation.text = Text(to == 0 ? "first" : "second") + " takes the other as a plate, date " + date;
  operation.onBoth = [=](Sides& sides) {
    const bool added = sides.actual[to].AddRQPlate(&sides.actual[1 - to], date.c_str());
    EXPECT_EQ(added, sides.model[to].addPlate(sides.model[1 - to], date)) << "AddRQPlate";
  };
  return operation;
}

}  // namespace

Operation DrawStudyOperation(Draw& draw) {
  const Text name = draw.Of<Text>({"a", "b", "", "plate", "nobody"});
  switch (draw.Below(7)) {
    case 0:
    case 1:
      return addOperation(draw);
    case 2:
      return {"RemoveRQPlate(\"" + name + "\")",
              [=](OpenedManager& m) { return Shown(m.RemoveRQPlate(name.c_str())); },
              [=](Manager& m) { return Shown(m.removePlate(name)); }};
    case 3:
      return {"GetMultiPlateList", [](OpenedManager& m) { return listOf(m); },
              [](Manager& m) { return m.plateList(); }};
    case 4:
      return {"AppendPlateName(\"" + name + "\")",
              [=](OpenedManager& m) { return Shown(m.AppendPlateName(name.c_str())); },
              [=](Manager& m) { return Shown(m.setPlateText("Path", name)); }};
    case 5:
      return {"SetFilePath(/runs/plate.vex)",
              [](OpenedManager& m) {
                m.SetFilePath("/runs/plate.vex");
                return Text();
              },
              [](Manager& m) {
                m.path = "/runs/plate.vex";
                return Text();
              }};
    default:
      return {"InitMultiplate()", [](OpenedManager& m) { return Shown(m.InitMultiplate()); },
              [](Manager& m) { return Shown(m.initPlates()); }};
  }
}

}  // namespace vex2::test::model
