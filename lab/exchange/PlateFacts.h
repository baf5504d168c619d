#pragma once

#include <map>
#include <string>

#include "lab/model/Document.h"

namespace vex2::lab {

/// The values of one thing in a plate, by their names.
using FactFields = std::map<std::string, std::string>;

/// A thing in a plate that is compared with the one of the same name in another.
struct FactPlace {
  std::string section;  ///< as "wells"
  std::string place;    ///< as "A1"; empty where a section has one thing

  friend auto operator<=>(const FactPlace&, const FactPlace&) = default;
};

/// All that stands in a plate but its readings, in UTF-8.
using PlateFacts = std::map<FactPlace, FactFields>;

/// The plate's header, settings, program, wells, detectors, dyes and calibration.
PlateFacts FactsOf(const Document::Plate& plate);

/// The section in which the values of a top-level record of this tag stand; empty for a kind of
/// record that no section covers.
std::string SectionOf(std::string_view tag);

}  // namespace vex2::lab
