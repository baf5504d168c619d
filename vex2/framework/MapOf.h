#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "vex2/framework/CString.h"
#include "vex2/framework/Position.h"
#include "vex2/framework/Slot.h"

namespace vex2 {

/// The base of the framework's maps. The keys are texts, compared exactly; the values are pointers
/// to objects that the map does not own. A map is walked in the order of its keys:
///
///     for (POSITION at = map.GetStartPosition(); at != nullptr;) {
///       map.GetNextAssoc(at, key, value);
///       ...  // may remove `key`
///     }
/// Maps are moved, never copied; positions stay valid after a move. Not thread-safe.
template <class Pointer>
class MapOf {
 public:
  /// The type of the pointers.
  using Stored = Pointer;

  /// An empty map. The block size, once the number of entries to allocate at a time, is ignored.
  explicit MapOf(int /*blockSize*/ = 10) {}
  /// Takes the entries of `other`, which is empty afterwards.
  MapOf(MapOf&& other) noexcept { *this = std::move(other); }
  /// Removes all entries and takes those of `other`, which is empty afterwards.
  MapOf& operator=(MapOf&& other) noexcept {
    if (this == &other) return *this;
    RemoveAll();
    entries_ = std::move(other.entries_);
    count_ = std::exchange(other.count_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
    return *this;
  }
  ~MapOf() { RemoveAll(); }

  /// The number of entries.
  int GetCount() const { return static_cast<int>(count_); }
  /// Whether the map has no entries.
  bool IsEmpty() const { return count_ == 0; }

  /// Sets `value` to the pointer for `key`. If there is no entry for `key`, returns false and
  /// leaves `value` unchanged.
  bool Lookup(const CString& key, Pointer& value) const {
    const std::size_t place = placeOf(key);
    if (!holds(place, key)) return false;
    value = entries_[place]->value;
    return true;
  }
  /// The pointer for `key`; null if there is no entry.
  Pointer GetAt(const CString& key) const {
    Pointer value = nullptr;
    Lookup(key, value);
    return value;
  }
  /// Adds an entry for `key`, or changes the pointer of the existing entry.
  void SetAt(const CString& key, Pointer value) {
    const std::size_t place = placeOf(key);
    if (holds(place, key)) {
      entries_[place]->value = value;
    } else {
      insert(place, std::unique_ptr<Entry>(new Entry{key, value}));
    }
  }

  /// The pointer for `key`; null if there is no entry.
  Pointer operator[](const CString& key) const { return GetAt(key); }
  /// A slot for the entry of `key`, which can be read or assigned; see `vex2::Slot`.
  Slot<MapOf, CString, Pointer> operator[](const CString& key) { return {*this, key}; }

  /// Removes the entry for `key`. Returns false if there was none.
  bool RemoveKey(const CString& key) {
    const std::size_t place = placeOf(key);
    if (!holds(place, key)) return false;
    const std::unique_ptr<Entry> removed(entries_[place]);
    std::copy(entries_.get() + place + 1, entries_.get() + count_, entries_.get() + place);
    --count_;
    return true;
  }
  /// Removes all entries.
  void RemoveAll() {
    while (count_ > 0) delete entries_[--count_];
  }

  /// The position of the entry with the first key; null if the map is empty.
  POSITION GetStartPosition() const { return toPosition(0); }
  /// Sets `key` and `value` to the entry at `position`, and moves `position` to the next entry.
  /// Does nothing for a null position.
  void GetNextAssoc(POSITION& position, CString& key, Pointer& value) const {
    if (position == nullptr) return;
    const auto* const entry = reinterpret_cast<const Entry*>(position);
    key = entry->key;
    value = entry->value;
    position = toPosition(placeOf(entry->key) + 1);
  }
  /// Returns the pointer at `position`, and moves `position` to the next entry. Returns null for a
  /// null position. Unlike `GetNextAssoc`, which copies the key, it never allocates.
  Pointer GetNextValue(POSITION& position) const {
    if (position == nullptr) return nullptr;
    const auto* const entry = reinterpret_cast<const Entry*>(position);
    position = toPosition(placeOf(entry->key) + 1);
    return entry->value;
  }

 private:
  // A position is the address of an entry, which does not change until the entry is removed.
  struct Entry {
    CString key;
    Pointer value;
  };

  // The index of `key`, or the index at which it would be inserted.
  std::size_t placeOf(const CString& key) const {
    Entry* const* const begin = entries_.get();
    return static_cast<std::size_t>(std::lower_bound(begin, begin + count_, key,
                                                     [](const Entry* entry, const CString& text) {
                                                       return entry->key < text;
                                                     }) -
                                    begin);
  }
  bool holds(std::size_t place, const CString& key) const {
    return place < count_ && entries_[place]->key == key;
  }
  void insert(std::size_t place, std::unique_ptr<Entry> entry) {
    if (count_ == capacity_) {
      const std::size_t capacity = std::max<std::size_t>(8, 2 * capacity_);
      std::unique_ptr<Entry*[]> entries(new Entry*[capacity]);
      std::copy_n(entries_.get(), count_, entries.get());
      entries_ = std::move(entries);
      capacity_ = capacity;
    }
    std::copy_backward(entries_.get() + place, entries_.get() + count_,
                       entries_.get() + count_ + 1);
    entries_[place] = entry.release();
    ++count_;
  }
  POSITION toPosition(std::size_t place) const {
    return place < count_ ? reinterpret_cast<POSITION>(entries_[place]) : nullptr;
  }

  std::unique_ptr<Entry*[]> entries_;  // in the order of their keys
  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace vex2
