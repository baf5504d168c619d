#pragma once

#include <memory>
#include <utility>

#include "vex2/framework/Position.h"

namespace vex2 {

/// The base of the framework's lists: a doubly linked list of `Value`s, walked by positions:
///
///     for (POSITION at = list.GetHeadPosition(); at != nullptr;) use(list.GetNext(at));
/// A list of pointers does not own the objects. An operation without a result returns a null
/// position or the empty value (null, the empty text); an operation on a null position does
/// nothing. Lists are moved, never copied; positions stay valid after a move. Not thread-safe.
template <class Value>
class ListOf {
 public:
  /// The block size was the number of entries to allocate at a time; it is no longer used.
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

  /// Add `value` as the first or last entry, and return its position.
  POSITION AddHead(const Value& value) { return insert(nullptr, first_, value); }
  POSITION AddTail(const Value& value) { return insert(last_, nullptr, value); }

  /// Remove the first or last entry, and return its value.
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

  /// Return the value at `position`, and move `position` to the next or previous entry.
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

  /// The position of the first entry with this value; if `after` is not null, of the first behind
  /// it.
  POSITION Find(const Value& value, POSITION after = nullptr) const {
    Node* node = after != nullptr ? toNode(after)->next : first_;
    while (node != nullptr && !(node->value == value)) node = node->next;
    return toPosition(node);
  }
  /// The position of the entry at `index`, from 0; null for an index out of range.
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
