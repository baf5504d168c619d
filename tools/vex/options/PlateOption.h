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

/// The option "--plate", which selects the plates of a document that a command works on. Without
/// it, the command works on the document itself and, in a study, on all its plates.
class PlateOption {
 public:
  void AddTo(Options& options);

  bool IsGiven() const { return name_.has_value(); }
  /// Whether the document is a study and no plate was named, so that all plates are selected.
  bool IsAll(const Document& document) const { return !IsGiven() && document.IsStudy(); }
  /// The selected plates, at least one, valid as long as the document. Throws an error if no plate
  /// has the given name.
  std::vector<Document::Plate> Choose(const Document& document) const;
  /// The selected plates without the study itself, for content that only plates have. Can be empty.
  std::vector<Document::Plate> ChoosePlates(const Document& document) const;
  /// The plate to change. Throws an error if the document is a study and no plate was named.
  Document::Plate One(const Document& document) const;
  /// The index, from 0, of the named plate among the plates of the document. Throws an error if no
  /// plate has the given name.
  std::size_t FindIndex(const Document& document) const;

 private:
  std::optional<std::string> name_;
};

/// The title line that is printed above the output for a plate, or for the study itself.
std::string PlateTitle(const Document::Plate& plate);

/// Calls `show` for each plate. If the plates are `all` plates of a study, prints a title before
/// each.
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

/// Adds "--block" to a command. After parsing, `tag` holds the tag of the block; "RAWa" without the
/// option.
void AddBlockOption(Options& options, std::string& tag);
}  // namespace vex2::tool
