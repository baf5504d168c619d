#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "vex2/container/CComponent.h"

namespace vex2 {

/// Pure dyes or a background in a document: the content of a caller's record, and reserved bytes.
/// The reserved bytes are zero in a component made from a record; otherwise they are kept as they
/// were read.
template <typename Record>
class VEX2_API SpectrumSetComp : public CComponent {
 public:
  /// Holds a record without entries.
  explicit SpectrumSetComp(std::string_view tag);
  /// Holds a copy of `record`, with reserved bytes of zero.
  SpectrumSetComp(std::string_view tag, const Record& record);

  /// Replaces the content of `record` by a copy of everything except the reserved bytes.
  void CopyTo(Record& record) const { record.CopyFrom(record_); }
  /// The record that the component holds; valid until the component changes.
  const Record& GetRecord() const { return record_; }
  /// The reserved bytes in the order of the format; valid until the component changes.
  std::span<const std::uint8_t, 48> GetReserved() const { return reserved_; }
  /// Sets the reserved bytes, for example to those of the component that this one replaces in a
  /// document.
  void SetReserved(std::span<const std::uint8_t, 48> reserved);

  /// Copies the content of `source` if it has the same tag and class; otherwise does nothing.
  CComponent& Assign(const CComponent& source) override;
  /// Writes the record at the file position. Returns 0, or -200 for a null file.
  int WriteBody(CFile* file) override;
  /// Reads the record at the file position. Returns 0, or -100 for a null file or if the file ends
  /// within the record, which is then partly filled.
  int ReadBody(CFile* file) override;

 private:
  Record record_;
  std::uint8_t reserved_[48] = {};
};

}  // namespace vex2
