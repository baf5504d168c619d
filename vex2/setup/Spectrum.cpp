#include "vex2/setup/Spectrum.h"

#include <cstring>

namespace vex2 {
namespace {

template <typename Element>
void setArray(Element*& array, std::uint8_t& held, const void* source, std::uint8_t count) {
  Element* made = count != 0 ? new Element[count]() : nullptr;
  if (made != nullptr && source != nullptr) std::memcpy(made, source, count * sizeof(Element));
  delete[] array;
  array = made;
  held = count;
}

}  // namespace

// Delegates to the other constructor, so that the destructor runs if an allocation fails.
Spectrum::Spectrum(const Spectrum& other) : Spectrum() {
  *this = other;
}

Spectrum& Spectrum::operator=(const Spectrum& other) {
  if (this == &other) return *this;
  key1 = other.key1;
  key2 = other.key2;
  dyeIndex = other.dyeIndex;
  SetName(other.name, other.nameLength);
  SetValues(other.values, other.valueCount);
  return *this;
}

Spectrum::~Spectrum() {
  delete[] name;
  delete[] values;
}

void Spectrum::SetName(const char* text, std::uint8_t length) {
  setArray(name, nameLength, text, length);
}

void Spectrum::SetValues(const void* source, std::uint8_t count) {
  setArray(values, valueCount, source, count);
}

}  // namespace vex2
