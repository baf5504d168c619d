// Whole data blocks.

#include <algorithm>
#include <array>
#include <optional>

#include "vex2/container/CSkippedComp.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordWalker.h"
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

}  // namespace

/// The reporting blocks of a file, and where the first of them stands; 0 when there is none.
struct Vex2FileManager::ReportingBlocks {
  std::vector<std::unique_ptr<AcquisitionDataComp>> blocks;
  std::uint64_t start = 0;
};

int Vex2FileManager::readReportingBlocks(CFile& file, ReportingBlocks& found) {
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

AcquisitionDataComp* Vex2FileManager::findBlock(Vex2DataType type) const {
  return find<AcquisitionDataComp>(vex2::TagAt(type));
}

int Vex2FileManager::setBlock(Vex2DataType type, const Vex2AcquisitionData* data,
                              AcquisitionDataComp*& block) {
  if (vex2::TagAt(type).empty()) return vex2::kNotFound;
  return guarded(vex2::kWriteFailed, [&] {
    block = replaceComponent(makeBlock(type, data));
    return kSuccess;
  });
}

int Vex2FileManager::AppendAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data) {
  AcquisitionDataComp* block = nullptr;
  if (const int status = setBlock(DataRAWa, data, block); status != kSuccess) return status;
  // For reading, too, where that is allowed: a block looks for what an interrupted commit left.
  constexpr unsigned kFlags =
      modeReadWrite | modeCreate | modeNoTruncate | typeBinary | shareExclusive;
  const bool isReadable = openKeepingPath(path, kFlags);
  if (!isReadable && SafeOpen(path, 1, 1) == 0) return vex2::kWriteFailed;
  return appendToOpenFile([&] {
    std::uint32_t offset = 0;
    const bool isFirst = isReadable && readAcqDataOffset(offset) == kSuccess && offset == 0;
    return writeRawData(*block, isFirst ? committedEnd(*block, offset) : GetLength());
  });
}

int Vex2FileManager::writeRawData(AcquisitionDataComp& block, std::uint64_t place) {
  const std::uint32_t position = documentPosition(place);
  Seek(position, begin);
  // Until all of it is on the disk, the block goes without its tag and is stepped over by whoever
  // reads the document: its length may get there before its frames. The header leads to it last.
  Write(vex2::kUncommittedTag.data(), vex2::kUncommittedTag.size());
  vex2::WriteField(*this, block.GetLength());
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
  // The wait ends before the trace is sent.
  std::optional<CWaitCursor> wait(std::in_place);
  const vex2::TracedTime time("replacing Acquisition/Reporting Data");
  const int status = replaceBlock(path, data, type);
  wait.reset();
  return status;
}

int Vex2FileManager::replaceBlock(const char* path, const Vex2AcquisitionData* data,
                                  Vex2DataType type) {
  AcquisitionDataComp* block = nullptr;
  if (const int status = setBlock(type, data, block); status != kSuccess) return status;
  if (const int status = keepPartlyRead(path); status != kSuccess) return status;
  return type == DataRAWa ? replaceRawData(path, *block) : replaceReportingData(path, *block);
}

int Vex2FileManager::replaceRawData(const char* path, AcquisitionDataComp& block) {
  std::uint32_t offset = 0;
  return changeFile(
      path, [&] { return findRawData(offset); }, [&] { return overwriteRawData(block, offset); });
}

int Vex2FileManager::overwriteRawData(AcquisitionDataComp& block, std::uint32_t offset) {
  if (offset == 0) {
    const std::uint64_t place = committedEnd(block, offset);
    return writeAtEnd([&] { return writeRawData(block, place); });
  }
  return rewrite(offset, [&] {
    Seek(offset, begin);
    const int written = block.Write(this);
    SetLength(offset + block.GetSize());
    return written;
  });
}

int Vex2FileManager::replaceReportingData(const char* path, AcquisitionDataComp& block) {
  return guarded(vex2::kWriteFailed, [&] {
    Vex2HeaderData header;
    ReportingBlocks kept;
    const auto look = [&] {
      const int status = ReadHeaderData(header, nullptr);
      return status == kSuccess ? readReportingBlocks(*this, kept) : status;
    };
    return changeFile(path, look, [&] { return rewriteReportingData(block, kept, header); });
  });
}

int Vex2FileManager::rewriteReportingData(AcquisitionDataComp& block, ReportingBlocks& kept,
                                          const Vex2HeaderData& header) {
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
  if (GetLength() <= vex2::HeaderLayout::kSize) return 0;
  vex2::DeclaredRecords records(*this, vex2::HeaderLayout::kSize);
  bool isWhole = true;
  while (isWhole) {
    isWhole = records.Next();
    // Sic: a tag that the file ends behind is found as well.
    if (!isWhole && !records.EndsInHead()) return 0;
    const int row = vex2::FindTagIndex(records.Record().Tag());
    if (row >= 0 && row == static_cast<int>(type))
      return static_cast<long>(records.Record().offset);
  }
  return 0;
}
