#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "vex2/container/CComponent.h"

namespace vex2 {

/// A calibration in a document: what a caller's record holds, and reserved words that are zero in a
/// component made from a record and otherwise kept as they were read.
template <typename Record>
class VEX2_API SpectrumSetComp : public CComponent {
 public:
  explicit SpectrumSetComp(std::string_view tag);
  SpectrumSetComp(std::string_view tag, const Record& record);

  /// Copies all but the reserved words into `record`, in place of what it held.
  void CopyTo(Record& record) const { record.CopyFrom(record_); }
  /// What is held; valid until the component changes.
  const Record& GetRecord() const { return record_; }
  /// The reserved words in the order in which they are stored; valid until the component changes.
  std::span<const std::uint8_t, 48> GetReserved() const { return reserved_; }

  CComponent& Assign(const CComponent& source) override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

 private:
  Record record_;
  std::uint8_t reserved_[48] = {};
};

}  // namespace vex2
