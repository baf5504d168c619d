#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {

/// The result of the subscript operator of a container of pointers. Reading it returns the pointer,
/// null if there is none, and adds no entry; assigning to it calls `SetAt`. Valid as long as the
/// container.
template <class Container, class Index, class Pointer>
class Slot {
 public:
  Slot(Container& container, const Index& index) : container_(container), index_(index) {}
  Slot(const Slot&) = default;

  operator Pointer() const { return container_.GetAt(index_); }  // NOLINT: represents the pointer
  Pointer operator->() const { return *this; }

  Slot& operator=(Pointer pointer) {
    container_.SetAt(index_, pointer);
    return *this;
  }
  Slot& operator=(const Slot& other) { return *this = static_cast<Pointer>(other); }

 private:
  Container& container_;
  Index index_;
};

}  // namespace vex2
