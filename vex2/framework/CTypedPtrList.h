#pragma once

#include <type_traits>

#include "vex2/framework/Position.h"

/// A list of pointers of the type `Pointer`. `Base` is CPtrList or CObList.
template <class Base, class Pointer>
class CTypedPtrList : public Base {
  static_assert(std::is_pointer_v<Pointer>);

 public:
  using Base::Base;

  /// The first pointer; null if the list is empty.
  Pointer GetHead() const { return static_cast<Pointer>(Base::GetHead()); }
  /// The last pointer; null if the list is empty.
  Pointer GetTail() const { return static_cast<Pointer>(Base::GetTail()); }
  /// Adds `value` as the first entry, and returns its position.
  POSITION AddHead(Pointer value) { return Base::AddHead(value); }
  /// Adds `value` as the last entry, and returns its position.
  POSITION AddTail(Pointer value) { return Base::AddTail(value); }
  /// Removes the first entry, and returns its pointer; null if the list is empty.
  Pointer RemoveHead() { return static_cast<Pointer>(Base::RemoveHead()); }
  /// Removes the last entry, and returns its pointer; null if the list is empty.
  Pointer RemoveTail() { return static_cast<Pointer>(Base::RemoveTail()); }
  /// Returns the pointer at `position`, and moves `position` to the next entry.
  Pointer GetNext(POSITION& position) const {
    return static_cast<Pointer>(Base::GetNext(position));
  }
  /// Returns the pointer at `position`, and moves `position` to the previous entry.
  Pointer GetPrev(POSITION& position) const {
    return static_cast<Pointer>(Base::GetPrev(position));
  }
  /// The pointer at `position`; null for a null position.
  Pointer GetAt(POSITION position) const { return static_cast<Pointer>(Base::GetAt(position)); }
  /// Sets the pointer at `position`; does nothing for a null position.
  void SetAt(POSITION position, Pointer value) { Base::SetAt(position, value); }
  /// The position of the first entry with this pointer; if `after` is not null, of the first such
  /// entry after the position `after`. Null if there is none.
  POSITION Find(Pointer value, POSITION after = nullptr) const { return Base::Find(value, after); }
};
