#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "lab/Text.h"
#include "lab/model/DocumentPlates.h"
#include "tools/vex/Errors.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// Which plates of a document a command works on: the option "--plate" and what it means. Without
/// it that is the document itself and, in a study, all its plates.
class PlateOption {
 public:
  void AddTo(Options& options);

  bool IsGiven() const { return name_.has_value(); }
  /// Whether no plate of a study was named, so that all of them are meant.
  bool IsAll(const Document& document) const { return !IsGiven() && document.IsStudy(); }
  /// The plates, at least one, valid as long as the document is. Throws an error when there is no
  /// plate of the name that was given.
  std::vector<Document::Plate> Choose(const Document& document) const;
  /// The same without the study itself, of what only its plates have; there may be none.
  std::vector<Document::Plate> ChoosePlates(const Document& document) const;
  /// The one that is to be changed; in a study it must have been named.
  Document::Plate One(const Document& document) const;
  /// The place, from 0, of the plate that was given, among the document's. Throws as above.
  std::size_t FindIndex(const Document& document) const;

 private:
  std::optional<std::string> name_;
};

/// A line above what is shown of a plate, or of the study itself.
std::string PlateTitle(const Document::Plate& plate);

/// Calls `show` for each of the plates, behind a title when they are `all` of a study.
template <typename Show>
void ShowPlates(const std::vector<Document::Plate>& plates, bool all, std::ostream& out,
                const Show& show) {
  bool first = true;
  for (const Document::Plate& plate : plates) {
    if (all) out << (first ? "" : "\n") << PlateTitle(plate) << '\n';
    first = false;
    show(*plate.content);
  }
}

/// Adds "--block" to a command; `tag` holds the block's tag then, "RAWa" when it is not given.
void AddBlockOption(Options& options, std::string& tag);
}  // namespace vex2::tool
