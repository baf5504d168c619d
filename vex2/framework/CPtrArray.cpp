#include "vex2/framework/CPtrArray.h"

#include <algorithm>

void CPtrArray::SetSize(int size, int growBy) {
  if (size < 0) return;
  if (growBy >= 0) growBy_ = growBy;
  const auto wanted = static_cast<std::size_t>(size);
  if (wanted > entries_.capacity()) {
    const int step = growBy_ > 0 ? growBy_ : std::clamp(GetSize() / 8, 4, 1024);
    entries_.reserve(std::max(wanted, entries_.capacity() + static_cast<std::size_t>(step)));
  }
  entries_.resize(wanted);
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
