#include "vex2/framework/CPtrArray.h"

#include <algorithm>
#include <utility>

CPtrArray& CPtrArray::operator=(CPtrArray&& other) noexcept {
  entries_ = std::move(other.entries_);
  size_ = std::exchange(other.size_, 0);
  capacity_ = std::exchange(other.capacity_, 0);
  growBy_ = other.growBy_;
  return *this;
}

void CPtrArray::SetSize(int size, int growBy) {
  if (size < 0) return;
  if (growBy >= 0) growBy_ = growBy;
  const auto wanted = static_cast<std::size_t>(size);
  if (wanted > capacity_) {
    const int step = growBy_ > 0 ? growBy_ : std::clamp(GetSize() / 8, 4, 1024);
    const std::size_t capacity = std::max(wanted, capacity_ + static_cast<std::size_t>(step));
    std::unique_ptr<void*[]> entries(new void*[capacity]);
    std::copy_n(entries_.get(), size_, entries.get());
    entries_ = std::move(entries);
    capacity_ = capacity;
  }
  if (wanted > size_) std::fill(entries_.get() + size_, entries_.get() + wanted, nullptr);
  size_ = wanted;
}

void* CPtrArray::GetAt(int index) const {
  return holds(index) ? entries_[static_cast<std::size_t>(index)] : nullptr;
}

void CPtrArray::SetAt(int index, void* entry) {
  if (holds(index)) entries_[static_cast<std::size_t>(index)] = entry;
}

int CPtrArray::Add(void* entry) {
  const int index = GetSize();
  SetSize(index + 1);
  SetAt(index, entry);
  return index;
}
