#pragma once

#include <type_traits>

#include "vex2/framework/Position.h"
#include "vex2/framework/Slot.h"

/// A map from texts to pointers of the type `Pointer`. `Base` is CMapStringToOb and `Key` is
/// CString.
template <class Base, class Key, class Pointer>
class CTypedPtrMap : public Base {
  static_assert(std::is_pointer_v<Pointer>);

 public:
  using Base::Base;

  bool Lookup(const Key& key, Pointer& value) const {
    typename Base::Stored found = nullptr;
    if (!Base::Lookup(key, found)) return false;
    value = static_cast<Pointer>(found);
    return true;
  }
  Pointer GetAt(const Key& key) const { return static_cast<Pointer>(Base::GetAt(key)); }
  void SetAt(const Key& key, Pointer value) { Base::SetAt(key, value); }

  Pointer operator[](const Key& key) const { return GetAt(key); }
  vex2::Slot<CTypedPtrMap, Key, Pointer> operator[](const Key& key) { return {*this, key}; }

  void GetNextAssoc(POSITION& position, Key& key, Pointer& value) const {
    if (position == nullptr) return;
    typename Base::Stored found = nullptr;
    Base::GetNextAssoc(position, key, found);
    value = static_cast<Pointer>(found);
  }
  Pointer GetNextValue(POSITION& position) const {
    return static_cast<Pointer>(Base::GetNextValue(position));
  }
};
