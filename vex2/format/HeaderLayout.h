#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "vex2/format/Encoding.h"

/// The header of a document, and of each plate in a study: where its fields are and which codes
/// they hold. See docs/format.md.
namespace vex2 {

/// Offsets and sizes in bytes, from the start of the header.
struct HeaderLayout {
  static constexpr std::uint64_t kMagicAt = 0;
  static constexpr std::uint64_t kFormatAAt = 4;
  static constexpr std::uint64_t kFormatBAt = 6;
  static constexpr std::uint64_t kAssayCodeAt = 8;
  static constexpr std::uint64_t kRunCodeAt = 12;
  static constexpr std::uint64_t kPlateTypeCodeAt = 16;
  static constexpr std::uint64_t kRowsAt = 20;
  static constexpr std::uint64_t kColumnsAt = 22;
  static constexpr std::uint64_t kProgramOffsetAt = 24;
  static constexpr std::uint64_t kFlagGAt = 28;
  static constexpr std::uint64_t kTextAt = 29;
  static constexpr std::uint64_t kKindMarkerAt = 60;
  static constexpr std::uint64_t kStatusAt = 64;
  static constexpr std::uint64_t kRawDataOffsetAt = 68;
  /// The usage table: a mask of 32 bits for each row. All fields before it have a fixed offset.
  static constexpr std::uint64_t kUsageAt = 72;
  static constexpr std::uint64_t kMaskSize = sizeof(std::uint32_t);
  static constexpr std::uint64_t kSize = 1024;
  /// The largest number of rows for which the usage table ends within the header.
  static constexpr std::uint16_t kMaxRows = (kSize - kUsageAt) / kMaskSize;

  /// The end of the usage table.
  static constexpr std::uint64_t UsageEnd(std::uint32_t rows) {
    return kUsageAt + kMaskSize * std::uint64_t{rows};
  }
  /// Where readers expect the first record. It is later than `kSize` only for a header with so many
  /// rows that its usage table does not fit.
  static constexpr std::uint64_t RecordsOffset(std::uint32_t rows) {
    return std::max(kSize, UsageEnd(rows));
  }
};

constexpr std::size_t kCodeLength = 4;

inline constexpr std::string_view kMagic = "Vex2";

struct KindMarker {
  static constexpr std::string_view kKestor = "Kest";     ///< the second instrument kind
  static constexpr std::string_view kBlueLight = "Blue";  ///< a blue-light special file
};

struct RunStatus {
  static constexpr std::string_view kNotStarted = "ZERO";
  static constexpr std::string_view kInProgress = "PROG";
  static constexpr std::string_view kDone = "DONE";
};

/// A code for the kind of run, and the number that hosts use for it.
struct AssayCode {
  std::string_view code;
  int number;
};

struct Assay {
  static constexpr AssayCode kBackground = {"BGND", 950};
  static constexpr AssayCode kPureSpectra = {"PDye", 951};
  static constexpr AssayCode kAbsolute = {"AbsQ", 1000};
  static constexpr AssayCode kRelativePlate = {"RelQ", 1001};
  static constexpr AssayCode kRelativeStudy = {"RQSt", 1002};
  static constexpr AssayCode kAllelic = {"AllD", 1003};
  static constexpr AssayCode kPlusMinus = {"+/- ", 1004};

  static constexpr std::array<AssayCode, 7> kAll = {
      kBackground, kPureSpectra, kAbsolute, kRelativePlate, kRelativeStudy, kAllelic, kPlusMinus};
};

struct PlateType {
  std::string_view code;
  std::uint16_t wells;
};

inline constexpr std::array<PlateType, 6> kPlateTypes = {
    {{"c9C ", 96}, {"p9b ", 96}, {"p9C ", 96}, {"c3C ", 384}, {"p3b ", 384}, {"p3C ", 384}}};

/// The number of wells of a plate of this type; 0 for a type that is not in the table.
constexpr std::uint16_t WellsOfPlateType(std::string_view code) {
  for (const PlateType& type : kPlateTypes) {
    if (type.code == code) return type.wells;
  }
  return 0;
}

/// The bytes of all fields before the usage table. `HeaderFieldReader` and `HeaderFieldWriter` copy
/// single fields from and to these bytes.
using HeaderBytes = std::array<std::uint8_t, HeaderLayout::kUsageAt>;

/// Copies fields from the first `count` bytes of a header. If these end within a text, copies the
/// characters before the end; if they end within a number, leaves the number unchanged.
class HeaderFieldReader {
 public:
  HeaderFieldReader(const HeaderBytes& bytes, std::size_t count) : bytes_(bytes.data(), count) {}

  template <std::size_t Size>
  void Text(std::uint64_t offset, char (&field)[Size]) const {
    if (offset < bytes_.size()) {
      std::memcpy(field, bytes_.data() + offset, std::min(Size, bytes_.size() - offset));
    }
  }
  template <typename Value>
  void Number(std::uint64_t offset, Value& field) const {
    if (offset + sizeof field <= bytes_.size()) field = LoadBig<Value>(bytes_.data() + offset);
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

class HeaderFieldWriter {
 public:
  explicit HeaderFieldWriter(HeaderBytes& bytes) : bytes_(bytes) {}

  template <std::size_t Size>
  void Text(std::uint64_t offset, const char (&field)[Size]) {
    std::memcpy(bytes_.data() + offset, field, Size);
  }
  template <typename Value>
  void Number(std::uint64_t offset, Value field) {
    StoreBig(field, bytes_.data() + offset);
  }

 private:
  HeaderBytes& bytes_;
};

/// Copies all fields before the usage table, in the direction of `fields`, which is a
/// `HeaderFieldReader` or a `HeaderFieldWriter`. `rows` is the number of rows; `header`, a
/// `Vex2HeaderData`, has all other fields.
template <typename Fields, typename Header, typename Rows>
void ExchangeHeaderFields(Fields& fields, Header& header, Rows& rows) {
  fields.Text(HeaderLayout::kMagicAt, header.magic);
  fields.Number(HeaderLayout::kFormatAAt, header.formatA);
  fields.Number(HeaderLayout::kFormatBAt, header.formatB);
  fields.Text(HeaderLayout::kAssayCodeAt, header.assayCode);
  fields.Text(HeaderLayout::kRunCodeAt, header.runCode);
  fields.Text(HeaderLayout::kPlateTypeCodeAt, header.plateTypeCode);
  fields.Number(HeaderLayout::kRowsAt, rows);
  fields.Number(HeaderLayout::kColumnsAt, header.columns);
  fields.Number(HeaderLayout::kProgramOffsetAt, header.thermocycleOffset);
  fields.Number(HeaderLayout::kFlagGAt, header.flagG);
  fields.Text(HeaderLayout::kTextAt, header.text);
  fields.Text(HeaderLayout::kKindMarkerAt, header.kindMarker);
  fields.Text(HeaderLayout::kStatusAt, header.acquisitionStatus);
  fields.Number(HeaderLayout::kRawDataOffsetAt, header.acquisitionDataOffset);
}

}  // namespace vex2
