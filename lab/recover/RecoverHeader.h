#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vex2::lab {

/// Facts about a plate that are found from its records. A damaged header can be made again from
/// them.
struct HeaderFacts {
  bool isStudy = false;
  bool hasFrames = false;
  std::uint16_t wells = 0;  ///< the largest number of wells of a data block; 0 if there is none
};

/// Whether a header is undamaged, as far as that can be checked: by its first bytes, its number of
/// rows, and its codes, which must be text. Also for the header of a plate in a study, which begins
/// like that of a document.
bool IsHeaderWhole(std::span<const std::uint8_t> header);

/// `header` with new values in place of invalid ones. Appends to `guesses` what was replaced, as
/// texts for the user.
std::vector<std::uint8_t> CorrectedHeader(std::span<const std::uint8_t> header,
                                          const HeaderFacts& facts, bool isEmbedded,
                                          std::vector<std::string>& guesses);

/// The guesses as the end of a message, "; guessed: this, that"; empty if there are no guesses.
std::string GuessText(const std::vector<std::string>& guesses);

/// A new header, made only from the facts.
std::vector<std::uint8_t> MadeHeader(const HeaderFacts& facts, bool isEmbedded);

/// The numbers of the wells that the header marks as used, from 1; empty if that part of the header
/// is damaged.
std::vector<std::uint16_t> UsedWells(std::span<const std::uint8_t> header);
/// The number of wells by the header's rows and columns; 0 if these are not valid.
std::uint16_t WellsByShape(std::span<const std::uint8_t> header);

}  // namespace vex2::lab
