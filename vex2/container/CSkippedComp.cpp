#include "vex2/container/CSkippedComp.h"

#include <algorithm>
#include <array>

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/RecordKinds.h"

CSkippedComp::CSkippedComp() : CComponent({}) {}

CSkippedComp::CSkippedComp(std::string_view tag, std::uint32_t length) : CComponent(tag, length) {}

int CSkippedComp::Read(CFile* file, std::uint32_t& counter) {
  if (file == nullptr) return vex2::kReadFailed;
  const auto head = file->Peek(vex2::kTagLength);
  if (head.size() >= vex2::kTagLength) {
    setTag({reinterpret_cast<const char*>(head.data()), vex2::kTagLength});
  }
  return CComponent::Read(file, counter);
}

int CSkippedComp::WriteBody(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  file->SetLength(file->GetLength() + GetLength());
  file->SeekToEnd();
  return vex2::kSuccess;
}

int CSkippedComp::ReadBody(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  try {
    file->Seek(GetLength(), CFile::current);
  } catch (const CFileException&) {
    // If the body cannot be skipped, the reader finds no tag after it and stops.
  }
  return vex2::kSuccess;
}

void CSkippedComp::Shorten(std::uint64_t bytes) {
  setLength(GetLength() - static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes, GetLength())));
}
