#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "vex2/container/CComponent.h"

namespace vex2 {

/// The components that a list owns, in order, in a growing array. Lists are the most frequent
/// records of a plate setup, so an empty array allocates nothing, and most others allocate once.
class ComponentArray {
 public:
  ComponentArray() = default;
  ~ComponentArray() { Clear(); }
  ComponentArray(const ComponentArray&) = delete;
  ComponentArray& operator=(const ComponentArray&) = delete;

  /// The number of components.
  std::size_t Size() const { return size_; }
  /// The components, owned by the array; valid until it changes.
  std::span<CComponent* const> All() const { return {components_.get(), size_}; }

  /// Makes room for `count` components. If this throws `std::bad_alloc`, nothing changes.
  void Reserve(std::size_t count) {
    if (count <= capacity_) return;
    auto room = std::make_unique_for_overwrite<CComponent*[]>(count);
    std::copy_n(components_.get(), size_, room.get());
    components_ = std::move(room);
    capacity_ = count;
  }
  /// Makes room for one more component. If this throws `std::bad_alloc`, nothing changes.
  void ReserveNext() {
    constexpr std::size_t kFirst = 4;  // most lists have few children
    if (size_ == capacity_) Reserve(std::max(kFirst, 2 * size_));
  }
  /// Appends a component. If this throws `std::bad_alloc`, the array does not change.
  void Append(std::unique_ptr<CComponent> component) {
    ReserveNext();
    components_[size_++] = component.release();
  }
  /// Deletes the component at `index`, which must be in range.
  void Remove(std::size_t index) {
    CComponent** const removed = components_.get() + index;
    delete *removed;
    std::copy(removed + 1, components_.get() + size_, removed);
    --size_;
  }
  /// Deletes all components, but keeps the allocated room.
  void Clear() {
    for (CComponent* component : All()) delete component;
    size_ = 0;
  }

 private:
  std::unique_ptr<CComponent*[]> components_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace vex2
