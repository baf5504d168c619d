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

  /// Sets `value` to the pointer for `key`. If there is no entry for `key`, returns false and
  /// leaves `value` unchanged.
  bool Lookup(const Key& key, Pointer& value) const {
    typename Base::Stored found = nullptr;
    if (!Base::Lookup(key, found)) return false;
    value = static_cast<Pointer>(found);
    return true;
  }
  /// The pointer for `key`; null if there is no entry.
  Pointer GetAt(const Key& key) const { return static_cast<Pointer>(Base::GetAt(key)); }
  /// Adds an entry for `key`, or changes the pointer of the existing entry.
  void SetAt(const Key& key, Pointer value) { Base::SetAt(key, value); }

  /// The pointer for `key`; null if there is no entry.
  Pointer operator[](const Key& key) const { return GetAt(key); }
  /// A slot for the entry of `key`, which can be read or assigned; see `vex2::Slot`.
  vex2::Slot<CTypedPtrMap, Key, Pointer> operator[](const Key& key) { return {*this, key}; }

  /// Sets `key` and `value` to the entry at `position`, and moves `position` to the next entry.
  /// Does nothing for a null position.
  void GetNextAssoc(POSITION& position, Key& key, Pointer& value) const {
    if (position == nullptr) return;
    typename Base::Stored found = nullptr;
    Base::GetNextAssoc(position, key, found);
    value = static_cast<Pointer>(found);
  }
  /// Returns the pointer at `position`, and moves `position` to the next entry. Returns null for a
  /// null position. Unlike `GetNextAssoc`, it never allocates.
  Pointer GetNextValue(POSITION& position) const {
    return static_cast<Pointer>(Base::GetNextValue(position));
  }
};
