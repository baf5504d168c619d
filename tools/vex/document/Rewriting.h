#pragma once

#include <string>

#include "tools/vex/document/Document.h"

namespace vex2::tool {

class Options;

/// What every command does that saves a document it has read.
class Rewriting {
 public:
  /// Adds the options that say what may be lost or changed.
  void AddOptions(Options& options);

  /// Throws an error when `document` cannot be saved to `target` without harm: it was not read
  /// whole, or holds data blocks of the old version that may not be upgraded, which it does
  /// otherwise; or it is saved over itself and would lose what cannot be kept. Says on standard
  /// error what a save elsewhere leaves out.
  void Prepare(Document& document, const std::string& target) const;

  /// The same for one of the document's plates, which is saved alone, to another file.
  void PreparePlate(const Document& document, const Document::Plate& plate,
                    const std::string& target) const;

  /// Saves `document` to `target`. Throws an error when that fails, or when the document was read
  /// to be changed and another program has changed it since.
  static void Save(DocumentFile& document, const std::string& target);

 private:
  void upgradeBlocks(const Document& document) const;
  void upgradeBlocks(const Document& document, const Document::Plate& plate) const;
  void reportLosses(const Document& document, const std::vector<Document::Loss>& losses,
                    const std::string& target) const;

  bool upgrade_ = false;
  bool dropUnknown_ = false;
};

/// Whether both paths lead to the same existing file.
bool IsSameFile(const std::string& one, const std::string& other);

}  // namespace vex2::tool
