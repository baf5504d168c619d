#pragma once

#include <map>
#include <string>

#include "lab/model/Document.h"

namespace vex2::lab {

/// The values of one entry of a plate. The keys are the names of the fields.
using FactFields = std::map<std::string, std::string>;

/// An entry of a plate, which is compared with the entry of the same name in another plate.
struct FactPlace {
  std::string section;  ///< as "wells"
  std::string place;    ///< as "A1"; empty if the section has only one entry

  friend auto operator<=>(const FactPlace&, const FactPlace&) = default;
};

/// The whole content of a plate except its readings, in UTF-8.
using PlateFacts = std::map<FactPlace, FactFields>;

/// The plate's header, settings, program, wells, detectors, dyes and calibration.
PlateFacts FactsOf(const Document::Plate& plate);

/// The section for the values of a top-level record with this tag; empty if no section has them.
std::string SectionOf(std::string_view tag);

}  // namespace vex2::lab
