// The header record in the file, and the tests of a document's kind.

#include <cerrno>
#include <cstring>
#include <limits>

#include "vex2/container/Encoding.h"
#include "vex2/manager/Vex2FileManager.h"

using vex2::kSuccess;

namespace {

constexpr std::uint32_t kFixedHeaderBytes = 72;
constexpr std::uint64_t kThermocycleOffsetAt = 24;
constexpr std::uint64_t kKindMarkerAt = 60;

// Takes fields from the file. What the file is too short for keeps its value.
class FieldReader {
 public:
  explicit FieldReader(CFile& file) : file_(file) {}

  template <std::size_t Size>
  void Text(char (&field)[Size]) {
    static_cast<void>(vex2::ReadBytes(file_, field, Size));
  }
  template <typename Value>
  void Number(Value& field) {
    static_cast<void>(vex2::ReadValue(file_, field));
  }

 private:
  CFile& file_;
};

class FieldWriter {
 public:
  explicit FieldWriter(CFile& file) : file_(file) {}

  template <std::size_t Size>
  void Text(const char (&field)[Size]) {
    file_.Write(field, Size);
  }
  template <typename Value>
  void Number(Value field) {
    vex2::WriteValue(file_, field);
  }

 private:
  CFile& file_;
};

// The fields in the order in which they stand in the file, without the usage table.
template <typename Fields, typename Header, typename Rows>
void exchange(Fields& fields, Header& header, Rows& rows) {
  fields.Text(header.magic);
  fields.Number(header.formatA);
  fields.Number(header.formatB);
  fields.Text(header.assayCode);
  fields.Text(header.runCode);
  fields.Text(header.plateTypeCode);
  fields.Number(rows);
  fields.Number(header.columns);
  fields.Number(header.thermocycleOffset);
  fields.Number(header.flagG);
  fields.Text(header.text);
  fields.Text(header.kindMarker);
  fields.Text(header.acquisitionStatus);
  fields.Number(header.acquisitionDataOffset);
}

}  // namespace

bool Vex2FileManager::hasMarker(std::uint64_t offset, std::string_view marker) {
  if (!IsOpen()) return false;
  char found[4] = {};
  const int status = guarded(vex2::kReadFailed, [&] {
    Seek(static_cast<std::int64_t>(offset), begin);
    return vex2::ReadBytes(*this, found, sizeof found);
  });
  return status == kSuccess && marker == std::string_view(found, sizeof found);
}

bool Vex2FileManager::IsVex2Format() {
  return hasMarker(0, "Vex2");
}

bool Vex2FileManager::IsBlueLightSpecialFile() {
  return IsVex2Format() && hasMarker(kKindMarkerAt, "Blue");
}

bool Vex2FileManager::IsKestorFile() {
  return IsVex2Format() && hasMarker(kKindMarkerAt, "Kest");
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
  FieldReader fields(source);
  std::uint16_t rows = 0;
  exchange(fields, header, rows);
  header.SetRows(rows);
  for (std::uint16_t row = 0; row < rows && source.GetRemaining() > 0; ++row) {
    fields.Number(header.usage[row]);
  }
  const std::uint64_t consumed = source.GetPosition() - start;
  if (consumed < kHeaderBytes) {
    source.Seek(static_cast<std::int64_t>(kHeaderBytes - consumed), current);
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
    SetLength(kHeaderBytes);
    return status;
  });
}

int Vex2FileManager::WriteHeaderDataHelper(std::uint32_t& headerBytes, CFile* file) {
  CFile& target = file != nullptr ? *file : *this;
  FieldWriter fields(target);
  exchange(fields, header_, header_.rows);
  if (header_.usage != nullptr) {
    const std::uint16_t held = header_.GetMaskCount();
    for (std::uint16_t row = 0; row < header_.rows; ++row) {
      fields.Number(row < held ? header_.usage[row] : Vex2HeaderData::kTwelveWells);
    }
  }
  headerBytes = kFixedHeaderBytes + 4U * header_.rows;
  return kSuccess;
}

std::uint32_t Vex2FileManager::documentPosition(std::uint64_t position) const {
  if (position > std::numeric_limits<std::uint32_t>::max()) {
    throw CFileException(EFBIG, filePath_.GetString(), position);
  }
  return static_cast<std::uint32_t>(position);
}

void Vex2FileManager::UpdateHeaderOffsets(const CComponent& component) {
  const bool isProgram = component.GetTag() == "TPro";
  if (!isProgram && component.GetTag() != "RAWa") return;
  const std::uint32_t position = documentPosition(GetPosition());
  if (isProgram) {
    header_.thermocycleOffset = position;
    writeHeaderWord(kThermocycleOffsetAt, position);
  } else {
    header_.acquisitionDataOffset = position;
    writeHeaderWord(kAcquisitionDataOffsetAt, position);
  }
  SeekToEnd();
}

int Vex2FileManager::patchHeaderWord(std::uint64_t at, unsigned long value) {
  if (!IsOpen() || GetLength() < kHeaderBytes) return vex2::kWriteFailed;
  return guarded(vex2::kWriteFailed, [&] {
    writeHeaderWord(at, documentPosition(value));
    return kSuccess;
  });
}

void Vex2FileManager::writeHeaderWord(std::uint64_t at, std::uint32_t word) {
  Seek(static_cast<std::int64_t>(at), begin);
  vex2::WriteValue(*this, word);
}

int Vex2FileManager::UpdateThermocycleOffset(unsigned long offset) {
  return patchHeaderWord(kThermocycleOffsetAt, offset);
}

int Vex2FileManager::UpdateAcqDataOffset(unsigned long offset) {
  return patchHeaderWord(kAcquisitionDataOffsetAt, offset);
}

int Vex2FileManager::readAcqDataOffset(std::uint32_t& offset) {
  Seek(kAcquisitionDataOffsetAt, begin);
  return vex2::ReadValue(*this, offset);
}

int Vex2FileManager::findRawData(std::uint32_t& offset) {
  return IsVex2Format() ? readAcqDataOffset(offset) : vex2::kReadFailed;
}
