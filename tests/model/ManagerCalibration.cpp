#include <algorithm>

#include "tests/model/Manager.h"

namespace vex2::test::model {
namespace {

Text entryOf(const Spectrum& entry, bool isDye) {
  Text bytes = Big(entry.keys[0], 2) + Big(entry.keys[1], 2) + Big(entry.keys[2], 2);
  bytes += Big(entry.bytes, 2) + Big(entry.name.size(), 1) + entry.name;
  for (const std::uint32_t param : entry.params) {
    if (isDye) bytes += Big(param, 2);
  }
  return bytes + Big(entry.values.size() / 4, 1) + entry.values;
}

Part partOf(const Text& tag, const Spectra& value) {
  const bool isDyes = tag == "PDYE";
  Text bytes = value.code + Big(value.setting, 4) + Big(value.entries.size(), 2);
  bytes += Big(value.option, 2) + Big(value.value, 4);
  if (isDyes) bytes += Big(0, 4);
  bytes += value.extra1 + value.extra2 + Text(isDyes ? 44 : 48, '\0');
  for (const Spectrum& entry : value.entries) bytes += entryOf(entry, isDyes);
  return ValuePart(tag, bytes);
}

std::size_t childAt(const Part& list, const Text& tag) {
  std::size_t index = 0;
  while (index < list.children.size() && list.children[index].tag != tag) ++index;
  return index;
}

bool removeChild(Part& list, const Text& tag) {
  const std::size_t index = childAt(list, tag);
  if (index == list.children.size()) return false;
  Remove(list, index);
  return true;
}

}  // namespace

int Manager::replaceCalibration(const Spectra* dyes, const Spectra* background) {
  remove("CALI");
  Part* list = append(ListPart("CALI"));
  if (dyes != nullptr) Add(*list, partOf("PDYE", *dyes));
  if (background != nullptr) Add(*list, partOf("BKGD", *background));
  return 0;
}

int Manager::replaceSpectra(const Text& tag, const Spectra* value) {
  Part* list = find("CALI");
  if (list == nullptr) list = append(ListPart("CALI"));
  removeChild(*list, tag);
  if (value != nullptr) Add(*list, partOf(tag, *value));
  return 0;
}

int Manager::replaceBackground(const char* at, const Spectra* value) {
  replaceSpectra("BKGD", value);
  const Part* list = find("CALI");
  const std::size_t index = childAt(*list, "BKGD");
  const Part* background = index < list->children.size() ? &list->children[index] : nullptr;
  if (at == nullptr || safeOpen(at, 0, 0) == 0) return -100;
  const Text bytes = content();
  const bool isDocument = isVex2();
  close();
  std::size_t place = 0;
  for (std::size_t offset = 1024; offset < bytes.size();) {
    if (bytes.size() - offset < 8) return -300;
    const std::size_t length = NumberAt(bytes, offset + 4, 4);
    if (bytes.compare(offset, 4, "BKGD") == 0) {
      if (length != (background != nullptr ? background->length : 0)) return -250;
      place = offset;
      break;
    }
    // If the last record of a document is cut off, nothing is appended after it.
    const bool isWhole = length <= bytes.size() - offset - 8;
    if (isDocument && !isWhole && IsKnown(bytes.substr(offset, 4))) return -300;
    offset += 8 + length;
  }
  if (safeOpen(at, 1, 1) == 0) return -200;
  if (place == 0) {
    write(Written(*list));
  } else if (background != nullptr) {
    overwrite(place, Written(*background));
  }
  close();
  return 0;
}

int Manager::appendSpectra(const char* at, const Text& tag, const Spectra& value) {
  remove(tag);
  const Part part = partOf(tag, value);
  append(part);
  return appended(at, Written(part));
}

int Manager::removeCalibration(bool dyes, bool background) {
  if (!dyes && !background) return 0;
  Part* list = find("CALI");
  if (list == nullptr) return -300;
  if (!dyes || !background) return removeChild(*list, dyes ? "PDYE" : "BKGD") ? 0 : -300;
  remove("CALI");
  return 0;
}

int Manager::saveCalibration(const char* at) {
  const Part* list = find("CALI");
  if (list == nullptr) return -300;
  if (at == nullptr) return -200;
  return saveParts(at, [this, list] {
    writeHeader();
    writePart(*list);
    return 0;
  });
}

}  // namespace vex2::test::model
