#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vex2/framework/Export.h"

/// The kinds of records: the one place that knows a tag, its row, the layout of its body and where
/// writers put it.
namespace vex2 {

constexpr std::size_t kTagLength = 4;
/// Tag and length.
constexpr std::uint64_t kRecordHeadSize = kTagLength + sizeof(std::uint32_t);

/// A kind of record. The value is the kind's row in `kRecordKinds`, on which the data types of
/// hosts rely: rows are never moved.
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
  kBytes,       ///< the instrument's own: as many bytes as the record declares
  kPureDyes,    ///< a head and entries that state their own length
  kBackground,  ///< the same with smaller entries
  kColor,       ///< three bytes
  kList,        ///< a 16-bit count and as many records
  kCell,        ///< a list with five bytes of its own after the count
  kPlate,       ///< a document within the document, after a count that is 0
  kData,        ///< a data block
};

/// Where records of a kind belong: bits, one for each list. Readers accept every kind everywhere; a
/// record elsewhere is suspicious when a document is damaged.
enum RecordHome : std::uint16_t {
  kNowhere = 0,  ///< known, but not written by this system
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
  std::string_view meaning;  ///< a few words for people; empty where it is not known
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

/// One row for each kind. Rows 27 and 51 hold the same tag, see `FindTagIndex`.
inline constexpr const auto& kRecordKinds = detail::kRows;

constexpr int kTagRowCount = static_cast<int>(kRecordKinds.size());

/// The tags alone, in the order of the rows.
inline constexpr auto kTagTable = [] {
  std::array<std::string_view, kRecordKinds.size()> tags;
  for (std::size_t row = 0; row < tags.size(); ++row) tags[row] = kRecordKinds[row].tag;
  return tags;
}();

/// Stands in place of a new data block's tag until all of the block is on the disk.
inline constexpr std::string_view kUncommittedTag("\0\0\0\0", kTagLength);

/// The row of `tag`, or -1 for a tag that is not in the table. Exactly four characters count, case
/// included. A tag that is in the table twice has the later row: "DESC" is 51. Safe from any
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

/// The kind with this tag; one of unknown layout for a tag that readers do not know.
inline const RecordKind& KindOf(std::string_view tag) noexcept {
  static constexpr RecordKind kNoKind = {Kind{}, "", BodyLayout::kUnknown, kNowhere, "unknown"};
  const int row = FindTagIndex(tag);
  if (row < 0) return kNoKind;
  const RecordKind& kind = kRecordKinds[static_cast<std::size_t>(row)];
  return kind.layout != BodyLayout::kUnknown ? kind : kNoKind;
}

/// Whether readers make a component of a record with this tag. They skip others.
inline bool IsKnownTag(std::string_view tag) noexcept {
  return KindOf(tag).layout != BodyLayout::kUnknown;
}

/// The bytes of a body that is one value; 0 for the other layouts.
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

/// Whether the body holds no records and may be of any length: it should be the one declared.
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
