#include "lab/recover/RecoverHeader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "lab/model/HeaderFields.h"
#include "lab/recover/RecoverTree.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

constexpr unsigned kMostColumns = 32;
constexpr std::uint16_t kSmallPlate = 96;

struct Code {
  std::size_t at;
  const char* name;
};

constexpr auto kCodes = std::to_array<Code>({{HeaderLayout::kAssayCodeAt, "kind of assay"},
                                             {HeaderLayout::kRunCodeAt, "kind of run"},
                                             {HeaderLayout::kPlateTypeCodeAt, "plate type"},
                                             {HeaderLayout::kKindMarkerAt, "instrument"},
                                             {HeaderLayout::kStatusAt, "acquisition status"}});

bool isText(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t size) {
  const auto part = bytes.subspan(at, size);
  return IsPlain({reinterpret_cast<const char*>(part.data()), part.size()});
}

bool hasMagic(std::span<const std::uint8_t> header) {
  return std::equal(kMagic.begin(), kMagic.end(), header.begin());
}

bool hasShape(std::span<const std::uint8_t> header) {
  const unsigned columns = ShortAt(header, HeaderLayout::kColumnsAt);
  const unsigned rows = ShortAt(header, HeaderLayout::kRowsAt);
  return rows >= 1 && rows <= HeaderLayout::kMaxRows && columns >= 1 && columns <= kMostColumns;
}

void put(std::vector<std::uint8_t>& header, std::size_t at, std::string_view text) {
  std::copy(text.begin(), text.end(), header.begin() + static_cast<std::ptrdiff_t>(at));
}

void putShape(std::vector<std::uint8_t>& header, unsigned rows, unsigned columns) {
  header[HeaderLayout::kRowsAt] = header[HeaderLayout::kColumnsAt] = 0;
  header[HeaderLayout::kRowsAt + 1] = static_cast<std::uint8_t>(rows);
  header[HeaderLayout::kColumnsAt + 1] = static_cast<std::uint8_t>(columns);
  const auto mask = LongBytes(static_cast<std::uint32_t>((std::uint64_t{1} << columns) - 1));
  for (std::size_t row = 0; row < rows; ++row) {
    std::copy(mask.begin(), mask.end(),
              header.begin() + static_cast<std::ptrdiff_t>(HeaderLayout::kUsageAt + 4 * row));
  }
}

}  // namespace

bool IsHeaderWhole(std::span<const std::uint8_t> header) {
  if (header.size() < HeaderLayout::kSize || !hasMagic(header)) return false;
  if (ShortAt(header, HeaderLayout::kRowsAt) > HeaderLayout::kMaxRows) return false;
  return std::all_of(kCodes.begin(), kCodes.end(),
                     [&](const Code& code) { return isText(header, code.at, 4); });
}

std::vector<std::uint8_t> MadeHeader(const HeaderFacts& facts, bool isEmbedded) {
  const bool isSmall = facts.wells <= kSmallPlate;
  std::vector<std::uint8_t> header(HeaderLayout::kSize, isEmbedded ? 0xFF : 0);
  std::fill_n(header.begin(), HeaderLayout::kUsageAt, 0);
  put(header, HeaderLayout::kMagicAt, kMagic);
  header[HeaderLayout::kFormatAAt + 1] = header[HeaderLayout::kFormatBAt + 1] = 2;
  put(header, HeaderLayout::kAssayCodeAt,
      facts.isStudy ? Assay::kRelativeStudy.code : Assay::kAbsolute.code);
  put(header, HeaderLayout::kRunCodeAt, "RtRn");
  put(header, HeaderLayout::kPlateTypeCodeAt, isSmall ? "p9C " : "p3C ");
  put(header, HeaderLayout::kTextAt, std::string(31, ' '));
  put(header, HeaderLayout::kKindMarkerAt, KindMarker::kKestor);
  put(header, HeaderLayout::kStatusAt, facts.hasFrames ? RunStatus::kDone : RunStatus::kNotStarted);
  putShape(header, isSmall ? 8 : 16, isSmall ? 12 : 24);
  return header;
}

std::vector<std::uint8_t> CorrectedHeader(std::span<const std::uint8_t> header,
                                          const HeaderFacts& facts, bool isEmbedded,
                                          std::vector<std::string>& guesses) {
  const std::vector<std::uint8_t> made = MadeHeader(facts, isEmbedded);
  if (header.size() < HeaderLayout::kSize) {
    guesses.emplace_back("all of it");
    return made;
  }
  std::vector<std::uint8_t> corrected(header.begin(), header.begin() + HeaderLayout::kSize);
  const auto takeMade = [&](std::size_t at, std::size_t size) {
    std::copy_n(made.begin() + static_cast<std::ptrdiff_t>(at), size,
                corrected.begin() + static_cast<std::ptrdiff_t>(at));
  };
  if (!hasMagic(header)) takeMade(0, 4);
  for (const Code& code : kCodes) {
    if (isText(header, code.at, 4)) continue;
    takeMade(code.at, 4);
    guesses.emplace_back(code.name);
  }
  if (!hasShape(header)) {
    putShape(corrected, ShortAt(made, HeaderLayout::kRowsAt),
             ShortAt(made, HeaderLayout::kColumnsAt));
    guesses.emplace_back("rows, columns and used wells");
  } else if (UsedWells(header).empty()) {
    putShape(corrected, ShortAt(header, HeaderLayout::kRowsAt),
             ShortAt(header, HeaderLayout::kColumnsAt));
    guesses.emplace_back("used wells");
  }
  return corrected;
}

std::string GuessText(const std::vector<std::string>& guesses) {
  std::string text;
  for (const std::string& guess : guesses) {
    text.append(text.empty() ? "; guessed: " : ", ").append(guess);
  }
  return text;
}

std::vector<std::uint16_t> UsedWells(std::span<const std::uint8_t> header) {
  std::vector<std::uint16_t> used;
  if (header.size() < HeaderLayout::kSize || !hasShape(header)) return used;
  const unsigned columns = ShortAt(header, HeaderLayout::kColumnsAt);
  for (unsigned row = 0; row < ShortAt(header, HeaderLayout::kRowsAt); ++row) {
    const std::size_t at = HeaderLayout::kUsageAt + 4 * std::size_t{row};
    const std::uint32_t mask = LongAt(header, at);
    for (unsigned column = 0; column < columns; ++column) {
      if ((mask >> column & 1U) != 0) {
        used.push_back(static_cast<std::uint16_t>(row * columns + column + 1));
      }
    }
  }
  return used;
}

std::uint16_t WellsByShape(std::span<const std::uint8_t> header) {
  if (header.size() < HeaderLayout::kSize || !hasShape(header)) return 0;
  return static_cast<std::uint16_t>(ShortAt(header, HeaderLayout::kRowsAt) *
                                    ShortAt(header, HeaderLayout::kColumnsAt));
}

}  // namespace vex2::lab
