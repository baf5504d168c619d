#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {

/// The result of the subscript operator of a container of pointers. Reading it returns the pointer,
/// null if there is none, and adds no entry; assigning to it calls `SetAt`. Valid as long as the
/// container.
template <class Container, class Index, class Pointer>
class Slot {
 public:
  /// The place at `index` of `container`.
  Slot(Container& container, const Index& index) : container_(container), index_(index) {}
  /// Refers to the same place.
  Slot(const Slot&) = default;

  /// The pointer in the place; null if there is none.
  operator Pointer() const { return container_.GetAt(index_); }  // NOLINT: represents the pointer
  /// The pointer in the place; null if there is none.
  Pointer operator->() const { return *this; }

  /// Stores `pointer` in the place.
  Slot& operator=(Pointer pointer) {
    container_.SetAt(index_, pointer);
    return *this;
  }
  /// Stores the pointer of the other place in this one.
  Slot& operator=(const Slot& other) { return *this = static_cast<Pointer>(other); }

 private:
  Container& container_;
  Index index_;
};

}  // namespace vex2
