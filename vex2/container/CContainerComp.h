#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "vex2/container/CComponent.h"
#include "vex2/container/ComponentArray.h"

/// A list: a component that owns other components, its children. In the file: a 16-bit count,
/// followed by that many records.
class VEX2_API CContainerComp : public CComponent {
 public:
  /// An empty list.
  explicit CContainerComp(std::string_view tag);
  ~CContainerComp() override;

  /// The number of children.
  int GetChildCount() const;
  /// The count in the file. It differs from the number of children only if the file ended before
  /// all of them were read.
  std::uint16_t GetCount() const { return count_; }
  /// The child at `index`, from 0; null for an index out of range. The list keeps ownership.
  CComponent* GetChild(int index) const;
  /// The first child with this tag, or null. The list keeps ownership.
  CComponent* FindChild(std::string_view tag) const;

  /// Appends `child` and increases count and length. Returns false and adds nothing if `child` is
  /// null, or if the count would not fit in 16 bits or the length in 32.
  bool AddChild(std::unique_ptr<CComponent> child);
  /// Deletes the child at `index`, from 0, and decreases count and length. Returns false for an
  /// index out of range.
  bool RemoveChild(int index);
  /// Deletes the child at `index`, from 0, and appends `child`. If the index is out of range,
  /// deletes nothing and only appends. Returns false and changes nothing if `child` is null, or if
  /// the result would not fit in the 16-bit count or the 32-bit length.
  bool ReplaceChild(int index, std::unique_ptr<CComponent> child);

  CComponent& Assign(const CComponent& source) override;
  /// Deletes all children; length and count stay unchanged.
  void FreeBody() override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

  /// Writes the children in order. Stops at the first status that is not 0 and returns it.
  virtual int WriteChildren(CFile* file);
  /// Reads as many records as the count says, and keeps those that could be read. Stops at the
  /// first status that is not 0 and returns it. If the file ends before a tag, stops and returns 0.
  virtual int ReadChildren(CFile* file);

 protected:
  /// An empty list whose body begins with `fixedLength` bytes, including the count.
  CContainerComp(std::string_view tag, std::uint16_t fixedLength);

  /// Adds a child that was read, without changing count and length.
  void keepChild(std::unique_ptr<CComponent> child) { children_.Append(std::move(child)); }
  /// Reserves memory for `count` children.
  void reserveChildren(std::size_t count);
  /// Sets the count that `GetCount` returns.
  void setCount(std::uint16_t count) { count_ = count; }

 private:
  std::uint64_t lengthOfChildren() const;
  bool changeLength(std::uint64_t removed, std::uint64_t added);

  vex2::ComponentArray children_;
  std::uint16_t count_ = 0;
  std::uint16_t fixedLength_;
};
