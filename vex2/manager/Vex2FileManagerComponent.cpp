#include "vex2/manager/Vex2FileManagerComponent.h"

#include <array>
#include <vector>

#include "vex2/container/CLongValueComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/DescribeClass.h"

using vex2::Kind;
using vex2::kSuccess;
using vex2::TagOf;

Vex2FileManagerComponent::Vex2FileManagerComponent() = default;

Vex2FileManagerComponent::Vex2FileManagerComponent(const Vex2FileManagerComponent& other)
    : Vex2FileManager() {
  deepCopy(other);
}

Vex2FileManagerComponent::Vex2FileManagerComponent(const Vex2FileManager& other) {
  deepCopy(other);
}

Vex2FileManagerComponent& Vex2FileManagerComponent::operator=(
    const Vex2FileManagerComponent& other) {
  return *this = static_cast<const Vex2FileManager&>(other);
}

Vex2FileManagerComponent& Vex2FileManagerComponent::operator=(const Vex2FileManager& other) {
  // Reset comes first on purpose: a plate that is assigned to itself is empty afterwards.
  Reset();
  ownAnalysis_.reset();
  if (this != &other) copyOrStayEmpty(other);
  return *this;
}

Vex2FileManagerComponent::~Vex2FileManagerComponent() = default;

const CRuntimeClass* Vex2FileManagerComponent::ClassRecord() {
  static const CRuntimeClass record = vex2::DescribeClass<Vex2FileManagerComponent>(
      "Vex2FileManagerComponent", Vex2FileManager::ClassRecord());
  return &record;
}

const CRuntimeClass* Vex2FileManagerComponent::GetRuntimeClass() const {
  return ClassRecord();
}

int Vex2FileManagerComponent::ReadHeaderData(CFile* file) {
  return ReadHeaderData(header_, file);
}

int Vex2FileManagerComponent::ReadHeaderData(Vex2HeaderData& header, CFile* file) {
  return attempt(vex2::kReadFailed, [&] { return ReadHeaderDataHelper(header, file); });
}

int Vex2FileManagerComponent::WriteHeaderData(CFile* file) {
  return attempt(vex2::kWriteFailed, [&] { return writeHeader(file != nullptr ? *file : *this); });
}

int Vex2FileManagerComponent::writeHeader(CFile& file) {
  std::uint32_t written = 0;
  const int status = WriteHeaderDataHelper(written, &file);
  // A usage table that is longer than the rest of the header needs no padding.
  if (written < vex2::HeaderLayout::kSize) {
    const std::vector<std::uint8_t> padding(vex2::HeaderLayout::kSize - written, 0xFF);
    file.Write(padding.data(), padding.size());
  }
  return status;
}

void Vex2FileManagerComponent::UpdateHeaderOffsets(const CComponent& /*component*/) {}

int Vex2FileManagerComponent::WriteComponentFile(CFile* file) {
  return attempt(vex2::kWriteFailed, [&] { return writePlate(file != nullptr ? *file : *this); });
}

int Vex2FileManagerComponent::writePlate(CFile& file) {
  int status = writeHeader(file);
  if (status != kSuccess) return status;
  for (int index = 0; index < GetAllComponentCount() && status == kSuccess; ++index) {
    status = GetComponent(index)->Write(&file);
  }
  static_cast<void>(CLongValueComp(TagOf(Kind::kEndOfPlate)).Write(&file));
  return status;
}

int Vex2FileManagerComponent::ReadComponentFile(CFile* file) {
  CFile& source = file != nullptr ? *file : *this;
  const int status = attempt(vex2::kReadFailed, [&] { return readPlate(source); });
  if (status != kSuccess) noteFault(0, "a plate cannot be read");
  return status;
}

int Vex2FileManagerComponent::readPlate(CFile& file) {
  Reset();
  int status = ReadHeaderData(&file);
  if (status != kSuccess) return status;
  for (;;) {
    std::array<char, vex2::kTagLength> bytes{};
    const std::uint64_t start = file.GetPosition();
    if (file.Read(bytes.data(), bytes.size()) < bytes.size()) {
      noteFault(start, "it ends within a plate");
      return vex2::kReadFailed;
    }
    const std::string_view tag(bytes.data(), bytes.size());
    if (tag == TagOf(Kind::kEndOfFile) || tag == vex2::kMagic) return status;
    std::unique_ptr<CComponent> component;
    // Skip four bytes at a time until they are a known tag.
    if (CreateComponent(tag, component) == 0) {
      noteFault(start, "the record is of an unknown kind");
      continue;
    }
    file.Seek(-static_cast<std::int64_t>(tag.size()), current);
    status = component->Read(&file);
    if (tag == TagOf(Kind::kEndOfPlate)) return status;
    if (status == kSuccess) {
      appendComponent(std::move(component));
    } else {
      noteFault(start, "the record cannot be read");
    }
  }
}
