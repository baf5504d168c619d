#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "vex2/container/CComponent.h"

/// A component that holds a block of bytes, most often the characters of a text.
///
/// Other programs end a text with a zero byte: the last byte of a block that was read is dropped
/// when it is zero, one byte and no more.
class VEX2_API CBlockValueComp : public CComponent {
 public:
  explicit CBlockValueComp(std::string_view tag);
  /// A copy of `length` bytes; empty when there are none or `bytes` is null.
  CBlockValueComp(std::string_view tag, std::uint32_t length, const void* bytes);
  /// The characters of `text`, without a terminator.
  CBlockValueComp(std::string_view tag, const CString& text);

  /// The `GetLength()` bytes of the block, null when there is none; valid until the next change.
  const std::uint8_t* GetData() const { return data_.get(); }
  std::uint8_t* GetData() { return data_.get(); }

  CComponent& Assign(const CComponent& source) override;
  /// A new block of `GetLength()` zero bytes; none when that is 0.
  void AllocateBody() override;
  void FreeBody() override;
  /// The characters. A zero byte at the end is dropped first, from the component for good.
  CString GetValueString() override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

 protected:
  /// Reads exactly `GetLength()` bytes and keeps them all.
  int readBlock(CFile* file);

 private:
  void copyFrom(const void* bytes);
  bool endsInZero() const;

  std::unique_ptr<std::uint8_t[]> data_;
};
