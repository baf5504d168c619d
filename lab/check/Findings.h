#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// How much a finding matters, the gravest first.
enum class Severity : std::uint8_t {
  kError,    ///< content is lost to readers, or the next write would do harm
  kWarning,  ///< out of the ordinary, but all of the content is read
  kNote,     ///< as it should be, and good to know
};
/// The number of severities.
inline constexpr std::size_t kSeverities = 3;

/// "error", "warning", "note".
VEX2_API std::string_view NameOf(Severity severity);

/// Something about a document that its owner should know. Texts are UTF-8.
struct Finding {
  Severity severity = Severity::kError;  ///< how much it matters
  std::string record;  ///< tags from the outermost in, "GLBL/VERS"; "header"; "" for no record
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::string problem;       ///< what is wrong
  std::string consequence;   ///< what it causes
  std::string remedy;        ///< empty where there is nothing to do
};

/// What was found in one document. Keeps no more than a person can go through: a file that is all
/// damage would otherwise need more memory for its findings than for itself.
struct Findings {
  /// The most findings that are kept.
  static constexpr std::size_t kMost = 1000;

  /// The first `kMost`: errors, then warnings, then notes, each by offset.
  std::vector<Finding> list;
  /// How many there were of each severity, in the list or not.
  std::array<std::size_t, kSeverities> counts{};

  /// Counts `finding`, and keeps it unless `kMost` graver or earlier ones are kept.
  VEX2_API void Add(Finding finding);
  /// How many there were of a severity, in the list or not.
  VEX2_API std::size_t Count(Severity severity) const;
  /// How many are not in the list.
  VEX2_API std::size_t LeftOut() const;
};

}  // namespace vex2::lab
