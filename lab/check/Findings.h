#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vex2::lab {

enum class Severity : std::uint8_t {
  kError,    ///< content is lost to readers, or the next write would do harm
  kWarning,  ///< out of the ordinary, but all of the content is read
  kNote,     ///< as it should be, and good to know
};
constexpr std::size_t kSeverities = 3;

/// "error", "warning", "note".
std::string_view NameOf(Severity severity);

/// Something about a document that its owner should know.
struct Finding {
  Severity severity = Severity::kError;
  std::string record;  ///< tags from the outermost in, "GLBL/VERS"; "header"; "" for no record
  std::uint64_t offset = 0;  ///< where it is, from the file's begin
  std::string problem;
  std::string consequence;
  std::string remedy;  ///< empty where there is nothing to do
};

/// What was found in one document. Keeps no more than a person can go through: a file that is all
/// damage would otherwise need more memory for its findings than for itself.
class Findings {
 public:
  static constexpr std::size_t kMost = 1000;

  void Add(Finding finding);
  /// Those that were kept: errors first, then warnings, then notes, each by their place in the
  /// file.
  std::vector<Finding> Sorted() const;
  /// How many there were of a kind, kept or not.
  std::size_t Count(Severity severity) const;
  /// How many are not among those that were kept.
  std::size_t LeftOut() const;

 private:
  // Apart, so that a thousand notes do not leave an error out.
  std::array<std::vector<Finding>, kSeverities> findings_;
  std::array<std::size_t, kSeverities> counts_{};
};

}  // namespace vex2::lab
