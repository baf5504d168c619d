#pragma once

#include <memory>
#include <utility>

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
  ListOf(ListOf&& other) noexcept { *this = std::move(other); }
  ListOf& operator=(ListOf&& other) noexcept {
    if (this == &other) return *this;
    RemoveAll();
    first_ = std::exchange(other.first_, nullptr);
    last_ = std::exchange(other.last_, nullptr);
    count_ = std::exchange(other.count_, 0);
    return *this;
  }
  ~ListOf() { RemoveAll(); }

  int GetCount() const { return count_; }
  bool IsEmpty() const { return first_ == nullptr; }

  Value GetHead() const { return GetAt(GetHeadPosition()); }
  Value GetTail() const { return GetAt(GetTailPosition()); }

  /// Put `value` first or last, and return its position.
  POSITION AddHead(const Value& value) { return insert(nullptr, first_, value); }
  POSITION AddTail(const Value& value) { return insert(last_, nullptr, value); }

  /// Take the first or last entry out, and return its value.
  Value RemoveHead() { return take(GetHeadPosition()); }
  Value RemoveTail() { return take(GetTailPosition()); }
  void RemoveAt(POSITION position) { take(position); }
  void RemoveAll() {
    while (first_ != nullptr) delete std::exchange(first_, first_->next);
    last_ = nullptr;
    count_ = 0;
  }

  POSITION GetHeadPosition() const { return toPosition(first_); }
  POSITION GetTailPosition() const { return toPosition(last_); }

  /// Return the value at `position` and move that on to the next or previous one.
  Value GetNext(POSITION& position) const {
    const Value value = GetAt(position);
    if (position != nullptr) position = toPosition(toNode(position)->next);
    return value;
  }
  Value GetPrev(POSITION& position) const {
    const Value value = GetAt(position);
    if (position != nullptr) position = toPosition(toNode(position)->previous);
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
    Node* node = after != nullptr ? toNode(after)->next : first_;
    while (node != nullptr && !(node->value == value)) node = node->next;
    return toPosition(node);
  }
  /// The entry at `index`, from 0; null for an index out of range.
  POSITION FindIndex(int index) const {
    if (index < 0 || index >= GetCount()) return nullptr;
    Node* node = first_;
    while (index-- > 0) node = node->next;
    return toPosition(node);
  }

 private:
  // A position is the address of a node.
  struct Node {
    Value value;
    Node* previous;
    Node* next;
  };

  static Node* toNode(POSITION position) { return reinterpret_cast<Node*>(position); }
  static POSITION toPosition(Node* node) { return reinterpret_cast<POSITION>(node); }
  POSITION insert(Node* previous, Node* next, const Value& value) {
    Node* node = new Node{value, previous, next};
    (previous != nullptr ? previous->next : first_) = node;
    (next != nullptr ? next->previous : last_) = node;
    ++count_;
    return toPosition(node);
  }
  Value take(POSITION position) {
    if (position == nullptr) return Value();
    const std::unique_ptr<Node> node(toNode(position));
    (node->previous != nullptr ? node->previous->next : first_) = node->next;
    (node->next != nullptr ? node->next->previous : last_) = node->previous;
    --count_;
    return std::move(node->value);
  }

  Node* first_ = nullptr;
  Node* last_ = nullptr;
  int count_ = 0;
};

}  // namespace vex2
