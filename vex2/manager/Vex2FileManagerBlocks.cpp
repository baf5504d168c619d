// Whole data blocks.

#include <algorithm>
#include <array>
#include <optional>

#include "vex2/container/CSkippedComp.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/framework/CWaitCursor.h"
#include "vex2/manager/HeldRawData.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/TracedTime.h"
#include "vex2/run/AcquisitionDataComp.h"

using vex2::HeaderLayout;
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

// Adds a block with a copy of `data` to the document, in place of the block of the same type.
int setBlock(vex2::DocumentStore& store, vex2::ComponentList& components, Vex2DataType type,
             const Vex2AcquisitionData* data, AcquisitionDataComp*& block) {
  if (vex2::TagAt(type).empty()) return vex2::kNotFound;
  return store.Attempt(vex2::kWriteFailed, [&] {
    block = components.Replace(makeBlock(type, data));
    return kSuccess;
  });
}

int readRawDataOffset(CFile& file, std::uint32_t& offset) {
  file.Seek(HeaderLayout::kRawDataOffsetAt, CFile::begin);
  return vex2::ReadField(file, offset) ? kSuccess : vex2::kReadFailed;
}

// Writes the block as the last record of a file without raw data, and sets `offset` to its offset.
int appendRawData(vex2::DocumentStore& store, AcquisitionDataComp& block, std::uint32_t& offset) {
  const vex2::HeldRawData held(block);
  vex2::FrameLog log(store, held);
  const std::uint64_t place = log.End(0);
  return store.WriteAtEnd([&] { return log.WriteBlock(place, offset); });
}

// Writes the block as the last record, in place of the raw data at the header's offset.
int overwriteRawData(vex2::DocumentStore& store, AcquisitionDataComp& block, std::uint32_t offset) {
  return store.Rewrite(offset, [&] {
    CFile& file = store.File();
    file.Seek(offset, CFile::begin);
    const int written = block.Write(&file);
    file.SetLength(offset + block.GetSize());
    return written;
  });
}

// The reporting blocks of a file, and the offset of the first one; 0 if there is none.
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

// Writes the block in place of the one with the same type, and then the other reporting blocks.
int overwriteReportingData(vex2::DocumentStore& store, AcquisitionDataComp& block,
                           ReportingBlocks& kept, const Vex2HeaderData& header) {
  CFile& file = store.File();
  if (kept.start == 0) return store.WriteAtEnd([&] { return block.Write(&file); });
  const auto old = std::find_if(kept.blocks.begin(), kept.blocks.end(), [&](const auto& candidate) {
    return candidate->GetTag() == block.GetTag();
  });
  if (old != kept.blocks.end()) kept.blocks.erase(old);
  return store.Rewrite(kept.start, [&] {
    file.Seek(static_cast<std::int64_t>(kept.start), CFile::begin);
    std::uint64_t newLength = kept.start + block.GetSize();
    int status = block.Write(&file);
    for (const auto& other : kept.blocks) {
      if (status == kSuccess) status = other->Write(&file);
      newLength += other->GetSize();
    }
    file.SetLength(newLength);
    // The records after the first reporting block are cut off, so the header must not point to
    // them.
    if (header.thermocycleOffset > kept.start) {
      static_cast<void>(store.PatchHeader(HeaderLayout::kProgramOffsetAt, 0));
    }
    if (header.acquisitionDataOffset > kept.start) {
      static_cast<void>(store.PatchHeader(HeaderLayout::kRawDataOffsetAt, 0));
    }
    return status;
  });
}

}  // namespace

int Vex2FileManager::State::FindRawData(Vex2FileManager& manager, std::uint32_t& offset) {
  return IsDocument(manager) ? readRawDataOffset(manager, offset) : vex2::kReadFailed;
}

