// Whole data blocks.

#include <algorithm>
#include <array>

#include "vex2/container/CSkippedComp.h"
#include "vex2/container/Encoding.h"
#include "vex2/container/TagTable.h"
#include "vex2/framework/CWaitCursor.h"
#include "vex2/manager/TracedTime.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/AcquisitionDataComp.h"

using vex2::kSuccess;

namespace {

bool isReportingBlock(int row) {
  return row >= DataREPr && row <= DataREPt;
}

std::unique_ptr<AcquisitionDataComp> makeBlock(Vex2DataType type, const Vex2AcquisitionData* data) {
  const std::string_view tag = vex2::TagAt(type);
  return data != nullptr ? std::make_unique<AcquisitionDataComp>(tag, *data)
                         : std::make_unique<AcquisitionDataComp>(tag);
}

// The reporting blocks of a file, and where the first of them stands; 0 when there is none.
struct ReportingBlocks {
  std::vector<std::unique_ptr<AcquisitionDataComp>> blocks;
  std::uint64_t start = 0;
};

int readReportingBlocks(CFile& file, ReportingBlocks& found) {
  while (true) {
    const auto bytes = file.Peek(vex2::kTagLength);
    if (bytes.size() < vex2::kTagLength) return kSuccess;
    const std::string_view tag(reinterpret_cast<const char*>(bytes.data()), vex2::kTagLength);
    const int row = vex2::FindTagIndex(tag);
    if (!isReportingBlock(row)) {
      if (const int status = CSkippedComp().Read(&file); status != kSuccess) return status;
      continue;
    }
    if (found.start == 0) found.start = file.GetPosition();
    auto block = std::make_unique<AcquisitionDataComp>(vex2::TagAt(row));
    if (const int status = block->Read(&file); status != kSuccess) return status;
    found.blocks.push_back(std::move(block));
  }
}

}  // namespace

AcquisitionDataComp* Vex2FileManager::findBlock(Vex2DataType type) const {
  return find<AcquisitionDataComp>(vex2::TagAt(type));
}

int Vex2FileManager::setBlock(Vex2DataType type, const Vex2AcquisitionData* data) {
  if (vex2::TagAt(type).empty()) return vex2::kNotFound;
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(makeBlock(type, data));
    return kSuccess;
  });
}

int Vex2FileManager::AppendAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data) {
  if (const int status = setBlock(DataRAWa, data); status != kSuccess) return status;
  AcquisitionDataComp* block = findBlock(DataRAWa);
  return appendTo(path, [&] {
    std::uint32_t offset = 0;
    const bool isFirst = readAcqDataOffset(offset) == kSuccess && offset == 0;
    return writeRawData(*block, isFirst ? endOfWhatCounts(*block, offset) : GetLength());
  });
}

int Vex2FileManager::writeRawData(AcquisitionDataComp& block, std::uint64_t place) {
  const std::uint32_t position = documentPosition(place);
  Seek(position, begin);
  // Until all of it is on the disk, the block goes without its tag and is stepped over by whoever
  // reads the document: its length may get there before its frames. The header leads to it last.
  constexpr std::array<char, vex2::kTagLength> kNoTag{};
  Write(kNoTag.data(), kNoTag.size());
  vex2::WriteValue(*this, block.GetLength());
  static_cast<void>(block.WriteBody(this));
  if (GetLength() > GetPosition()) SetLength(GetPosition());
  barrier();
  Seek(position, begin);
  Write(block.GetTag().data(), vex2::kTagLength);
  barrier();
  header_.acquisitionDataOffset = position;
  const int result = UpdateAcqDataOffset(position);
  barrier();
  return result;
}

int Vex2FileManager::RemoveAcquisitionDataBlock(Vex2DataType type) {
  RemoveComponent(includesComponent(vex2::TagAt(type)));
  return kSuccess;
}

int Vex2FileManager::ReplaceAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data,
                                                 Vex2DataType type) {
  const CWaitCursor wait;
  const vex2::TracedTime time("replacing Acquisition/Reporting Data");
  if (const int status = setBlock(type, data); status != kSuccess) return status;
  AcquisitionDataComp* block = findBlock(type);
  if (block == nullptr) return vex2::kNotFound;
  if (const int status = openForPatching(path); status != kSuccess) return status;
  return guardedFile(vex2::kWriteFailed, [&] {
    return type == DataRAWa ? replaceRawData(*block) : replaceReportingData(*block);
  });
}

int Vex2FileManager::replaceRawData(AcquisitionDataComp& block) {
  std::uint32_t offset = 0;
  if (const int status = readAcqDataOffset(offset); status != kSuccess) return status;
  if (offset == 0) {
    const std::uint64_t place = endOfWhatCounts(block, offset);
    return writeAtEnd([&] { return writeRawData(block, place); });
  }
  return rewrite(offset, [&] {
    Seek(offset, begin);
    const int written = block.Write(this);
    SetLength(offset + block.GetSize());
    return written;
  });
}

int Vex2FileManager::replaceReportingData(AcquisitionDataComp& block) {
  Vex2HeaderData header;
  if (const int status = ReadHeaderData(header, nullptr); status != kSuccess) return status;
  ReportingBlocks kept;
  if (const int status = readReportingBlocks(*this, kept); status != kSuccess) return status;
  if (kept.start == 0) return writeAtEnd([&] { return block.Write(this); });
  const auto old = std::find_if(kept.blocks.begin(), kept.blocks.end(), [&](const auto& candidate) {
    return candidate->GetTag() == block.GetTag();
  });
  if (old != kept.blocks.end()) kept.blocks.erase(old);

  return rewrite(kept.start, [&] {
    Seek(static_cast<std::int64_t>(kept.start), begin);
    std::uint64_t newLength = kept.start + block.GetSize();
    int status = block.Write(this);
    for (const auto& other : kept.blocks) {
      if (status == kSuccess) status = other->Write(this);
      newLength += other->GetSize();
    }
    SetLength(newLength);
    // What stood behind the first reporting block is cut off, so no position may lead there.
    if (header.thermocycleOffset > kept.start) static_cast<void>(UpdateThermocycleOffset(0));
    if (header.acquisitionDataOffset > kept.start) static_cast<void>(UpdateAcqDataOffset(0));
    return status;
  });
}

long Vex2FileManager::findReporterCompOffset(Vex2DataType type) {
  if (GetLength() <= kHeaderBytes) return 0;
  Seek(kHeaderBytes, begin);
  std::uint64_t remaining = GetLength() - kHeaderBytes;
  while (remaining > 0) {
    const auto position = static_cast<long>(GetPosition());
    std::array<char, vex2::kTagLength> tag{};
    if (vex2::ReadBytes(*this, tag.data(), tag.size()) != kSuccess) return 0;
    const int row = vex2::FindTagIndex({tag.data(), tag.size()});
    if (row >= 0 && row == static_cast<int>(type)) return position;
    std::uint32_t length = 0;
    if (vex2::ReadValue(*this, length) != kSuccess) return 0;
    Seek(length, current);
    remaining -= std::min(remaining, std::uint64_t{length} + 8);
  }
  return 0;
}
