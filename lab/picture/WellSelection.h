#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "lab/model/Run.h"

namespace vex2::lab {

/// The wells that are named by a text such as "A1:C6,D4": single wells, and rectangles between two
/// corners.
class WellSelection {
 public:
  /// An empty text selects all wells.
  explicit WellSelection(std::string text) : text_(std::move(text)) {}

  /// The numbers of the selected wells on this plate; empty if all are selected. Throws
  /// `kNoSuchWell` for a well that the plate does not have.
  std::set<std::uint32_t> On(const Plate& plate) const;

 private:
  std::string text_;
};

}  // namespace vex2::lab
