#include "vex2/container/CComponent.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <limits>

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/format/RecordKinds.h"

using vex2::kRecordHeadSize;

CComponent::CComponent(std::string_view tag, std::uint32_t length) : length_(length) {
  setTag(tag);
}

const CRuntimeClass* CComponent::ClassRecord() {
  static const CRuntimeClass record{"CComponent", sizeof(CComponent), CObject::ClassRecord(),
                                    nullptr};
  return &record;
}

const CRuntimeClass* CComponent::GetRuntimeClass() const {
  return ClassRecord();
}

void CComponent::setTag(std::string_view tag) {
  // A fast path: nearly every tag has four characters, and a tag is set for each record that is
  // read.
  if (tag.size() == sizeof tag_) {
    std::memcpy(tag_, tag.data(), sizeof tag_);
    return;
  }
  std::fill(std::begin(tag_), std::end(tag_), ' ');
  std::copy_n(tag.begin(), std::min(tag.size(), sizeof tag_), tag_);
}

CComponent& CComponent::Assign(const CComponent& source) {
  if (source.GetTag() == GetTag()) length_ = source.length_;
  return *this;
}

int CComponent::Read(CFile* file, std::uint32_t& counter) {
  if (file == nullptr) return vex2::kReadFailed;
  const vex2::NestingGuard nesting;
  std::array<std::uint8_t, kRecordHeadSize> head{};
  if (!vex2::ReadExactly(*file, head.data(), head.size())) return vex2::kNotFound;
  if (nesting.IsTooDeep()) return vex2::kNotFound;
  length_ = vex2::LoadBig<std::uint32_t>(head.data() + vex2::kTagLength);
  const int status = length_ != 0 ? ReadBody(file) : vex2::kSuccess;
  constexpr std::uint64_t kMaxCount = std::numeric_limits<std::uint32_t>::max();
  counter = static_cast<std::uint32_t>(
      std::min(std::uint64_t{counter} + length_ + kRecordHeadSize, kMaxCount));
  return status;
}

int CComponent::Read(CFile* file) {
  std::uint32_t counter = 0;
  return Read(file, counter);
}

int CComponent::Write(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  file->Write(tag_, sizeof tag_);
  vex2::WriteField(*file, length_);
  // Ignores the status of the body: a write that the system refuses throws an exception.
  if (length_ != 0) static_cast<void>(WriteBody(file));
  return vex2::kSuccess;
}

std::uint64_t CComponent::GetSize() const {
  return std::uint64_t{length_} + kRecordHeadSize;
}

void CComponent::AllocateBody() {}
void CComponent::FreeBody() {}
bool CComponent::IsPlateSetupComp() const {
  return false;
}
bool CComponent::IsThermocycleComp() const {
  return false;
}
CString CComponent::GetValueString() {
  return {};
}
int CComponent::WriteBody(CFile* /*file*/) {
  return vex2::kSuccess;
}
int CComponent::ReadBody(CFile* /*file*/) {
  return vex2::kSuccess;
}
