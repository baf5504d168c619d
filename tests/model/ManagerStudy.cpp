#include "tests/model/Manager.h"

namespace vex2::test::model {
namespace {

/// The title of the file: the text between the last separator and the last dot.
Text titleOf(const Text& path) {
  const std::size_t slash = path.find_last_of("\\/");
  if (slash == Text::npos || slash == 0) return {};
  const Text name = path.substr(slash + 1);
  const std::size_t dot = name.rfind('.');
  return dot == Text::npos || dot == 0 ? Text() : name.substr(0, dot);
}

Text textIn(const Part& plate, const Text& tag) {
  for (const Part& part : plate.children) {
    if (part.tag == tag) return part.value;
  }
  return {};
}

}  // namespace

bool Manager::initPlates() {
  remove("MPLC");
  append(ListPart("MPLC"));
  return true;
}

bool Manager::addPlate(const Manager& plate, const Text& date) {
  const Text name = titleOf(plate.path);
  if (!analysed.insert(name).second) return false;
  Disk none;
  Manager copy(none);
  copy.assign(plate);
  copy.setPlateText("Path", name);
  copy.setPlateText("RQPD", date);
  Part part = ListPart("RQPl");
  part.header = copy.header;
  part.children = copy.parts;
  Part* plates = find("MPLC");
  Add(plates != nullptr ? *plates : *append(ListPart("MPLC")), part);
  return true;
}

bool Manager::removePlate(const Text& name) {
  const bool hadAnalysis = analysed.erase(name) != 0;
  Part* plates = find("MPLC");
  if (plates == nullptr) return hadAnalysis;
  for (std::size_t i = 0; i < plates->children.size(); ++i) {
    if (textIn(plates->children[i], "Path") != name) continue;
    Remove(*plates, i);
    break;
  }
  return true;
}

Text Manager::plateList() const {
  const Part* plates = find("MPLC");
  if (plates == nullptr) return "false";
  Text list = "true";
  for (const Part& plate : plates->children) {
    list += " " + textIn(plate, "Path") + "|" + textIn(plate, "RQPD");
  }
  return list;
}

}  // namespace vex2::test::model
