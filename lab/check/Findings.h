#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// How much a finding matters, the most severe first.
enum class Severity : std::uint8_t {
  kError,    ///< readers lose content, or the next write would do damage
  kWarning,  ///< unusual, but readers get the whole content
  kNote,     ///< in order, and useful to know
};
/// The number of severities.
inline constexpr std::size_t kSeverities = 3;

/// The name of a severity: "error", "warning" or "note".
VEX2_API std::string_view NameOf(Severity severity);

/// A fact about a document that its owner should know. Texts are UTF-8.
struct Finding {
  Severity severity = Severity::kError;  ///< how much it matters
  /// Tags from the outermost list inwards, such as "GLBL/VERS"; "header"; "" for no record.
  std::string record;
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::string problem;       ///< what is wrong
  std::string consequence;   ///< what it causes
  std::string remedy;        ///< what to do; empty if nothing needs to be done
};

/// The findings in one document. Keeps only as many as a person can go through: all findings about
/// a file that is damaged throughout could take more memory than the file.
struct Findings {
  /// The largest number of findings that are kept.
  static constexpr std::size_t kMost = 1000;

  /// At most `kMost` findings: errors, then warnings, then notes, each sorted by offset.
  std::vector<Finding> list;
  /// The number of findings of each severity, whether they are in the list or not.
  std::array<std::size_t, kSeverities> counts{};

  /// Counts `finding`. Keeps it unless the list already has `kMost` findings that sort before it.
  VEX2_API void Add(Finding finding);
  /// The number of findings of a severity, whether they are in the list or not.
  VEX2_API std::size_t Count(Severity severity) const;
  /// The number of findings that are not in the list.
  VEX2_API std::size_t LeftOut() const;
};

}  // namespace vex2::lab
