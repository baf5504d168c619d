// The header in the file, and tests for the kind of a document.

#include <array>

#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"

using vex2::HeaderLayout;
using vex2::Kind;
using vex2::KindMarker;
using vex2::kSuccess;
using vex2::Operation;
using vex2::TagOf;

namespace {

// Whether the open file has the characters `marker` at `offset`.
bool hasMarker(vex2::DocumentStore& store, std::uint64_t offset, std::string_view marker) {
  const Operation operation(store);
  CFile& file = store.File();
  if (!file.IsOpen()) return false;
  std::array<char, vex2::kCodeLength> found{};
  const int isRead = store.Attempt(0, [&] {
    file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
    return vex2::ReadExactly(file, found.data(), found.size()) ? 1 : 0;
  });
  return isRead == 1 && marker == std::string_view(found.data(), found.size());
}

}  // namespace

int Vex2FileManager::GetHeaderBytes() const {
  return static_cast<int>(HeaderLayout::kSize);
}

bool Vex2FileManager::IsVex2Format() {
  return hasMarker(state_->store, HeaderLayout::kMagicAt, vex2::kMagic);
}

bool Vex2FileManager::IsBlueLightSpecialFile() {
  return IsVex2Format() &&
         hasMarker(state_->store, HeaderLayout::kKindMarkerAt, KindMarker::kBlueLight);
}

bool Vex2FileManager::IsKestorFile() {
  return IsVex2Format() &&
         hasMarker(state_->store, HeaderLayout::kKindMarkerAt, KindMarker::kKestor);
}

bool Vex2FileManager::State::IsDocument(Vex2FileManager& manager) {
  if (manager.IsVex2Format()) return true;
  store.Refuse(
      manager.IsOpen() ? vex2::FileErrorReason::kNotADocument : vex2::FileErrorReason::kNotOpen,
      vex2::FileOperation::kRead);
  return false;
}

int Vex2FileManager::ReadHeaderData(CFile* file) {
  return ReadHeaderData(header_, file);
}

int Vex2FileManager::ReadHeaderData(Vex2HeaderData& header, CFile* file) {
  const Operation operation(state_->store);
  return attempt(vex2::kReadFailed, [&] {
    if (!state_->IsDocument(*this)) return static_cast<int>(vex2::kReadFailed);
    CFile& source = file != nullptr ? *file : *this;
    source.SeekToBegin();
    return ReadHeaderDataHelper(header, &source);
  });
}

int Vex2FileManager::ReadHeaderDataHelper(Vex2HeaderData& header, CFile* file) {
  CFile& source = file != nullptr ? *file : *this;
  const std::uint64_t start = source.GetPosition();
  vex2::HeaderBytes bytes{};
  const vex2::HeaderFieldReader fields(bytes, source.Read(bytes.data(), bytes.size()));
  std::uint16_t rows = 0;
  vex2::ExchangeHeaderFields(fields, header, rows);
  header.SetRows(rows);
  for (std::uint16_t row = 0; row < rows; ++row) {
    if (!vex2::ReadField(source, header.usage[row])) break;
  }
  const std::uint64_t consumed = source.GetPosition() - start;
  if (consumed < vex2::HeaderLayout::kSize) {
    source.Seek(static_cast<std::int64_t>(vex2::HeaderLayout::kSize - consumed), current);
  }
  return kSuccess;
}

int Vex2FileManager::WriteHeaderData(CFile* /*file*/) {
  const Operation operation(state_->store);
  if (!IsOpen()) {
    state_->store.Refuse(vex2::FileErrorReason::kNotOpen, vex2::FileOperation::kWrite);
    return vex2::kWriteFailed;
  }
  return attempt(vex2::kWriteFailed, [this] {
    SeekToBegin();
    std::uint32_t written = 0;
    const int status = WriteHeaderDataHelper(written, this);
    // Truncate before extending, so that the padding is zeros and not the old bytes after the
    // table.
    if (GetLength() > GetPosition()) SetLength(GetPosition());
    SetLength(vex2::HeaderLayout::kSize);
    return status;
  });
}

int Vex2FileManager::WriteHeaderDataHelper(std::uint32_t& headerBytes, CFile* file) {
  CFile& target = file != nullptr ? *file : *this;
  vex2::HeaderBytes bytes{};
  vex2::HeaderFieldWriter fields(bytes);
  vex2::ExchangeHeaderFields(fields, header_, header_.rows);
  target.Write(bytes.data(), bytes.size());
  if (header_.usage != nullptr) {
    const std::uint16_t held = header_.GetMaskCount();
    for (std::uint16_t row = 0; row < header_.rows; ++row) {
      vex2::WriteField(target, row < held ? header_.usage[row] : Vex2HeaderData::kTwelveWells);
    }
  }
  headerBytes = static_cast<std::uint32_t>(HeaderLayout::UsageEnd(header_.rows));
  return kSuccess;
}

void Vex2FileManager::UpdateHeaderOffsets(const CComponent& component) {
  const bool isProgram = component.GetTag() == TagOf(Kind::kProgram);
  if (!isProgram && component.GetTag() != TagOf(Kind::kRawData)) return;
  const std::uint32_t offset = vex2::DocumentOffset(*this, GetPosition());
  (isProgram ? header_.thermocycleOffset : header_.acquisitionDataOffset) = offset;
  vex2::WriteWordAt(
      *this, isProgram ? HeaderLayout::kProgramOffsetAt : HeaderLayout::kRawDataOffsetAt, offset);
  SeekToEnd();
}

int Vex2FileManager::UpdateThermocycleOffset(unsigned long offset) {
  return state_->store.PatchHeader(HeaderLayout::kProgramOffsetAt, offset);
}

int Vex2FileManager::UpdateAcqDataOffset(unsigned long offset) {
  return state_->store.PatchHeader(HeaderLayout::kRawDataOffsetAt, offset);
}
