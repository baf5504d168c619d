#pragma once

#include <map>

#include "vex2/framework/CString.h"
#include "vex2/framework/Position.h"
#include "vex2/framework/Slot.h"

namespace vex2 {

/// What the framework's maps share: texts, compared exactly, to pointers that the map does not
/// own. It is walked in the order of its keys:
///
///     for (POSITION at = map.GetStartPosition(); at != nullptr;) {
///       map.GetNextAssoc(at, key, value);
///       ...  // may remove `key`
///     }
///
/// Maps are moved, never copied; a move keeps positions good. Not thread-safe.
template <class Pointer>
class MapOf {
 public:
  using Stored = Pointer;

  /// The block size is how many entries to allocate at a time, and no longer used.
  explicit MapOf(int /*blockSize*/ = 10) {}
  MapOf(MapOf&&) noexcept = default;
  MapOf& operator=(MapOf&&) noexcept = default;

  int GetCount() const { return static_cast<int>(entries_.size()); }
  bool IsEmpty() const { return entries_.empty(); }

  /// Whether there is an entry for `key`, and then `value` is set to its pointer.
  bool Lookup(const CString& key, Pointer& value) const {
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return false;
    value = entry->second;
    return true;
  }
  /// The pointer for `key`, null without an entry.
  Pointer GetAt(const CString& key) const {
    Pointer value = nullptr;
    Lookup(key, value);
    return value;
  }
  /// Adds an entry for `key`, or gives the one there is another pointer.
  void SetAt(const CString& key, Pointer value) { entries_[key] = value; }

  Pointer operator[](const CString& key) const { return GetAt(key); }
  Slot<MapOf, CString, Pointer> operator[](const CString& key) { return {*this, key}; }

  /// False when there was no entry for `key`.
  bool RemoveKey(const CString& key) { return entries_.erase(key) > 0; }
  void RemoveAll() { entries_.clear(); }

  POSITION GetStartPosition() const { return toPosition(entries_.begin()); }
  /// Sets `key` and `value` to the entry at `position` and moves that on to the next one. A null
  /// position changes nothing.
  void GetNextAssoc(POSITION& position, CString& key, Pointer& value) const {
    if (position == nullptr) return;
    const auto* const entry = reinterpret_cast<const Entry*>(position);
    key = entry->first;
    value = entry->second;
    position = toPosition(entries_.upper_bound(entry->first));
  }
  /// The pointer at `position`, which moves on to the next entry; null at a null position. Takes no
  /// memory, which the copy of a key may.
  Pointer GetNextValue(POSITION& position) const {
    if (position == nullptr) return nullptr;
    const auto* const entry = reinterpret_cast<const Entry*>(position);
    position = toPosition(entries_.upper_bound(entry->first));
    return entry->second;
  }

 private:
  using Entries = std::map<CString, Pointer>;
  using Entry = typename Entries::value_type;

  // A position is the address of an entry; positions are not const, entries here are.
  POSITION toPosition(typename Entries::const_iterator at) const {
    if (at == entries_.end()) return nullptr;
    return reinterpret_cast<POSITION>(const_cast<Entry*>(&*at));
  }

  Entries entries_;
};

}  // namespace vex2
