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
// Of a list that is made child by child; most hold a few.
constexpr std::size_t kFirstChildren = 4;

// A record that is stepped over may end behind the file. A save would make its length true, with
// gigabytes of zeros, so it keeps no more bytes than the file held.
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

CComponent* CContainerComp::GetChild(int index) const {
  return index >= 0 && index < GetChildCount() ? children_[static_cast<std::size_t>(index)].get()
                                               : nullptr;
}

CComponent* CContainerComp::FindChild(std::string_view tag) const {
  for (const auto& child : children_) {
    if (child->GetTag() == tag) return child.get();
  }
  return nullptr;
}

// What the file must hold, whatever the length says.
std::uint64_t CContainerComp::lengthOfChildren() const {
  return std::accumulate(
      children_.begin(), children_.end(), std::uint64_t{0},
      [](std::uint64_t sum, const auto& child) { return sum + child->GetSize(); });
}

// Takes children of so many bytes off the length and adds others. False, and the length stays,
// where 32 bits do not hold the result.
bool CContainerComp::changeLength(std::uint64_t removed, std::uint64_t added) {
  std::uint64_t length = std::uint64_t{GetLength()} + added;
  // A file may declare less than it holds. Below 0 the length would turn over, and at 0 the body
  // would not be written, so from here on it is the true one.
  length = length >= removed + fixedLength_ ? length - removed
                                            : fixedLength_ + lengthOfChildren() - removed + added;
  if (length > std::numeric_limits<std::uint32_t>::max()) return false;
  setLength(static_cast<std::uint32_t>(length));
  return true;
}

bool CContainerComp::AddChild(std::unique_ptr<CComponent> child) {
  if (child == nullptr || children_.size() >= std::numeric_limits<std::uint16_t>::max()) {
    return false;
  }
  if (children_.size() == children_.capacity()) {
    children_.reserve(std::max(kFirstChildren, 2 * children_.size()));
  }
  if (!changeLength(0, child->GetSize())) return false;
  children_.push_back(std::move(child));
  count_ = static_cast<std::uint16_t>(children_.size());
  return true;
}

bool CContainerComp::RemoveChild(int index) {
  const CComponent* child = GetChild(index);
  if (child == nullptr) return false;
  if (!changeLength(child->GetSize(), 0)) setLength(std::numeric_limits<std::uint32_t>::max());
  children_.erase(children_.begin() + index);
  count_ = static_cast<std::uint16_t>(children_.size());
  return true;
}

bool CContainerComp::ReplaceChild(int index, std::unique_ptr<CComponent> child) {
  const CComponent* old = GetChild(index);
  if (old == nullptr) return AddChild(std::move(child));
  if (child == nullptr || !changeLength(old->GetSize(), child->GetSize())) return false;
  children_.erase(children_.begin() + index);
  children_.push_back(std::move(child));
  count_ = static_cast<std::uint16_t>(children_.size());
  return true;
}

void CContainerComp::keepChild(std::unique_ptr<CComponent> child) {
  children_.push_back(std::move(child));
}

CComponent& CContainerComp::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const CContainerComp*>(&source);
  if (same == nullptr || same == this || source.GetTag() != GetTag()) return *this;
  CComponent::Assign(source);
  FreeBody();
  children_.reserve(same->children_.size());
  for (const auto& child : same->children_) {
    std::unique_ptr<CComponent> clone;
    if (CloneComponent(*child, clone) == 1) children_.push_back(std::move(clone));
  }
  count_ = static_cast<std::uint16_t>(children_.size());
  return *this;
}

void CContainerComp::FreeBody() {
  children_.clear();
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
  for (const auto& child : children_) {
    if (const int status = child->Write(file); status != vex2::kSuccess) return status;
  }
  return vex2::kSuccess;
}

int CContainerComp::ReadChildren(CFile* file) {
  // The count is the file's word, so room is made for no more children than most lists have.
  children_.reserve(std::min<std::size_t>(count_, kUsualChildren));
  for (int pass = 0; pass < count_; ++pass) {
    std::unique_ptr<CComponent> child;
    if (!vex2::CreateNextComponent(*file, child)) return vex2::kSuccess;
    if (const int status = child->Read(file); status != vex2::kSuccess) return status;
    shortenToFile(*child, *file);
    keepChild(std::move(child));
  }
  return vex2::kSuccess;
}
