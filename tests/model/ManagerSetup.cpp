#include <algorithm>
#include <cstring>

#include "tests/model/Manager.h"

namespace vex2::test::model {
namespace {

/// The bytes of a float in little-endian order.
Text littleEndian(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  Text bytes = Big(bits, 4);
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

void addText(Part& list, const Text& tag, const Text& text) {
  if (!text.empty()) Add(list, ValuePart(tag, text));
}

Part partOf(const Detector& detector) {
  Part part = ListPart("DETX");
  const char* tags[] = {"DETN", "DYER", "DYEQ", "DESC", "COMT"};
  for (int i = 0; i < 5; ++i) addText(part, tags[i], detector.texts[i]);
  Add(part, ValuePart("COLR", detector.color));
  const auto date = [&](const Text& tag, std::int32_t value) {
    if (value > 0) Add(part, ValuePart(tag, Big(static_cast<std::uint32_t>(value), 4)));
  };
  date("DATC", detector.created);
  date("DATM", detector.modified);
  addText(part, "OWNR", detector.texts[5]);
  addText(part, "LOCS", detector.texts[6]);
  Add(part, ValuePart("DASB", Big(detector.start, 2)));
  Add(part, ValuePart("DAEB", Big(detector.end, 2)));
  Add(part, ValuePart("DATH", littleEndian(detector.threshold)));
  Add(part, ValuePart("DAAB", Big(static_cast<std::uint32_t>(detector.autoBaseline), 1)));
  Add(part, ValuePart("DAAT", Big(static_cast<std::uint32_t>(detector.autoThreshold), 1)));
  Add(part, ValuePart("DAQF", Big(detector.flags, 2)));
  return part;
}

Part partOf(const Well& well) {
  Part cell = ListPart("CELL");
  cell.value = Big(well.coord1, 2) + Big(well.coord2, 2) + Big(well.flag ? 1 : 0, 1);
  cell.length = 7;
  addText(cell, "NAME", well.name);
  addText(cell, "DESC", well.description);
  for (const WellDetector& detector : well.detectors) {
    Part part = ListPart("DETT");
    addText(part, "DNAM", detector.name);
    addText(part, "TASK", detector.task);
    Add(part, ValuePart("QANT", littleEndian(detector.quantity)));
    Add(part, ValuePart("DUSE", Big(detector.used ? 1 : 0, 1)));
    Add(cell, part);
  }
  return cell;
}

Text nameOf(const Part& detector) {
  for (const Part& child : detector.children) {
    if (child.tag == "DETN") return child.value;
  }
  return {};
}

/// The index of the first child that matches, or the number of children.
template <typename Matches>
std::size_t indexOf(const Part& list, Matches matches) {
  const auto& children = list.children;
  return static_cast<std::size_t>(std::find_if(children.begin(), children.end(), matches) -
                                  children.begin());
}

std::size_t detectorIn(const Part& list, const Text& name) {
  if (name.empty()) return list.children.size();
  return indexOf(list, [&](const Part& child) { return nameOf(child) == name; });
}

std::size_t dyeIn(const Part& list, const Text& name) {
  if (name.empty()) return list.children.size();
  return indexOf(list, [&](const Part& child) { return child.value == name; });
}

void addDetector(Part& list, const Detector& detector, std::vector<Text>& messages) {
  if (detector.texts[0].empty()) {
    messages.emplace_back("Cannot add a Detector Component if detector name is not specified");
  } else {
    Add(list, partOf(detector));
  }
}

}  // namespace

int Manager::replaceSetup(const std::vector<Well>& wells) {
  remove("CELS");
  Part cells = ListPart("CELS");
  for (const Well& well : wells) Add(cells, partOf(well));
  append(cells);
  return 0;
}

int Manager::writeSetup() {
  if (!isOpen()) return -200;
  const Part* setup = find("CELS");
  if (setup == nullptr) return -300;
  writePart(*setup);
  return 0;
}

int Manager::saveSetup(const char* at) {
  if (find("TPro") == nullptr || find("CELS") == nullptr) return -300;
  if (at == nullptr) return -200;
  return saveParts(at, [this] {
    writeHeader();
    writeProgram();
    writeSetup();
    return updateOffset(24, NumberAt(header, 24, 4));
  });
}

int Manager::updateDetectors(const std::vector<Detector>& list) {
  remove("DETL");
  Part* made = append(ListPart("DETL"));
  for (const Detector& detector : list) addDetector(*made, detector, messages);
  return 0;
}

int Manager::appendDetector(const Detector& detector) {
  Part* list = find("DETL");
  if (list == nullptr) list = append(ListPart("DETL"));
  const std::size_t index = detectorIn(*list, detector.texts[0]);
  if (index < list->children.size()) Remove(*list, index);
  addDetector(*list, detector, messages);
  return 0;
}

bool Manager::removeDetector(const Text& name) {
  Part* list = find("DETL");
  if (list == nullptr) return false;
  const std::size_t index = detectorIn(*list, name);
  const bool isFound = index < list->children.size();
  if (isFound) Remove(*list, index);
  if (list->children.empty()) remove("DETL");
  return isFound;
}

bool Manager::appendDye(const Text& name) {
  Part* list = find("RqDy");
  if (list != nullptr && dyeIn(*list, name) < list->children.size()) return false;
  if (list == nullptr) list = append(ListPart("RqDy"));
  addText(*list, "aDye", name);
  return true;
}

int Manager::updateDyes(const std::vector<Text>& names) {
  remove("RqDy");
  Part* list = append(ListPart("RqDy"));
  for (const Text& name : names) addText(*list, "aDye", name);
  return 0;
}

bool Manager::removeDye(const Text& name) {
  Part* list = find("RqDy");
  if (list == nullptr) return false;
  const std::size_t index = dyeIn(*list, name);
  const bool isFound = index < list->children.size();
  if (isFound) Remove(*list, index);
  if (list->children.empty()) remove("RqDy");
  return isFound;
}

int Manager::appendToFile(const char* at, const Text& tag) {
  const Part* part = find(tag);
  return part != nullptr ? appended(at, Written(*part)) : -300;
}

int Manager::countOf(const Text& tag, int& count) const {
  const Part* list = find(tag);
  count = list != nullptr ? static_cast<int>(list->children.size()) : 0;
  return list != nullptr ? 0 : -300;
}

}  // namespace vex2::test::model
