#include "vex2/setup/Vex2WellSetup.h"

#include "vex2/setup/OwnedText.h"

namespace {

void release(char*& buffer, std::int32_t& length) {
  delete[] buffer;
  buffer = nullptr;
  length = 0;
}

}  // namespace

void Vex2WellSetup::Reset() {
  coord1 = 0;
  coord2 = 0;
  flag = true;
  release(name, nameLength);
  release(description, descriptionLength);
  for (POSITION at = detectors.GetHeadPosition(); at != nullptr;) delete detectors.GetNext(at);
  detectors.RemoveAll();
}

void Vex2WellSetup::SetName(const char* text, std::int32_t length) {
  vex2::SetText(name, nameLength, text, length);
}

void Vex2WellSetup::SetDescription(const char* text, std::int32_t length) {
  vex2::SetText(description, descriptionLength, text, length);
}
