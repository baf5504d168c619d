#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vex2/framework/Export.h"

/// The kinds of records. Only this file defines a tag, its row, the layout of its body, and the
/// lists in which writers put it.
namespace vex2 {

constexpr std::size_t kTagLength = 4;
/// The size of tag and length, in bytes.
constexpr std::uint64_t kRecordHeadSize = kTagLength + sizeof(std::uint32_t);

/// A kind of record. The value is the kind's row in `kRecordKinds`. Hosts use rows as data types,
/// so rows never move.
enum class Kind : std::uint8_t {
  kGlobal = 0,
  kVersion,
  kPreFlag,
  kPostFlag,
  kLog,
  kComment,
  kSampleVolume,
  kFtrd,
  kDrks,
  kUnitCode,
  kPureDye,
  kBackground,
  kSpectrum,
  kTimeStamp,
  kProgram,
  kRfid,
  kSpectrumName,
  kSpon,
  kSprv,
  kSpectrumChannel,
  kControls,
  kPlateSetup,
  kCell,
  kRowNumber,
  kColumnNumber,
  kHdat,
  kName,
  kCellDescription,
  k1Ctl,
  kCplt,
  kCpnm,
  kStvl,
  kStum,
  kDyeCode,
  kRawData,
  kCellDetector,
  kCellDetectorName,
  kTask,
  kQuantity,
  kInUse,
  kCalibration,
  kPassiveReference,
  kReportingDataR,
  kReportingDataN,
  kReportingDataD,
  kReportingDataT,
  kDetectorList,
  kDetector,
  kDetectorName,
  kReporterDye,
  kQuencherDye,
  kDescription,
  kDetectorComment,
  kColor,
  kCreated,
  kModified,
  kOwner,
  kLocation,
  kBaselineStart,
  kBaselineEnd,
  kThreshold,
  kAutoBaseline,
  kAutoThreshold,
  kAnalysisFlags,
  kRequiredDyes,
  kRequiredDye,
  kConfidence,
  kMaxDyesPerWell,
  kPlates,
  kPlate,
  kPlateName,
  kPlateDate,
  kEndOfPlate,
  kEndOfFile,
  kCalibrator,
  kEndoControl,
  kAnalysisType,
};

/// How the body of a record is laid out in the file. See docs/format.md.
enum class BodyLayout : std::uint8_t {
  kUnknown,  ///< as many bytes as the record declares
  kByte,
  kShort,
  kLong,
  kFloat,
  kText,        ///< characters; a reader drops one zero byte at the end
  kBytes,       ///< defined by the instrument: as many bytes as the record declares
  kPureDyes,    ///< fields, then entries that state their own length
  kBackground,  ///< as `kPureDyes`, but with smaller entries
  kColor,       ///< three bytes
  kList,        ///< a 16-bit count and that many records
  kCell,        ///< a list with five more bytes after the count
  kPlate,       ///< a count that is 0, then a whole document
  kData,        ///< a data block
};

/// Where writers put records of a kind: one bit for each list. Readers accept every kind in every
/// list; in a damaged document, a record in another list is suspicious.
enum RecordHome : std::uint16_t {
  kNowhere = 0,  ///< a known kind that this system does not write
  kTop = 1,      ///< in the document itself
  kInGlobal = 2,
  kInPlateSetup = 4,
  kInCell = 8,
  kInCellDetector = 16,
  kInDetectorList = 32,
  kInDetector = 64,
  kInCalibration = 128,
  kInRequiredDyes = 256,
  kInPlates = 512,
  kInPlate = 1024,
  kInSpectrum = 2048,
};

struct RecordKind {
  Kind kind;
  std::string_view tag;
  BodyLayout layout;
  std::uint16_t homes;       ///< bits of `RecordHome`
  std::string_view meaning;  ///< a short description; empty if the meaning is not known
};

namespace detail {

using enum BodyLayout;

// clang-format off
inline constexpr std::array<RecordKind, 77> kRows = {{
    {Kind::kGlobal, "GLBL", kList, kTop | kInPlate, "run-wide settings"},
    {Kind::kVersion, "VERS", kLong, kInGlobal, "version"},
    {Kind::kPreFlag, "PRER", kByte, kInGlobal, "pre flag"},
    {Kind::kPostFlag, "POSR", kByte, kInGlobal, "post flag"},
    {Kind::kLog, "LOGT", kText, kInGlobal, "log"},
    {Kind::kComment, "COMM", kText, kInGlobal, "comment"},
    {Kind::kSampleVolume, "PCRV", kShort, kInGlobal, "sample volume"},
    {Kind::kFtrd, "FTRD", kByte, kInGlobal, "FTRD value"},
    {Kind::kDrks, "DRKS", kByte, kInGlobal, "DRKS value"},
    {Kind::kUnitCode, "UOMC", kShort, kInGlobal, "unit code"},
    {Kind::kPureDye, "PDYE", kPureDyes, kTop | kInCalibration | kInPlate, "pure dyes"},
    {Kind::kBackground, "BKGD", kBackground, kTop | kInCalibration | kInPlate, "background"},
    {Kind::kSpectrum, "SPEC", kList, kTop | kInPlate, ""},
    {Kind::kTimeStamp, "TSMP", kLong, kInSpectrum, "time stamp"},
    {Kind::kProgram, "TPro", kBytes, kTop | kInPlate, "thermal cycling program"},
    {Kind::kRfid, "RFID", kLong, kInSpectrum, ""},
    {Kind::kSpectrumName, "SPNM", kText, kInSpectrum, ""},
    {Kind::kSpon, "SPON", kByte, kInSpectrum, ""},
    {Kind::kSprv, "SPRV", kByte, kInSpectrum, ""},
    {Kind::kSpectrumChannel, "SPCH", kBytes, kInSpectrum, "spectrum channel"},
    {Kind::kControls, "CNTL", kList, kTop, ""},
    {Kind::kPlateSetup, "CELS", kList, kTop | kInPlate, "plate setup"},
    {Kind::kCell, "CELL", kCell, kInPlateSetup, "well"},
    {Kind::kRowNumber, "ROWN", kShort, kNowhere, ""},
    {Kind::kColumnNumber, "COLN", kShort, kNowhere, ""},
    {Kind::kHdat, "HDAT", kByte, kNowhere, ""},
    {Kind::kName, "NAME", kText, kInCell, "name"},
    {Kind::kCellDescription, "DESC", kText, kInCell, "description"},
    {Kind::k1Ctl, "1CTL", kShort, kNowhere, ""},
    {Kind::kCplt, "CPLT", kList, kTop, ""},
    {Kind::kCpnm, "CPNM", kList, kTop, ""},
    {Kind::kStvl, "STVL", kFloat, kNowhere, ""},
    {Kind::kStum, "STUM", kShort, kNowhere, ""},
    {Kind::kDyeCode, "DYCD", kLong, kNowhere, ""},
    {Kind::kRawData, "RAWa", kData, kTop | kInPlate, "raw readings"},
    {Kind::kCellDetector, "DETT", kList, kInCell, "detector in the well"},
    {Kind::kCellDetectorName, "DNAM", kText, kInCellDetector, "detector name"},
    {Kind::kTask, "TASK", kText, kInCellDetector, "task"},
    {Kind::kQuantity, "QANT", kFloat, kInCellDetector, "quantity"},
    {Kind::kInUse, "DUSE", kByte, kInCellDetector, "in use"},
    {Kind::kCalibration, "CALI", kList, kTop | kInPlate, "calibration"},
    {Kind::kPassiveReference, "RefN", kText, kInGlobal, "passive reference"},
    {Kind::kReportingDataR, "REPr", kData, kTop | kInPlate, "reporting data"},
    {Kind::kReportingDataN, "REPn", kData, kTop | kInPlate, "reporting data"},
    {Kind::kReportingDataD, "REPd", kData, kTop | kInPlate, "reporting data"},
    {Kind::kReportingDataT, "REPt", kData, kTop | kInPlate, "reporting data"},
    {Kind::kDetectorList, "DETL", kList, kTop | kInPlate, "detectors"},
    {Kind::kDetector, "DETX", kList, kInDetectorList, "detector"},
    {Kind::kDetectorName, "DETN", kText, kInDetector, "name"},
    {Kind::kReporterDye, "DYER", kText, kInDetector, "reporter dye"},
    {Kind::kQuencherDye, "DYEQ", kText, kInDetector, "quencher dye"},
    {Kind::kDescription, "DESC", kText, kInDetector, "description"},
    {Kind::kDetectorComment, "COMT", kText, kInDetector, "comment"},
    {Kind::kColor, "COLR", kColor, kInDetector, "colour"},
    {Kind::kCreated, "DATC", kLong, kInDetector, "created"},
    {Kind::kModified, "DATM", kLong, kInDetector, "modified"},
    {Kind::kOwner, "OWNR", kText, kInDetector, "owner"},
    {Kind::kLocation, "LOCS", kText, kInDetector, "location"},
    {Kind::kBaselineStart, "DASB", kShort, kInDetector, "baseline start"},
    {Kind::kBaselineEnd, "DAEB", kShort, kInDetector, "baseline end"},
    {Kind::kThreshold, "DATH", kFloat, kInDetector, "threshold"},
    {Kind::kAutoBaseline, "DAAB", kByte, kInDetector, "automatic baseline"},
    {Kind::kAutoThreshold, "DAAT", kByte, kInDetector, "automatic threshold"},
    {Kind::kAnalysisFlags, "DAQF", kShort, kInDetector, "analysis options"},
    {Kind::kRequiredDyes, "RqDy", kList, kTop | kInPlate, "required dyes"},
    {Kind::kRequiredDye, "aDye", kText, kInRequiredDyes, "dye"},
    {Kind::kConfidence, "Conf", kFloat, kTop | kInPlate, "confidence percent"},
    {Kind::kMaxDyesPerWell, "MDPW", kUnknown, kNowhere, ""},
    {Kind::kPlates, "MPLC", kList, kTop, "plates of a study"},
    {Kind::kPlate, "RQPl", kPlate, kInPlates, "plate"},
    {Kind::kPlateName, "Path", kText, kInPlate, "plate name"},
    {Kind::kPlateDate, "RQPD", kText, kInPlate, "last modified"},
    {Kind::kEndOfPlate, "EOPl", kLong, kInPlate, "end of plate"},
    {Kind::kEndOfFile, "EOF ", kLong, kTop, "end of file"},
    {Kind::kCalibrator, "CALR", kText, kTop | kInPlate, "calibrator"},
    {Kind::kEndoControl, "ENDO", kText, kTop | kInPlate, "endogenous control"},
    {Kind::kAnalysisType, "RQAT", kShort, kTop | kInPlate, "analysis type"},
}};
// clang-format on

}  // namespace detail

/// One row for each kind. Rows 27 and 51 have the same tag, see `FindTagIndex`.
inline constexpr const auto& kRecordKinds = detail::kRows;

constexpr int kTagRowCount = static_cast<int>(kRecordKinds.size());

/// The tags, in the order of the rows.
inline constexpr auto kTagTable = [] {
  std::array<std::string_view, kRecordKinds.size()> tags;
  for (std::size_t row = 0; row < tags.size(); ++row) tags[row] = kRecordKinds[row].tag;
  return tags;
}();

/// Written in place of a new data block's tag until the whole block is on the disk.
inline constexpr std::string_view kUncommittedTag("\0\0\0\0", kTagLength);

/// The row of `tag`, or -1 if the tag is not in the table. `tag` must have exactly four characters,
/// and case matters. Of the two rows of "DESC", the result is the later one, 51. Safe from any
/// thread.
VEX2_API int FindTagIndex(std::string_view tag) noexcept;

/// The tag in row `index`; empty for an index outside the table.
constexpr std::string_view TagAt(int index) noexcept {
  return index >= 0 && index < kTagRowCount ? kRecordKinds[static_cast<std::size_t>(index)].tag
                                            : std::string_view();
}

constexpr std::string_view TagOf(Kind kind) noexcept {
  return kRecordKinds[static_cast<std::size_t>(kind)].tag;
}

/// The kind with this tag; for a tag that readers do not know, a kind of unknown layout.
inline const RecordKind& KindOf(std::string_view tag) noexcept {
  static constexpr RecordKind kNoKind = {Kind{}, "", BodyLayout::kUnknown, kNowhere, "unknown"};
  const int row = FindTagIndex(tag);
  if (row < 0) return kNoKind;
  const RecordKind& kind = kRecordKinds[static_cast<std::size_t>(row)];
  return kind.layout != BodyLayout::kUnknown ? kind : kNoKind;
}

/// Whether readers create a component for a record with this tag. They skip other records.
inline bool IsKnownTag(std::string_view tag) noexcept {
  return KindOf(tag).layout != BodyLayout::kUnknown;
}

/// The size in bytes of a body that is one value; 0 for all other layouts.
constexpr std::uint64_t FixedSize(BodyLayout layout) noexcept {
  switch (layout) {
    case BodyLayout::kByte:
      return 1;
    case BodyLayout::kShort:
      return 2;
    case BodyLayout::kColor:
      return 3;
    case BodyLayout::kLong:
    case BodyLayout::kFloat:
      return 4;
    default:
      return 0;
  }
}

/// Whether a body of this layout holds no records and may have any length. Such a body should have
/// exactly the length that its record declares.
constexpr bool IsOfAnyLength(BodyLayout layout) noexcept {
  return layout == BodyLayout::kText || layout == BodyLayout::kBytes ||
         layout == BodyLayout::kPureDyes || layout == BodyLayout::kBackground;
}

namespace detail {

constexpr bool everyRowIsItsKind() {
  for (std::size_t row = 0; row < kRecordKinds.size(); ++row) {
    if (kRecordKinds[row].kind != Kind(row) || kRecordKinds[row].tag.size() != kTagLength) {
      return false;
    }
  }
  return true;
}

constexpr int countRepeatedTags() {
  int repeated = 0;
  for (std::size_t row = 0; row < kRecordKinds.size(); ++row) {
    for (std::size_t other = 0; other < row; ++other) {
      if (kRecordKinds[row].tag == kRecordKinds[other].tag) ++repeated;
    }
  }
  return repeated;
}

}  // namespace detail

static_assert(kRecordKinds.size() == 77);
static_assert(detail::everyRowIsItsKind());
static_assert(detail::countRepeatedTags() == 1 &&
              TagOf(Kind::kCellDescription) == TagOf(Kind::kDescription));
static_assert(static_cast<int>(Kind::kCellDescription) == 27 &&
              static_cast<int>(Kind::kRawData) == 34 &&
              static_cast<int>(Kind::kReportingDataR) == 42 &&
              static_cast<int>(Kind::kReportingDataT) == 45 &&
              static_cast<int>(Kind::kMaxDyesPerWell) == 67 &&
              static_cast<int>(Kind::kAnalysisType) == 76);

}  // namespace vex2
