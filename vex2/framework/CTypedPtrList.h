#pragma once

#include <type_traits>

#include "vex2/framework/Position.h"

/// A list of pointers of the type `Pointer`. `Base` is CPtrList or CObList.
template <class Base, class Pointer>
class CTypedPtrList : public Base {
  static_assert(std::is_pointer_v<Pointer>);

 public:
  using Base::Base;

  Pointer GetHead() const { return static_cast<Pointer>(Base::GetHead()); }
  Pointer GetTail() const { return static_cast<Pointer>(Base::GetTail()); }
  POSITION AddHead(Pointer value) { return Base::AddHead(value); }
  POSITION AddTail(Pointer value) { return Base::AddTail(value); }
  Pointer RemoveHead() { return static_cast<Pointer>(Base::RemoveHead()); }
  Pointer RemoveTail() { return static_cast<Pointer>(Base::RemoveTail()); }
  Pointer GetNext(POSITION& position) const {
    return static_cast<Pointer>(Base::GetNext(position));
  }
  Pointer GetPrev(POSITION& position) const {
    return static_cast<Pointer>(Base::GetPrev(position));
  }
  Pointer GetAt(POSITION position) const { return static_cast<Pointer>(Base::GetAt(position)); }
  void SetAt(POSITION position, Pointer value) { Base::SetAt(position, value); }
  POSITION Find(Pointer value, POSITION after = nullptr) const { return Base::Find(value, after); }
};
