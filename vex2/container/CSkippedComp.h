#pragma once

#include "vex2/container/CComponent.h"

/// The placeholder for an unknown record. It keeps the tag and the length of the record, and
/// nothing of its body.
class VEX2_API CSkippedComp final : public CComponent {
 public:
  CSkippedComp();
  /// Represents a record with this tag, and a body of `length` bytes.
  CSkippedComp(std::string_view tag, std::uint32_t length);

  using CComponent::Read;
  /// Reads the record at the file position and takes its tag. Adds the size of the record to
  /// `counter`. Returns -100 for a null file, -300 if tag and length cannot be read or the record
  /// is nested too deep.
  int Read(CFile* file, std::uint32_t& counter) override;
  /// Appends `GetLength()` zero bytes to the file, so that the next record keeps its offset.
  /// Returns 0, or -200 for a null file.
  int WriteBody(CFile* file) override;
  /// Moves the file position past the body, even past the end of the file. Returns 0, or -100 for a
  /// null file.
  int ReadBody(CFile* file) override;
  /// Reduces the length by `bytes`, but not below 0.
  void Shorten(std::uint64_t bytes);
};
