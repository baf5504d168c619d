#pragma once

#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/storage/FrameLog.h"

namespace vex2 {

/// Gives the frame log access to a data block of the document. Internal.
class HeldRawData final : public HeldBlock {
 public:
  explicit HeldRawData(AcquisitionDataComp& block) : block_(block) {}

  std::string_view Tag() const override { return block_.GetTag(); }
  std::uint32_t Length() const override { return block_.GetLength(); }
  std::uint16_t Wells() const override { return block_.GetWellCount(); }
  std::uint64_t Frames() const override {
    return static_cast<std::uint64_t>(block_.GetFrameCount());
  }
  bool IsFrame(CFile& file, std::uint64_t frame) const override {
    return block_.IsStoredFrame(file, static_cast<int>(frame));
  }
  int WriteFrame(CFile& file, int frame) const override { return block_.WriteFrame(file, frame); }
  int WriteBody(CFile& file) const override { return block_.WriteBody(&file); }

 private:
  AcquisitionDataComp& block_;
};

}  // namespace vex2
