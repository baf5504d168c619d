#include "vex2/container/CContainerComp.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "vex2/container/Encoding.h"
#include "vex2/container/TagFactory.h"

namespace {

constexpr std::uint32_t kCountLength = sizeof(std::uint16_t);
constexpr std::size_t kUsualChildren = 16;
// Of a list that is made child by child; most hold a few.
constexpr std::size_t kFirstChildren = 4;

}  // namespace

CContainerComp::CContainerComp(std::string_view tag) : CContainerComp(tag, kCountLength) {}

CContainerComp::CContainerComp(std::string_view tag, std::uint32_t fixedLength)
    : CComponent(tag, fixedLength) {}

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

bool CContainerComp::AddChild(std::unique_ptr<CComponent> child) {
  if (child == nullptr) return false;
  const std::uint64_t length = GetLength() + child->GetSize();
  if (children_.size() >= std::numeric_limits<std::uint16_t>::max() ||
      length > std::numeric_limits<std::uint32_t>::max()) {
    return false;
  }
  if (children_.capacity() == 0) children_.reserve(kFirstChildren);
  children_.push_back(std::move(child));
  count_ = static_cast<std::uint16_t>(children_.size());
  setLength(static_cast<std::uint32_t>(length));
  return true;
}

bool CContainerComp::RemoveChild(int index) {
  const CComponent* child = GetChild(index);
  if (child == nullptr) return false;
  // The length may have been read from a file that did not tell the truth.
  const auto size = static_cast<std::uint32_t>(child->GetSize());
  children_.erase(children_.begin() + index);
  count_ = static_cast<std::uint16_t>(children_.size());
  setLength(GetLength() - size);
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
  vex2::WriteValue(*file, count_);
  return WriteChildren(file);
}

int CContainerComp::ReadBody(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  FreeBody();
  if (const int status = vex2::ReadValue(*file, count_); status != vex2::kSuccess) return status;
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
    keepChild(std::move(child));
  }
  return vex2::kSuccess;
}
