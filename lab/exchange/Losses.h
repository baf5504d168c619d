#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// Values of one kind that did not come through an export or an import as they were.
struct Loss {
  std::string what;         ///< the kind of value, as "times of readings"
  std::uint64_t count = 0;  ///< how many values
  std::string example;      ///< the first of them, with the place where it stands
  /// Whether the values are there in another form: rounded, renamed or put elsewhere. Otherwise
  /// they are left out.
  bool isChanged = false;

  /// Whether all fields are equal.
  friend bool operator==(const Loss&, const Loss&) = default;
};

/// What an export or an import could not bring over, by kind, in the order in which it was met.
/// Nothing is dropped without being listed here.
struct VEX2_API Losses {
  std::vector<Loss> losses;  ///< every kind with its count and example

  /// Counts values of the kind `what` that are left out. Of the calls with the same kind the first
  /// gives the example.
  void Add(std::string_view what, const std::string& example, std::uint64_t count = 1);
  /// Counts values of the kind `what` that come over in another form.
  void AddChanged(std::string_view what, const std::string& example, std::uint64_t count = 1);

  /// Every kind of loss, with its count and example.
  const std::vector<Loss>& List() const { return losses; }
  /// Whether everything came over as it was.
  bool IsEmpty() const { return losses.empty(); }
};

/// A line about the loss for people: "left out: 12 times of readings, as A1 amplification cycle 1".
VEX2_API std::string TextOf(const Loss& loss);

/// The report of all losses as a JSON object on several lines, with the key "version"; `source` and
/// `target` are the paths of the files.
VEX2_API std::string LossReportJson(const Losses& losses, const std::string& source,
                                    const std::string& target);

}  // namespace vex2::lab
