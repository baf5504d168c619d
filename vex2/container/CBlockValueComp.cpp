#include "vex2/container/CBlockValueComp.h"

#include <cstring>

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/ReadLimits.h"

CBlockValueComp::CBlockValueComp(std::string_view tag) : CComponent(tag) {}

CBlockValueComp::CBlockValueComp(std::string_view tag, std::uint32_t length, const void* bytes)
    : CComponent(tag) {
  if (length == 0 || bytes == nullptr) return;
  setLength(length);
  copyFrom(bytes);
}

CBlockValueComp::CBlockValueComp(std::string_view tag, const CString& text)
    : CBlockValueComp(tag, static_cast<std::uint32_t>(text.GetLength()), text.GetString()) {}

void CBlockValueComp::copyFrom(const void* bytes) {
  data_.reset();
  if (GetLength() == 0 || bytes == nullptr) return;
  data_.reset(new std::uint8_t[GetLength()]);
  std::memcpy(data_.get(), bytes, GetLength());
}

CComponent& CBlockValueComp::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const CBlockValueComp*>(&source);
  if (same != nullptr && same != this && source.GetTag() == GetTag()) {
    CComponent::Assign(source);
    copyFrom(same->data_.get());
  }
  return *this;
}

void CBlockValueComp::AllocateBody() {
  data_ = GetLength() != 0 ? std::make_unique<std::uint8_t[]>(GetLength()) : nullptr;
}

void CBlockValueComp::FreeBody() {
  data_.reset();
}

bool CBlockValueComp::endsInZero() const {
  return data_ != nullptr && GetLength() != 0 && data_[GetLength() - 1] == 0;
}

CString CBlockValueComp::GetValueString() {
  if (endsInZero()) setLength(GetLength() - 1);
  if (data_ == nullptr) return {};
  return CString(std::string_view(reinterpret_cast<const char*>(data_.get()), GetLength()));
}

int CBlockValueComp::WriteBody(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  if (data_ != nullptr) file->Write(data_.get(), GetLength());
  return vex2::kSuccess;
}

int CBlockValueComp::readBlock(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  if (!vex2::HasBytesLeft(*file, GetLength())) {
    static_cast<void>(vex2::ShortRead(*file));
    return vex2::kReadFailed;
  }
  data_.reset(GetLength() != 0 ? new std::uint8_t[GetLength()] : nullptr);
  return vex2::ReadExactly(*file, data_.get(), GetLength()) ? vex2::kSuccess : vex2::kReadFailed;
}

int CBlockValueComp::ReadBody(CFile* file) {
  const int status = readBlock(file);
  if (status == vex2::kSuccess && endsInZero()) setLength(GetLength() - 1);
  return status;
}
