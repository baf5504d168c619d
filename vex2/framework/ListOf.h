#pragma once

#include <memory>
#include <utility>

#include "vex2/framework/Position.h"

namespace vex2 {

/// The base of the framework's lists: a doubly linked list of `Value`s, walked by positions:
///
///     for (POSITION at = list.GetHeadPosition(); at != nullptr;) use(list.GetNext(at));
/// A list of pointers does not own the objects. An operation that finds nothing returns a null
/// position or the empty value (null, the empty text); an operation on a null position does
/// nothing. Lists are moved, never copied; positions stay valid after a move. Not thread-safe.
template <class Value>
class ListOf {
 public:
  /// An empty list. The block size, once the number of entries to allocate at a time, is ignored.
  explicit ListOf(int /*blockSize*/ = 10) {}
  /// Takes the entries of `other`, which is empty afterwards.
  ListOf(ListOf&& other) noexcept { *this = std::move(other); }
  /// Removes all entries and takes those of `other`, which is empty afterwards.
  ListOf& operator=(ListOf&& other) noexcept {
    if (this == &other) return *this;
    RemoveAll();
    first_ = std::exchange(other.first_, nullptr);
    last_ = std::exchange(other.last_, nullptr);
    count_ = std::exchange(other.count_, 0);
    return *this;
  }
  ~ListOf() { RemoveAll(); }

  /// The number of entries.
  int GetCount() const { return count_; }
  /// Whether the list has no entries.
  bool IsEmpty() const { return first_ == nullptr; }

  /// The first value; the empty value if the list is empty.
  Value GetHead() const { return GetAt(GetHeadPosition()); }
  /// The last value; the empty value if the list is empty.
  Value GetTail() const { return GetAt(GetTailPosition()); }

  /// Adds `value` as the first entry, and returns its position.
  POSITION AddHead(const Value& value) { return insert(nullptr, first_, value); }
  /// Adds `value` as the last entry, and returns its position.
  POSITION AddTail(const Value& value) { return insert(last_, nullptr, value); }

  /// Removes the first entry, and returns its value; the empty value if the list is empty.
  Value RemoveHead() { return take(GetHeadPosition()); }
  /// Removes the last entry, and returns its value; the empty value if the list is empty.
  Value RemoveTail() { return take(GetTailPosition()); }
  /// Removes the entry at `position`; does nothing for a null position.
  void RemoveAt(POSITION position) { take(position); }
  /// Removes all entries.
  void RemoveAll() {
    while (first_ != nullptr) delete std::exchange(first_, first_->next);
    last_ = nullptr;
    count_ = 0;
  }

  /// The position of the first entry; null if the list is empty.
  POSITION GetHeadPosition() const { return toPosition(first_); }
  /// The position of the last entry; null if the list is empty.
  POSITION GetTailPosition() const { return toPosition(last_); }

  /// Returns the value at `position`, and moves `position` to the next entry, or to null after the
  /// last.
  Value GetNext(POSITION& position) const {
    const Value value = GetAt(position);
    if (position != nullptr) position = toPosition(toNode(position)->next);
    return value;
  }
  /// Returns the value at `position`, and moves `position` to the previous entry, or to null after
  /// the first.
  Value GetPrev(POSITION& position) const {
    const Value value = GetAt(position);
    if (position != nullptr) position = toPosition(toNode(position)->previous);
    return value;
  }

  /// The value at `position`; the empty value for a null position.
  Value GetAt(POSITION position) const {
    return position != nullptr ? toNode(position)->value : Value();
  }
  /// Sets the value at `position`; does nothing for a null position.
  void SetAt(POSITION position, const Value& value) {
    if (position != nullptr) toNode(position)->value = value;
  }

  /// The position of the first entry with this value; if `after` is not null, of the first such
  /// entry after the position `after`. Null if there is none.
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
