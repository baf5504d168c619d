#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "vex2/container/CComponent.h"

/// A component that holds components: a 16-bit count, then that many records. Owns its children.
class VEX2_API CContainerComp : public CComponent {
 public:
  explicit CContainerComp(std::string_view tag);
  ~CContainerComp() override;

  /// The children that are held.
  int GetChildCount() const;
  /// The count as it is written. It differs from the number of children only when the file ended
  /// before as many were read.
  std::uint16_t GetCount() const { return count_; }
  /// The child at `index` from 0, owned by the container; null for an index out of range.
  CComponent* GetChild(int index) const;
  /// The first child with this tag, owned by the container, or null.
  CComponent* FindChild(std::string_view tag) const;

  /// Appends `child` and raises count and length. False, and nothing is added, for a null child
  /// and where the count's 16 or the length's 32 bits would not hold the result.
  bool AddChild(std::unique_ptr<CComponent> child);
  /// Deletes the child at `index` and lowers count and length. False for an index out of range.
  bool RemoveChild(int index);
  /// Deletes the child at `index` and appends `child`; with an index out of range only appends.
  /// False, and nothing is changed, as for `AddChild`.
  bool ReplaceChild(int index, std::unique_ptr<CComponent> child);

  CComponent& Assign(const CComponent& source) override;
  /// Deletes every child; length and count stay as they are.
  void FreeBody() override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

  /// Writes the children in order, stopping at the first status that is not 0.
  virtual int WriteChildren(CFile* file);
  /// Reads as many records as the count says and keeps those that read well. Stops at the first
  /// status that is not 0 and answers it; stops without one where the file ends before a tag.
  virtual int ReadChildren(CFile* file);

 protected:
  CContainerComp(std::string_view tag, std::uint16_t fixedLength);

  /// Takes a child that was read over into the list, without a change of count and length.
  void keepChild(std::unique_ptr<CComponent> child);
  /// Makes room for so many children at once.
  void reserveChildren(std::size_t count);
  void setCount(std::uint16_t count) { count_ = count; }

 private:
  struct Children;

  std::uint64_t lengthOfChildren() const;
  bool changeLength(std::uint64_t removed, std::uint64_t added);

  std::unique_ptr<Children> children_;
  std::uint16_t count_ = 0;
  std::uint16_t fixedLength_;
};
