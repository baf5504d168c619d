// The header record in the file, and the tests of a document's kind.

#include <array>
#include <cerrno>
#include <limits>

#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManager.h"

using vex2::HeaderLayout;
using vex2::Kind;
using vex2::KindMarker;
using vex2::kSuccess;
using vex2::TagOf;

int Vex2FileManager::GetHeaderBytes() const {
  return static_cast<int>(HeaderLayout::kSize);
}

bool Vex2FileManager::hasMarker(std::uint64_t offset, std::string_view marker) {
  if (!IsOpen()) return false;
  std::array<char, vex2::kCodeLength> found{};
  const int isRead = guarded(0, [&] {
    Seek(static_cast<std::int64_t>(offset), begin);
    return vex2::ReadExactly(*this, found.data(), found.size()) ? 1 : 0;
  });
  return isRead == 1 && marker == std::string_view(found.data(), found.size());
}

bool Vex2FileManager::IsVex2Format() {
  return hasMarker(HeaderLayout::kMagicAt, vex2::kMagic);
}

bool Vex2FileManager::IsBlueLightSpecialFile() {
  return IsVex2Format() && hasMarker(HeaderLayout::kKindMarkerAt, KindMarker::kBlueLight);
}

bool Vex2FileManager::IsKestorFile() {
  return IsVex2Format() && hasMarker(HeaderLayout::kKindMarkerAt, KindMarker::kKestor);
}

int Vex2FileManager::ReadHeaderData(CFile* file) {
  return ReadHeaderData(header_, file);
}

int Vex2FileManager::ReadHeaderData(Vex2HeaderData& header, CFile* file) {
  return guarded(vex2::kReadFailed, [&] {
    if (!IsVex2Format()) return static_cast<int>(vex2::kReadFailed);
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
  if (!IsOpen()) return vex2::kWriteFailed;
  return guarded(vex2::kWriteFailed, [this] {
    SeekToBegin();
    std::uint32_t written = 0;
    const int status = WriteHeaderDataHelper(written, this);
    // What a longer file held behind the table would show through the padding.
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

std::uint32_t Vex2FileManager::documentPosition(std::uint64_t position) const {
  if (position > std::numeric_limits<std::uint32_t>::max()) {
    throw CFileException(EFBIG, filePath_.GetString(), position);
  }
  return static_cast<std::uint32_t>(position);
}

void Vex2FileManager::UpdateHeaderOffsets(const CComponent& component) {
  const bool isProgram = component.GetTag() == TagOf(Kind::kProgram);
  if (!isProgram && component.GetTag() != TagOf(Kind::kRawData)) return;
  const std::uint32_t position = documentPosition(GetPosition());
  if (isProgram) {
    header_.thermocycleOffset = position;
    writeHeaderWord(HeaderLayout::kProgramOffsetAt, position);
  } else {
    header_.acquisitionDataOffset = position;
    writeHeaderWord(HeaderLayout::kRawDataOffsetAt, position);
  }
  SeekToEnd();
}

int Vex2FileManager::patchHeaderWord(std::uint64_t at, unsigned long value) {
  if (!IsOpen() || GetLength() < vex2::HeaderLayout::kSize) return vex2::kWriteFailed;
  return guarded(vex2::kWriteFailed, [&] {
    writeHeaderWord(at, documentPosition(value));
    return kSuccess;
  });
}

void Vex2FileManager::writeHeaderWord(std::uint64_t at, std::uint32_t word) {
  Seek(static_cast<std::int64_t>(at), begin);
  vex2::WriteField(*this, word);
}

int Vex2FileManager::UpdateThermocycleOffset(unsigned long offset) {
  return patchHeaderWord(HeaderLayout::kProgramOffsetAt, offset);
}

int Vex2FileManager::UpdateAcqDataOffset(unsigned long offset) {
  return patchHeaderWord(HeaderLayout::kRawDataOffsetAt, offset);
}

int Vex2FileManager::readAcqDataOffset(std::uint32_t& offset) {
  Seek(HeaderLayout::kRawDataOffsetAt, begin);
  return vex2::ReadField(*this, offset) ? kSuccess : vex2::kReadFailed;
}

int Vex2FileManager::findRawData(std::uint32_t& offset) {
  return IsVex2Format() ? readAcqDataOffset(offset) : vex2::kReadFailed;
}
