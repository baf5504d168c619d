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
  data_.Allocate(bytes != nullptr ? GetLength() : 0);
  if (data_.Get() != nullptr) std::memcpy(data_.Get(), bytes, GetLength());
}

CComponent& CBlockValueComp::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const CBlockValueComp*>(&source);
  if (same != nullptr && same != this && source.GetTag() == GetTag()) {
    CComponent::Assign(source);
    copyFrom(same->data_.Get());
  }
  return *this;
}

void CBlockValueComp::AllocateBody() {
  data_.Allocate(GetLength());
  if (data_.Get() != nullptr) std::memset(data_.Get(), 0, GetLength());
}

void CBlockValueComp::FreeBody() {
  data_.Clear();
}

bool CBlockValueComp::endsInZero() const {
  return data_.Get() != nullptr && GetLength() != 0 && data_.Get()[GetLength() - 1] == 0;
}

CString CBlockValueComp::GetValueString() {
  if (endsInZero()) setLength(GetLength() - 1);
  if (data_.Get() == nullptr) return {};
  return CString(std::string_view(reinterpret_cast<const char*>(data_.Get()), GetLength()));
}

int CBlockValueComp::WriteBody(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  if (data_.Get() != nullptr) file->Write(data_.Get(), GetLength());
  return vex2::kSuccess;
}

int CBlockValueComp::readBlock(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  if (!vex2::HasBytesLeft(*file, GetLength())) {
    static_cast<void>(vex2::ShortRead(*file));
    return vex2::kReadFailed;
  }
  data_.Allocate(GetLength());
  return vex2::ReadExactly(*file, data_.Get(), GetLength()) ? vex2::kSuccess : vex2::kReadFailed;
}

int CBlockValueComp::ReadBody(CFile* file) {
  const int status = readBlock(file);
  if (status == vex2::kSuccess && endsInZero()) setLength(GetLength() - 1);
  return status;
}
