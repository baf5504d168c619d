#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vex2::lab {

/// What the records say of the plate whose header is to be made again.
struct PlateFacts {
  bool isStudy = false;
  bool hasFrames = false;
  std::uint16_t wells = 0;  ///< the most that a data block has; 0 when there is none
};

/// Whether a header is damaged where it can be told: what it begins with, its number of rows, codes
/// that are no text. A plate's header in a study begins as a document's does.
bool IsHeaderWhole(std::span<const std::uint8_t> header);

/// `header` with what cannot be right made anew, and what that was, for people.
std::vector<std::uint8_t> CorrectedHeader(std::span<const std::uint8_t> header,
                                          const PlateFacts& facts, bool isEmbedded,
                                          std::vector<std::string>& guesses);

/// "; guessed: this, that" for people; empty when there are no guesses.
std::string GuessText(const std::vector<std::string>& guesses);

/// A header made of nothing but the facts.
std::vector<std::uint8_t> MadeHeader(const PlateFacts& facts, bool isEmbedded);

/// The numbers of the wells that the header says are used, from 1; empty when it does not say.
std::vector<std::uint16_t> UsedWells(std::span<const std::uint8_t> header);
/// How many wells the header's rows and columns make; 0 when they cannot be right.
std::uint16_t WellsByShape(std::span<const std::uint8_t> header);

}  // namespace vex2::lab
