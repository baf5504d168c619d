#pragma once

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "tools/vex/DocumentPlates.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::tool {

/// A plate that a command is about: the document itself, or one of those in a study.
struct Plate {
  std::string name;  ///< Latin-1; empty for the document itself
  Vex2FileManager* content = nullptr;
};

/// Which plates of a document a command works on.
class PlateChoice {
 public:
  /// Adds the option that names one plate of a study.
  void AddOption(CLI::App& app);

  /// Whether no plate was named of a study, so that all of them are shown.
  bool IsAll(const Document& document) const;
  /// The plate that was named, all plates of a study, or the document itself where it is none.
  /// Throws an error when there is no such plate.
  std::vector<Plate> Of(Document& document) const;
  /// The one plate that is to be changed; in a study it must be named.
  Plate One(Document& document) const;

  /// What `describe` says of each plate: of a document or a named plate an object of its own, of
  /// all plates of a study a list under "plates", each with its name.
  template <typename Describe>
  nlohmann::ordered_json Json(Document& document, const Describe& describe) const {
    const std::vector<Plate> plates = Of(document);
    if (!IsAll(document)) return describe(*plates.front().content);
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Plate& plate : plates) {
      nlohmann::ordered_json entry = {{"plate", shownName(plate)}};
      entry.update(describe(*plate.content));
      list.push_back(std::move(entry));
    }
    return {{"plates", std::move(list)}};
  }
  /// Calls `show` for each plate, behind a line with its name where several are shown.
  template <typename Show>
  void ForEach(Document& document, std::ostream& out, const Show& show) const {
    const bool all = IsAll(document);
    bool first = true;
    for (const Plate& plate : Of(document)) {
      if (all) out << (first ? "" : "\n") << title(plate) << '\n';
      first = false;
      show(*plate.content);
    }
  }

 private:
  static std::string shownName(const Plate& plate);
  static std::string title(const Plate& plate);

  PlateOption option_;
};

/// Whether the document holds plates of a study.
bool IsStudy(const Vex2FileManager& document);
/// All plates of a study, in its order; also those whose name another one has.
std::vector<Plate> PlatesOf(const Vex2FileManager& study);

}  // namespace vex2::tool
