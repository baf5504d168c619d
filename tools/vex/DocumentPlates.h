#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/vex/Document.h"

class AcquisitionDataComp;

namespace vex2::tool {

/// Which plates of a document a command works on: the option "--plate" and what it means. Without
/// it that is the document itself and, in a study, all its plates.
class PlateOption {
 public:
  void AddTo(CLI::App& app);

  bool IsGiven() const { return name_.has_value(); }
  /// The plates, at least one, valid as long as the document is. Throws an error when there is no
  /// plate of the name that was given.
  std::vector<Document::Plate> Choose(const Document& document) const;
  /// The place, from 0, of the plate that was given, among the document's. Throws as above.
  std::size_t FindIndex(const Document& document) const;

 private:
  std::optional<std::string> name_;
};

/// The first plate of a document that a person calls by this name; null when there is none.
const Document::Plate* FindPlate(const Document& document, std::string_view name);

/// Throws an error that names the plates that there are: none is called `name`.
[[noreturn]] void RefusePlateName(const Document& document, std::string_view name);

/// The first data block of a plate with this tag; null when there is none.
const AcquisitionDataComp* FindBlock(const Document::Plate& plate, std::string_view tag);

}  // namespace vex2::tool
