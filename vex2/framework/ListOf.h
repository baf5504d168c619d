#pragma once

#include <algorithm>
#include <iterator>
#include <list>

#include "vex2/framework/Position.h"

namespace vex2 {

/// What the framework's lists share: a doubly linked list of `Value`s, walked by positions:
///
///     for (POSITION at = list.GetHeadPosition(); at != nullptr;) use(list.GetNext(at));
///
/// A list of pointers does not own what they point at. Where there is nothing to give, a null
/// position or the empty value (null, the empty text) is given; a null position that is handed in
/// does nothing. Lists are moved, never copied; a move keeps positions good. Not thread-safe.
template <class Value>
class ListOf {
 public:
  /// The block size is how many entries to allocate at a time, and no longer used.
  explicit ListOf(int /*blockSize*/ = 10) {}
  ListOf(ListOf&&) noexcept = default;
  ListOf& operator=(ListOf&&) noexcept = default;

  int GetCount() const { return static_cast<int>(nodes_.size()); }
  bool IsEmpty() const { return nodes_.empty(); }

  Value GetHead() const { return GetAt(GetHeadPosition()); }
  Value GetTail() const { return GetAt(GetTailPosition()); }

  /// Put `value` first or last, and return its position.
  POSITION AddHead(const Value& value) { return insert(nodes_.begin(), value); }
  POSITION AddTail(const Value& value) { return insert(nodes_.end(), value); }

  /// Take the first or last entry out, and return its value.
  Value RemoveHead() { return take(GetHeadPosition()); }
  Value RemoveTail() { return take(GetTailPosition()); }
  void RemoveAt(POSITION position) { take(position); }
  void RemoveAll() { nodes_.clear(); }

  POSITION GetHeadPosition() const { return toPosition(nodes_.begin()); }
  POSITION GetTailPosition() const {
    return IsEmpty() ? nullptr : toPosition(std::prev(nodes_.end()));
  }

  /// Return the value at `position` and move that on to the next or previous one.
  Value GetNext(POSITION& position) const {
    const Value value = GetAt(position);
    if (position != nullptr) position = toPosition(std::next(toNode(position)->self));
    return value;
  }
  Value GetPrev(POSITION& position) const {
    const Value value = GetAt(position);
    if (position != nullptr) position = before(position);
    return value;
  }

  Value GetAt(POSITION position) const {
    return position != nullptr ? toNode(position)->value : Value();
  }
  void SetAt(POSITION position, const Value& value) {
    if (position != nullptr) toNode(position)->value = value;
  }

  /// The first entry with this value, behind `after` when that is not null.
  POSITION Find(const Value& value, POSITION after = nullptr) const {
    const auto start = after != nullptr ? std::next(toNode(after)->self) : nodes_.begin();
    return toPosition(
        std::find_if(start, nodes_.end(), [&](const Node& node) { return node.value == value; }));
  }
  /// The entry at `index`, from 0; null for an index out of range.
  POSITION FindIndex(int index) const {
    if (index < 0 || index >= GetCount()) return nullptr;
    return toPosition(std::next(nodes_.begin(), index));
  }

 private:
  // A position is the address of a node, which knows its way back into the list.
  struct Node;
  using Nodes = std::list<Node>;
  using Iterator = typename Nodes::const_iterator;
  struct Node {
    Value value;
    Iterator self;
  };

  static Node* toNode(POSITION position) { return reinterpret_cast<Node*>(position); }
  POSITION toPosition(Iterator at) const {
    // Positions are not const, entries here are.
    return at != nodes_.end() ? reinterpret_cast<POSITION>(const_cast<Node*>(&*at)) : nullptr;
  }
  POSITION before(POSITION position) const {
    const Iterator at = toNode(position)->self;
    return at != nodes_.begin() ? toPosition(std::prev(at)) : nullptr;
  }
  POSITION insert(Iterator at, const Value& value) {
    const auto placed = nodes_.insert(at, Node{value, {}});
    placed->self = placed;
    return toPosition(placed);
  }
  Value take(POSITION position) {
    const Value value = GetAt(position);
    if (position != nullptr) nodes_.erase(toNode(position)->self);
    return value;
  }

  Nodes nodes_;
};

}  // namespace vex2
