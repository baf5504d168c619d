#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vex2/framework/Export.h"

namespace vex2 {

constexpr std::size_t kTagLength = 4;

/// The known component kinds. A kind's row index is its number, on which the factory and the data
/// block types rely; rows are never moved. Rows 27 and 51 hold the same tag, see `FindTagIndex`.
inline constexpr std::array<std::string_view, 77> kTagTable = {
    "GLBL", "VERS", "PRER", "POSR", "LOGT", "COMM", "PCRV", "FTRD", "DRKS", "UOMC", "PDYE",
    "BKGD", "SPEC", "TSMP", "TPro", "RFID", "SPNM", "SPON", "SPRV", "SPCH", "CNTL", "CELS",
    "CELL", "ROWN", "COLN", "HDAT", "NAME", "DESC", "1CTL", "CPLT", "CPNM", "STVL", "STUM",
    "DYCD", "RAWa", "DETT", "DNAM", "TASK", "QANT", "DUSE", "CALI", "RefN", "REPr", "REPn",
    "REPd", "REPt", "DETL", "DETX", "DETN", "DYER", "DYEQ", "DESC", "COMT", "COLR", "DATC",
    "DATM", "OWNR", "LOCS", "DASB", "DAEB", "DATH", "DAAB", "DAAT", "DAQF", "RqDy", "aDye",
    "Conf", "MDPW", "MPLC", "RQPl", "Path", "RQPD", "EOPl", "EOF ", "CALR", "ENDO", "RQAT"};

constexpr int kTagRowCount = static_cast<int>(kTagTable.size());

/// The row in which a well's description would be looked for. The same tag stands again in row 51,
/// which is the one that a lookup finds.
constexpr int kShadowedDescriptionRow = 27;

/// The row of `tag`, or -1 for a tag that is not in the table. Exactly four characters count, case
/// included. A tag that stands twice has the later row: "DESC" is 51. Safe from any thread.
VEX2_API int FindTagIndex(std::string_view tag) noexcept;

/// The tag in row `index`; empty for an index outside the table.
constexpr std::string_view TagAt(int index) noexcept {
  return index >= 0 && index < kTagRowCount ? kTagTable[static_cast<std::size_t>(index)]
                                            : std::string_view();
}

namespace detail {

constexpr bool allTagsHaveFourCharacters() {
  for (const auto tag : kTagTable) {
    if (tag.size() != kTagLength) return false;
  }
  return true;
}

constexpr int countRepeatedTags() {
  int repeated = 0;
  for (std::size_t row = 0; row < kTagTable.size(); ++row) {
    for (std::size_t other = 0; other < row; ++other) {
      if (kTagTable[row] == kTagTable[other]) ++repeated;
    }
  }
  return repeated;
}

}  // namespace detail

static_assert(kTagTable.size() == 77);
static_assert(detail::allTagsHaveFourCharacters());
static_assert(detail::countRepeatedTags() == 1 && kTagTable[27] == kTagTable[51]);
static_assert(kTagTable[34] == "RAWa" && kTagTable[45] == "REPt" && kTagTable[76] == "RQAT");

}  // namespace vex2
