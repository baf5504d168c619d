#pragma once

#include <cstdint>
#include <string_view>

#include "vex2/container/CComponent.h"
#include "vex2/container/SmallBytes.h"

/// A component that holds bytes, usually the characters of a text. Other programs end a text with a
/// zero byte, so reading a body drops its last byte if that byte is zero, and never more than one.
class VEX2_API CBlockValueComp : public CComponent {
 public:
  /// Holds no bytes.
  explicit CBlockValueComp(std::string_view tag);
  /// Holds a copy of `length` bytes; empty if `length` is 0 or `bytes` is null.
  CBlockValueComp(std::string_view tag, std::uint32_t length, const void* bytes);
  /// Holds the characters of `text`, without a terminator.
  CBlockValueComp(std::string_view tag, const CString& text);

  /// The `GetLength()` bytes; null if there are none. The component owns them; they are valid until
  /// it changes.
  const std::uint8_t* GetData() const { return data_.Get(); }
  /// The `GetLength()` bytes, which the caller may change; null if there are none. The component
  /// owns them; they are valid until it changes.
  std::uint8_t* GetData() { return data_.Get(); }

  CComponent& Assign(const CComponent& source) override;
  /// Replaces the bytes by `GetLength()` zero bytes. If the length is 0, the component then holds
  /// no bytes.
  void AllocateBody() override;
  /// Releases the bytes; the length stays unchanged.
  void FreeBody() override;
  /// Returns the characters. If the last byte is zero, first removes it from the component for
  /// good.
  CString GetValueString() override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

 protected:
  /// Reads exactly `GetLength()` bytes and keeps all of them.
  int readBlock(CFile* file);

 private:
  void copyFrom(const void* bytes);
  bool endsInZero() const;

  vex2::SmallBytes data_;
};
