#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {

/// The result of the subscript operator of a container of pointers: it refers to the entry for an
/// index or key. Reading it returns the entry's pointer, or null if there is no entry, and adds
/// none; assigning to it calls `SetAt`. Valid as long as the container.
template <class Container, class Index, class Pointer>
class Slot {
 public:
  /// Refers to the entry for `index` in `container`.
  Slot(Container& container, const Index& index) : container_(container), index_(index) {}
  /// Refers to the same entry.
  Slot(const Slot&) = default;

  /// The entry's pointer; null if there is no entry.
  operator Pointer() const { return container_.GetAt(index_); }  // NOLINT: represents the pointer
  /// The entry's pointer; null if there is no entry.
  Pointer operator->() const { return *this; }

  /// Sets the entry to `pointer`.
  Slot& operator=(Pointer pointer) {
    container_.SetAt(index_, pointer);
    return *this;
  }
  /// Sets the entry to the pointer of the other slot's entry.
  Slot& operator=(const Slot& other) { return *this = static_cast<Pointer>(other); }

 private:
  Container& container_;
  Index index_;
};

}  // namespace vex2
