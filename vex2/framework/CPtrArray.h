#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/framework/Slot.h"

/// A growable array of pointers, with indexes from 0. The array does not own the objects. Reading
/// out of range returns null; writing out of range does nothing. Arrays are moved, never copied.
/// Not thread-safe.
class VEX2_API CPtrArray : public CObject {
 public:
  /// An empty array.
  CPtrArray() = default;
  /// Takes the entries of `other`, which is empty afterwards.
  CPtrArray(CPtrArray&& other) noexcept { *this = std::move(other); }
  /// Takes the entries of `other`, which is empty afterwards.
  CPtrArray& operator=(CPtrArray&& other) noexcept;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  /// The number of entries.
  int GetSize() const { return static_cast<int>(size_); }
  /// The number of entries that fit before the array allocates again.
  int GetCapacity() const { return static_cast<int>(capacity_); }

  /// Truncates the array to `size` entries, or extends it with null entries; does nothing for a
  /// negative `size`. `growBy` sets the smallest step by which the capacity grows from then on: 0
  /// means an eighth of the size, between 4 and 1024; a negative value keeps the step.
  void SetSize(int size, int growBy = -1);

  /// The entry at `index`, from 0; null for an index out of range.
  void* GetAt(int index) const;
  /// Sets the entry at `index`, from 0; does nothing for an index out of range.
  void SetAt(int index, void* entry);
  /// The entry at `index`, from 0; null for an index out of range.
  void* operator[](int index) const { return GetAt(index); }
  /// A slot for the entry at `index`, from 0, which can be read or assigned; see `vex2::Slot`.
  vex2::Slot<CPtrArray, int, void*> operator[](int index) { return {*this, index}; }

  /// Adds an entry at the end and returns its index.
  int Add(void* entry);
  /// Removes all entries, but keeps the capacity.
  void RemoveAll() { size_ = 0; }

 private:
  bool holds(int index) const { return index >= 0 && index < GetSize(); }

  std::unique_ptr<void*[]> entries_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  int growBy_ = 0;
};
