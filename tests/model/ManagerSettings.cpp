#include "tests/model/Manager.h"

namespace vex2::test::model {
namespace {

constexpr const char* kByteTags[] = {"FTRD", "DRKS", "PRER", "POSR"};

std::int32_t signedByte(const Text& value) {
  return value.empty() ? 0 : static_cast<signed char>(value[0]);
}

void addTextPart(Part& list, const Text& tag, const Text& text) {
  if (!text.empty()) Add(list, ValuePart(tag, text));
}

Part partOf(const Settings& value) {
  Part list = ListPart("GLBL");
  Add(list, ValuePart("VERS", Big(value.version, 4)));
  addTextPart(list, "COMM", value.comment);
  Add(list, ValuePart("PCRV", Big(value.volume, 2)));
  addTextPart(list, "RefN", value.reference);
  Add(list, ValuePart("UOMC", Big(value.unit, 2)));
  for (int i = 0; i < 4; ++i) {
    Add(list, ValuePart(kByteTags[i], Big(static_cast<std::uint32_t>(value.bytes[i]), 1)));
  }
  addTextPart(list, "LOGT", value.log);
  return list;
}

}  // namespace

const Part* Manager::find(const Text& tag) const {
  for (const Part& part : parts) {
    if (part.tag == tag) return &part;
  }
  return nullptr;
}

Part* Manager::find(const Text& tag) {
  for (Part& part : parts) {
    if (part.tag == tag) return &part;
  }
  return nullptr;
}

Part* Manager::append(Part part) {
  parts.push_back(std::move(part));
  return &parts.back();
}

void Manager::remove(const Text& tag) {
  const Part* part = find(tag);
  if (part != nullptr) parts.erase(parts.begin() + (part - parts.data()));
}

int Manager::appended(const char* at, const Text& bytes) {
  if (at == nullptr || safeOpen(at, 1, 1) == 0) return -200;
  write(bytes);
  close();
  return 0;
}

Settings Manager::settings() const {
  Settings value;
  const Part* list = find("GLBL");
  if (list == nullptr) return value;
  for (const Part& child : list->children) {
    if (child.tag == "VERS") value.version = NumberAt(child.value, 0, 4);
    if (child.tag == "COMM") value.comment = child.value;
    if (child.tag == "PCRV") value.volume = NumberAt(child.value, 0, 2);
    if (child.tag == "RefN") value.reference = child.value;
    if (child.tag == "UOMC") value.unit = NumberAt(child.value, 0, 2);
    if (child.tag == "LOGT") value.log = child.value;
    for (int i = 0; i < 4; ++i) {
      if (child.tag == kByteTags[i]) value.bytes[i] = signedByte(child.value);
    }
  }
  return value;
}

int Manager::replaceSettings(const Settings* value) {
  remove("GLBL");
  append(value != nullptr ? partOf(*value) : ListPart("GLBL"));
  return 0;
}

int Manager::appendSettings(const char* at, const Settings* value) {
  replaceSettings(value);
  return appended(at, Written(*find("GLBL")));
}

int Manager::setValue(const Text& tag, const Text& value) {
  remove(tag);
  append(ValuePart(tag, value));
  return 0;
}

int Manager::setText(const Text& tag, const Text& text) {
  remove(tag);
  if (!text.empty()) append(ValuePart(tag, text));
  return 0;
}

int Manager::setPlateText(const Text& tag, const Text& text) {
  return setValue(tag, text.substr(0, 1023));
}

int Manager::replaceProgram(const Text& program) {
  return setValue("TPro", program);
}

int Manager::writeProgram() {
  if (!isOpen()) return -200;
  const Part* program = find("TPro");
  if (program == nullptr) return -300;
  header.replace(24, 4, Big(content().size(), 4));
  writePart(*program);
  return 0;
}

}  // namespace vex2::test::model
