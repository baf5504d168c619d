#include "vex2/run/Vex2GlobalComplex.h"

#include <cstddef>
#include <cstring>

namespace {

void setBlock(std::uint8_t*& block, std::uint32_t& held, const void* data, std::uint32_t length,
              std::size_t spare) {
  if (length != held) {
    delete[] block;
    block = nullptr;
    held = 0;
    block = new std::uint8_t[length + spare]();
    held = length;
  }
  if (length != 0 && block != nullptr && data != nullptr) std::memcpy(block, data, length);
}

}  // namespace

Vex2GlobalComplex::~Vex2GlobalComplex() {
  delete[] commentData;
  delete[] passiveReferenceData;
  delete[] logData;
}

void Vex2GlobalComplex::SetComment(const void* data, std::uint32_t length) {
  setBlock(commentData, commentLength, data, length, 1);
}

void Vex2GlobalComplex::SetPassiveReference(const void* data, std::uint32_t length) {
  setBlock(passiveReferenceData, passiveReferenceLength, data, length, 1);
}

void Vex2GlobalComplex::SetPassiveReference(const CString& name) {
  SetPassiveReference(name.GetString(), static_cast<std::uint32_t>(name.GetLength()));
}

void Vex2GlobalComplex::SetLog(const void* data, std::uint32_t length) {
  setBlock(logData, logLength, data, length, 0);
}
