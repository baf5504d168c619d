#pragma once

#include <algorithm>
#include <cstdint>

#include "vex2/framework/Language.h"

namespace vex2 {

/// Pure dyes or a background as callers pass them: fields that are stored unchanged, and spectra.
/// Owns the spectra. Use `CopyFrom` to copy; there is no copy constructor, because copies are
/// large.
template <typename Spectrum>
struct SpectrumSet {
  std::uint8_t code[4] = {};     ///< stored unchanged
  std::uint32_t setting = 10;    ///< stored unchanged
  std::uint16_t entryCount = 0;  ///< the number of entries
  std::uint16_t option = 0;      ///< stored unchanged
  std::uint32_t value = 0;       ///< stored unchanged
  std::uint8_t extra1[4] = {};   ///< stored unchanged
  std::uint8_t extra2[4] = {};   ///< stored unchanged
  Spectrum* entries = nullptr;   ///< `entryCount` entries, made with new[], or null

  SpectrumSet() = default;
  SpectrumSet(const SpectrumSet&) = delete;
  SpectrumSet& operator=(const SpectrumSet&) = delete;
  ~SpectrumSet() { delete[] entries; }

  /// Replaces the entries by `count` new ones; by none if `count` is 0.
  void SetEntryCount(std::uint16_t count) {
    delete[] entries;
    entries = nullptr;
    entryCount = 0;
    if (count == 0) return;
    entries = new Spectrum[count];
    entryCount = count;
  }

  /// Replaces the content by a copy of `other`.
  void CopyFrom(const SpectrumSet& other) {
    if (this == &other) return;
    std::copy_n(other.code, sizeof code, code);
    setting = other.setting;
    option = other.option;
    value = other.value;
    std::copy_n(other.extra1, sizeof extra1, extra1);
    std::copy_n(other.extra2, sizeof extra2, extra2);
    SetEntryCount(other.entries != nullptr ? other.entryCount : std::uint16_t{0});
    std::copy_n(other.entries, entryCount, entries);
  }
};

}  // namespace vex2
