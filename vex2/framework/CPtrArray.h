#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/framework/Slot.h"

/// A growable array of pointers, which it does not own, with indexes from 0. Reading out of range
/// gives null, writing there does nothing. Arrays are moved, never copied. Not thread-safe.
class VEX2_API CPtrArray : public CObject {
 public:
  CPtrArray() = default;
  CPtrArray(CPtrArray&& other) noexcept { *this = std::move(other); }
  CPtrArray& operator=(CPtrArray&& other) noexcept;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  int GetSize() const { return static_cast<int>(size_); }
  /// How many entries fit before memory is taken again.
  int GetCapacity() const { return static_cast<int>(capacity_); }

  /// Cuts the array to `size` entries or adds null ones; below 0 does nothing. `growBy` sets how
  /// many entries the capacity grows by at least when it has to, from then on: 0 is an eighth of
  /// the size, between 4 and 1024, and below 0 leaves the step as it is.
  void SetSize(int size, int growBy = -1);

  void* GetAt(int index) const;
  void SetAt(int index, void* entry);
  void* operator[](int index) const { return GetAt(index); }
  vex2::Slot<CPtrArray, int, void*> operator[](int index) { return {*this, index}; }

  /// Adds an entry at the end and returns its index.
  int Add(void* entry);
  void RemoveAll() { size_ = 0; }

 private:
  bool holds(int index) const { return index >= 0 && index < GetSize(); }

  std::unique_ptr<void*[]> entries_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  int growBy_ = 0;
};
