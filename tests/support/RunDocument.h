#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/DocumentBytes.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {

/// A manager whose protected operations tests can reach.
class OpenedManager : public Vex2FileManager {
 public:
  using Vex2FileManager::AppendAcquisitionDataBlock;
  using Vex2FileManager::findBlock;
  using Vex2FileManager::findReporterCompOffset;
  using Vex2FileManager::includesComponent;
  using Vex2FileManager::readAFrame;
  using Vex2FileManager::UpdateAcqDataOffset;
  using Vex2FileManager::UpdateThermocycleOffset;
  using Vex2FileManager::WritePlateSetupComp;
  using Vex2FileManager::WriteThermocycleComp;

  std::uint32_t AcquisitionDataOffset() const { return header_.acquisitionDataOffset; }
  std::uint32_t ThermocycleOffset() const { return header_.thermocycleOffset; }
  template <typename Component>
  void Append(std::unique_ptr<Component> component) {
    appendComponent(std::move(component));
  }
};

/// A filled well record whose stored values depend on the frame, the well and the index of the
/// value. The values that exist only in memory are 0, so the record reads back equal.
inline Vex2WellRecord MakeRecord(int frame, int position) {
  Vex2WellRecord record;
  const auto value = [&](int place) {
    return static_cast<std::uint16_t>(frame * 7919 + position * 41 + place * 257 + 1);
  };
  for (int i = 0; i < 8; ++i) record.leading[i] = value(i);
  for (int i = 0; i < 32; ++i) record.data[i] = value(8 + i);
  if (record.leading[0] == 0) record.leading[0] = 1;
  return record;
}

inline Vex2FrameData MakeFrame(std::uint16_t wells, int index) {
  Vex2FrameData frame(wells);
  for (int position = 0; position < wells; ++position) {
    frame.records[position] = MakeRecord(index, position);
  }
  return frame;
}

inline bool SameFrame(const Vex2FrameData& a, const Vex2FrameData& b) {
  return a.wellCount == b.wellCount && std::equal(a.records, a.records + a.wellCount, b.records);
}

/// The bytes of the record in a document.
inline Bytes StoredRecord(const Vex2WellRecord& record) {
  ByteString bytes;
  for (const std::uint16_t value : record.leading) bytes.Short(value);
  for (int i = 0; i < 32; ++i) bytes.Short(record.data[i]);
  return bytes;
}

inline Bytes StoredFrame(const Vex2FrameData& frame) {
  ByteString bytes;
  for (int i = 0; i < frame.wellCount; ++i) bytes.Raw(StoredRecord(frame.records[i]));
  return bytes;
}

inline std::vector<std::uint16_t> WellNumbers(std::uint16_t count) {
  std::vector<std::uint16_t> numbers(count);
  for (std::uint16_t i = 0; i < count; ++i) numbers[i] = static_cast<std::uint16_t>(i + 1);
  return numbers;
}

/// A whole data block of version 2 whose times are zero: tag, length and body.
inline Bytes StoredBlock(std::string_view tag, std::uint16_t wells, int frames) {
  ByteString bytes;
  bytes.Text(tag).Long(18 + 2UL * wells + 80UL * wells * static_cast<unsigned long>(frames));
  bytes.Short(2).Short(12).Zeros(12).Short(wells);
  for (const auto number : WellNumbers(wells)) bytes.Short(number);
  for (int index = 0; index < frames; ++index) bytes.Raw(StoredFrame(MakeFrame(wells, index)));
  return bytes;
}

/// The tags of the components in order, e.g. "GLBL RAWa".
inline std::string TagsOf(const Vex2FileManager& manager) {
  std::string tags;
  for (int i = 0; i < manager.GetAllComponentCount(); ++i) {
    if (i > 0) tags += ' ';
    tags += manager.GetComponent(i)->GetTag();
  }
  return tags;
}

}  // namespace vex2::test
