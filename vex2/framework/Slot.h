#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {

/// What the subscript of a container of pointers gives: it reads as the pointer that is there, null
/// where none is, and what is assigned to it is stored as `SetAt` does. Reading adds no entry.
/// Good for as long as the container is.
template <class Container, class Index, class Pointer>
class Slot {
 public:
  Slot(Container& container, const Index& index) : container_(container), index_(index) {}
  Slot(const Slot&) = default;

  operator Pointer() const { return container_.GetAt(index_); }  // NOLINT: stands for the pointer
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