int Vex2FileManager::State::ReplaceRawData(Vex2FileManager& manager, const char* path,
                                           AcquisitionDataComp& block) {
  std::uint32_t offset = 0;
  return manager.changeFile(
      path, [&] { return FindRawData(manager, offset); },
      [&] {
        return offset != 0 ? overwriteRawData(store, block, offset)
                           : appendRawData(store, block, manager.header_.acquisitionDataOffset);
      });
}

int Vex2FileManager::State::ReplaceReportingData(Vex2FileManager& manager, const char* path,
                                                 AcquisitionDataComp& block) {
  return store.Attempt(vex2::kWriteFailed, [&] {
    Vex2HeaderData header;
    ReportingBlocks kept;
    const auto look = [&] {
      const int status = manager.ReadHeaderData(header, nullptr);
      return status == kSuccess ? readReportingBlocks(manager, kept) : status;
    };
    return manager.changeFile(path, look,
                              [&] { return overwriteReportingData(store, block, kept, header); });
  });
}

AcquisitionDataComp* Vex2FileManager::findBlock(Vex2DataType type) const {
  return find<AcquisitionDataComp>(vex2::TagAt(type));
}

int Vex2FileManager::AppendAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data) {
  vex2::DocumentStore& store = state_->store;
  const vex2::Operation operation(store);
  AcquisitionDataComp* block = nullptr;
  if (const int status = setBlock(store, state_->components, DataRAWa, data, block);
      status != kSuccess) {
    return status;
  }
  // Open the file for reading, too, if that is allowed: End() looks for bytes that an interrupted
  // commit left.
  constexpr unsigned kFlags =
      modeReadWrite | modeCreate | modeNoTruncate | typeBinary | shareExclusive;
  const bool isReadable = store.Open(path, kFlags);
  if (!isReadable && SafeOpen(path, 1, 1) == 0) return vex2::kWriteFailed;
  return appendToOpenFile([&] {
    std::uint32_t offset = 0;
    const bool isFirst = isReadable && readRawDataOffset(*this, offset) == kSuccess && offset == 0;
    const vex2::HeldRawData held(*block);
    vex2::FrameLog log(store, held);
    return log.WriteBlock(isFirst ? log.End(offset) : GetLength(), header_.acquisitionDataOffset);
  });
}

int Vex2FileManager::RemoveAcquisitionDataBlock(Vex2DataType type) {
  RemoveComponent(includesComponent(vex2::TagAt(type)));
  return kSuccess;
}

int Vex2FileManager::ReplaceAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data,
                                                 Vex2DataType type) {
  // The wait must end before the time is written to the trace.
  std::optional<CWaitCursor> wait(std::in_place);
  const vex2::TracedTime time("replacing Acquisition/Reporting Data");
  const vex2::Operation operation(state_->store);
  AcquisitionDataComp* block = nullptr;
  int status = setBlock(state_->store, state_->components, type, data, block);
  if (status == kSuccess && state_->BackUpPartlyRead(path) != kSuccess) {
    // If the file cannot be read either, return that status. Otherwise the failed backup counts as
    // a failed write.
    status = SafeOpen(path, 0, 0) == 0 ? vex2::kReadFailed : vex2::kWriteFailed;
    Abort();
  }
  if (status == kSuccess) {
    status = type == DataRAWa ? state_->ReplaceRawData(*this, path, *block)
                              : state_->ReplaceReportingData(*this, path, *block);
  }
  wait.reset();
  return status;
}

long Vex2FileManager::findReporterCompOffset(Vex2DataType type) {
  if (GetLength() <= vex2::HeaderLayout::kSize) return 0;
  vex2::DeclaredRecords records(*this, vex2::HeaderLayout::kSize);
  bool isWhole = true;
  while (isWhole) {
    isWhole = records.Next();
    // Sic: this also finds a tag if the file ends within the length field after it.
    if (!isWhole && !records.EndsInHead()) return 0;
    const int row = vex2::FindTagIndex(records.Record().Tag());
    if (row >= 0 && row == static_cast<int>(type))
      return static_cast<long>(records.Record().offset);
  }
  return 0;
}
