#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// Values of one kind that an export or an import left out or changed.
struct Loss {
  std::string what;         ///< the kind of value, such as "times of readings"
  std::uint64_t count = 0;  ///< number of values
  std::string example;      ///< the first of them, with its place
  /// Whether the values were kept in another form: rounded, renamed or moved. Otherwise they were
  /// left out.
  bool isChanged = false;

  /// Whether all fields are equal.
  friend bool operator==(const Loss&, const Loss&) = default;
};

/// Everything that an export or an import left out or changed, by kind, in the order in which it
/// was found. Everything that is dropped is listed here.
struct VEX2_API Losses {
  std::vector<Loss> losses;  ///< every kind with its count and example

  /// Counts `count` values of the kind `what` that are left out. The first call for a kind sets the
  /// example.
  void Add(std::string_view what, const std::string& example, std::uint64_t count = 1);
  /// Counts `count` values of the kind `what` that are kept in another form. The first call for a
  /// kind sets the example.
  void AddChanged(std::string_view what, const std::string& example, std::uint64_t count = 1);

  /// Every kind of loss, with its count and example.
  const std::vector<Loss>& List() const { return losses; }
  /// Whether everything was kept unchanged.
  bool IsEmpty() const { return losses.empty(); }

  /// Whether the new file also contains the document itself, as an RDML archive can. `Import` then
  /// restores all values from it, and only other programs miss those in the list.
  bool hasDocument = false;
};

/// The loss as a line of text for users: "lost: times of readings (12), as A1 amplification cycle
/// 1". With `hasDocument`, see `Losses::hasDocument`, the line is about other programs: "other
/// programs do not see: times of readings (12), as ...".
VEX2_API std::string TextOf(const Loss& loss, bool hasDocument = false);

}  // namespace vex2::lab
