#pragma once

#include "vex2/container/CComponent.h"

/// The placeholder for a record of a kind that is not known: it keeps the tag and the length of
/// the record that it skips, and nothing of its body.
class VEX2_API CSkippedComp final : public CComponent {
 public:
  CSkippedComp();
  CSkippedComp(std::string_view tag, std::uint32_t length);

  using CComponent::Read;
  /// Takes over the record's tag, too.
  int Read(CFile* file, std::uint32_t& counter) override;
  /// Extends the file by `GetLength()` zero bytes, so that what follows keeps its place.
  int WriteBody(CFile* file) override;
  /// Steps over the body, also past the file's end. Always 0.
  int ReadBody(CFile* file) override;
  /// Takes `bytes`, at most all of it, off the length.
  void Shorten(std::uint64_t bytes);
};
