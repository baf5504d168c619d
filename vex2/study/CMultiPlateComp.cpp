#include "vex2/study/CMultiPlateComp.h"

#include <algorithm>
#include <limits>

#include "vex2/container/Status.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/study/CRQPlateComp.h"

using vex2::Kind;
using vex2::TagOf;

CMultiPlateComp::CMultiPlateComp() : CContainerComp(TagOf(Kind::kPlates)) {}

CMultiPlateComp::~CMultiPlateComp() = default;

bool CMultiPlateComp::AddPlate(std::unique_ptr<CRQPlateComp> plate) {
  if (plate == nullptr || GetChildCount() >= std::numeric_limits<std::uint16_t>::max()) {
    return false;
  }
  // The length from a file may have any value. The sum must not wrap around to 0, because a length
  // of 0 means that there is no body.
  constexpr std::uint64_t kMaxLength = std::numeric_limits<std::uint32_t>::max();
  const std::uint64_t length = std::min(GetLength() + plate->GetSize(), kMaxLength);
  keepChild(std::move(plate));
  setCount(static_cast<std::uint16_t>(GetChildCount()));
  setLength(static_cast<std::uint32_t>(length));
  return true;
}

bool CMultiPlateComp::RemovePlate(const CString& name) {
  return RemoveChild(FindPlate(name));
}

void CMultiPlateComp::GetPlateLists(CStringList& names, CStringList& dates) const {
  names.RemoveAll();
  dates.RemoveAll();
  for (int index = 0; index < GetChildCount(); ++index) {
    const CRQPlateComp* plate = GetPlateAt(index);
    if (plate == nullptr) continue;
    names.AddTail(plate->GetPlateName());
    dates.AddTail(plate->GetLastModifiedDate());
  }
}

int CMultiPlateComp::FindPlate(const CString& name) const {
  for (int index = 0; index < GetChildCount(); ++index) {
    const CRQPlateComp* plate = GetPlateAt(index);
    if (plate != nullptr && plate->GetPlateName() == name) return index;
  }
  return -1;
}

CRQPlateComp* CMultiPlateComp::GetPlateAt(int index) const {
  return dynamic_cast<CRQPlateComp*>(GetChild(index));
}

int CMultiPlateComp::ReadChildren(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  const int count = GetCount();
  setCount(0);
  for (int pass = 0; pass < count; ++pass) {
    std::unique_ptr<CComponent> child;
    if (!vex2::CreateNextComponent(*file, child)) break;
    if (child->GetTag() != TagOf(Kind::kPlate)) return vex2::kNotFound;
    if (const int status = child->Read(file); status != vex2::kSuccess) return status;
    AddPlate(std::unique_ptr<CRQPlateComp>(static_cast<CRQPlateComp*>(child.release())));
  }
  return vex2::kSuccess;
}
