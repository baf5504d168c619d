#include "vex2/container/CContainerComp.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include "vex2/container/CSkippedComp.h"
#include "vex2/container/Status.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/Encoding.h"

namespace {

constexpr std::uint16_t kCountLength = sizeof(std::uint16_t);
constexpr std::size_t kUsualChildren = 16;

// A skipped record may declare more bytes than the file has. A save would write that many zeros,
// possibly gigabytes, so the placeholder keeps only the bytes that the file held.
void shortenToFile(CComponent& child, const CFile& file) {
  if (file.GetPosition() <= file.GetLength()) return;
  auto* skipped = dynamic_cast<CSkippedComp*>(&child);
  if (skipped != nullptr) skipped->Shorten(file.GetPosition() - file.GetLength());
}

}  // namespace

CContainerComp::CContainerComp(std::string_view tag) : CContainerComp(tag, kCountLength) {}

CContainerComp::CContainerComp(std::string_view tag, std::uint16_t fixedLength)
    : CComponent(tag, fixedLength), fixedLength_(fixedLength) {}

CContainerComp::~CContainerComp() = default;

int CContainerComp::GetChildCount() const {
  return static_cast<int>(children_.Size());
}

void CContainerComp::reserveChildren(std::size_t count) {
  children_.Reserve(count);
}

CComponent* CContainerComp::GetChild(int index) const {
  return index >= 0 && index < GetChildCount() ? children_.All()[static_cast<std::size_t>(index)]
                                               : nullptr;
}

CComponent* CContainerComp::FindChild(std::string_view tag) const {
  for (CComponent* child : children_.All()) {
    if (child->GetTag() == tag) return child;
  }
  return nullptr;
}

// The number of bytes that the children need in the file. The declared length may differ from it.
std::uint64_t CContainerComp::lengthOfChildren() const {
  const auto all = children_.All();
  return std::accumulate(
      all.begin(), all.end(), std::uint64_t{0},
      [](std::uint64_t sum, const auto& child) { return sum + child->GetSize(); });
}

// Subtracts the size of removed children from the length and adds the size of new ones. Returns
// false and keeps the length if the result does not fit in 32 bits.
bool CContainerComp::changeLength(std::uint64_t removed, std::uint64_t added) {
  std::uint64_t length = std::uint64_t{GetLength()} + added;
  // A list may declare fewer bytes than it holds. The subtraction could then go below 0 and wrap
  // around, or give 0, and a body of length 0 is not written. So compute the true length instead.
  length = length >= removed + fixedLength_ ? length - removed
                                            : fixedLength_ + lengthOfChildren() - removed + added;
  if (length > std::numeric_limits<std::uint32_t>::max()) return false;
  setLength(static_cast<std::uint32_t>(length));
  return true;
}

bool CContainerComp::AddChild(std::unique_ptr<CComponent> child) {
  if (child == nullptr || children_.Size() >= std::numeric_limits<std::uint16_t>::max()) {
    return false;
  }
  children_.ReserveNext();
  if (!changeLength(0, child->GetSize())) return false;
  keepChild(std::move(child));
  count_ = static_cast<std::uint16_t>(children_.Size());
  return true;
}

bool CContainerComp::RemoveChild(int index) {
  const CComponent* child = GetChild(index);
  if (child == nullptr) return false;
  if (!changeLength(child->GetSize(), 0)) setLength(std::numeric_limits<std::uint32_t>::max());
  children_.Remove(static_cast<std::size_t>(index));
  count_ = static_cast<std::uint16_t>(children_.Size());
  return true;
}

bool CContainerComp::ReplaceChild(int index, std::unique_ptr<CComponent> child) {
  const CComponent* old = GetChild(index);
  if (old == nullptr) return AddChild(std::move(child));
  if (child == nullptr || !changeLength(old->GetSize(), child->GetSize())) return false;
  children_.Remove(static_cast<std::size_t>(index));
  keepChild(std::move(child));
  count_ = static_cast<std::uint16_t>(children_.Size());
  return true;
}

CComponent& CContainerComp::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const CContainerComp*>(&source);
  if (same == nullptr || same == this || source.GetTag() != GetTag()) return *this;
  CComponent::Assign(source);
  FreeBody();
  reserveChildren(same->children_.Size());
  for (const CComponent* child : same->children_.All()) {
    std::unique_ptr<CComponent> clone;
    if (CloneComponent(*child, clone) == 1) keepChild(std::move(clone));
  }
  count_ = static_cast<std::uint16_t>(children_.Size());
  return *this;
}

void CContainerComp::FreeBody() {
  children_.Clear();
}

int CContainerComp::WriteBody(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  vex2::WriteField(*file, count_);
  return WriteChildren(file);
}

int CContainerComp::ReadBody(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  FreeBody();
  if (!vex2::ReadField(*file, count_)) return vex2::kReadFailed;
  return ReadChildren(file);
}

int CContainerComp::WriteChildren(CFile* file) {
  for (CComponent* child : children_.All()) {
    if (const int status = child->Write(file); status != vex2::kSuccess) return status;
  }
  return vex2::kSuccess;
}

int CContainerComp::ReadChildren(CFile* file) {
  // The count comes from the file, so reserve no more than most lists need.
  reserveChildren(std::min<std::size_t>(count_, kUsualChildren));
  for (int pass = 0; pass < count_; ++pass) {
    std::unique_ptr<CComponent> child;
    if (!vex2::CreateNextComponent(*file, child)) return vex2::kSuccess;
    if (const int status = child->Read(file); status != vex2::kSuccess) return status;
    shortenToFile(*child, *file);
    keepChild(std::move(child));
  }
  return vex2::kSuccess;
}
