#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The parts of documents to compare.
struct DiffOptions {
  /// Readings are equal if they differ by no more than this. It is in real units if this library
  /// recorded both readings; otherwise it applies to the stored numbers. Must not be negative.
  double tolerance = 0;
  bool setup = true;     ///< header, settings, program, wells, detectors, dyes, calibration
  bool readings = true;  ///< the data blocks
  bool records = true;   ///< records of other kinds, and bytes that are not part of a known value
};

/// One difference between two documents, and the places, such as wells, that have it: the same
/// field with the same two values. All readings of a data block that differ are one difference,
/// whatever their values are, and so are all its times, temperatures and cycles. Texts are UTF-8.
struct Difference {
  static constexpr std::size_t kMostPlaces = 3;  ///< how many of the places are listed

  std::string plate;    ///< name of the plate in a study; empty otherwise
  std::string section;  ///< "header", "wells", "readings" and so on
  std::string what;  ///< the field, such as "sample"; empty if one document lacks the whole entry
  std::optional<std::string> one;    ///< value in the first document; nothing if it has none
  std::optional<std::string> other;  ///< value in the second document; nothing if it has none
  std::uint64_t count = 0;           ///< number of places with this difference
  /// The first places with this difference, such as "A1"; empty if the section has only one place.
  std::vector<std::string> places;
  double largest = 0;  ///< only for readings: the largest difference

  /// Whether all fields are equal.
  friend bool operator==(const Difference&, const Difference&) = default;
};

/// Compares two documents; compares studies plate by plate. Returns the differences; equal
/// differences of the same field become one.
///
/// Throws `Error` if a document cannot be read completely.
VEX2_API std::vector<Difference> Diff(const std::filesystem::path& one,
                                      const std::filesystem::path& other,
                                      const DiffOptions& options = {});

/// The difference as a line of text for users: "wells: sample: 'a' -> 'b' in 12 places: A1, A2, A3,
/// ...".
VEX2_API std::string TextOf(const Difference& difference);

}  // namespace vex2::lab
