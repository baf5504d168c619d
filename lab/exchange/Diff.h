#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The parts of documents that are compared.
struct DiffOptions {
  /// Readings that differ by no more than this are equal: in real units where this library recorded
  /// both, as stored numbers otherwise. Not negative.
  double tolerance = 0;
  bool setup = true;     ///< header, settings, program, wells, detectors, dyes, calibration
  bool readings = true;  ///< the data blocks
  bool records = true;   ///< records of other kinds, and bytes that hold no known value
};

/// Equal differences between two documents, in one or more places. Texts are UTF-8.
struct Difference {
  std::string plate;    ///< of a study, by name; empty otherwise
  std::string section;  ///< "header", "wells", "readings" and so on
  std::string what;     ///< the field, as "sample"; empty where the whole place is concerned
  std::optional<std::string> one;    ///< in the first document; nothing if it has none
  std::optional<std::string> other;  ///< in the second one
  std::uint64_t count = 0;           ///< of places
  std::vector<std::string> places;   ///< the first ones, as "A1"; none where there is only one
  double largest = 0;                ///< of readings: the largest difference

  /// Whether all fields are equal.
  friend bool operator==(const Difference&, const Difference&) = default;
};

/// Compares two documents, studies plate by plate. Returns what differs, and nothing else; equal
/// differences of the same field are one.
///
/// Throws `Error` when a document cannot be read whole.
VEX2_API std::vector<Difference> Diff(const std::filesystem::path& one,
                                      const std::filesystem::path& other,
                                      const DiffOptions& options = {});

/// The difference as a line for people: "wells: sample: 'a' -> 'b' in 12 places: A1, A2, A3, ...".
VEX2_API std::string TextOf(const Difference& difference);

/// The differences as a JSON object with the key "version"; `one` and `other` are the paths.
VEX2_API std::string DiffJson(const std::vector<Difference>& differences, const std::string& one,
                              const std::string& other);

}  // namespace vex2::lab
