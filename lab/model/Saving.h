#pragma once

#include <functional>
#include <string>

#include "lab/model/Document.h"

namespace vex2::lab {

/// What a save of a document that was read may lose or change.
struct SaveRules {
  bool upgradeBlocks =
      false;                 ///< data blocks of version 1, which do not read back, become version 2
  bool dropUnknown = false;  ///< records that cannot be kept may be lost by a save in place
  /// Receives what a save elsewhere leaves out: a sentence for each record, the first ones singly,
  /// and one for a run in progress.
  std::function<void(const std::string& sentence)> onLoss = [](const std::string&) {};
};

/// Throws an error when `document` cannot be saved to `target` without harm: it was not read whole,
/// or holds data blocks of the old version that `rules` does not upgrade; or it is saved over
/// itself and would lose what cannot be kept. Upgrades the blocks otherwise.
void PrepareToSave(Document& document, const std::string& target, const SaveRules& rules);

/// The same for one of the document's plates, which is saved alone, to another file.
void PreparePlateToSave(const Document& document, const Document::Plate& plate,
                        const std::string& target, const SaveRules& rules);

/// Saves `document` to `target`. Throws an error when that fails, or when the document was read to
/// be changed and another program has changed it since; the file at `target` is then as it was.
void SaveDocument(DocumentFile& document, const std::string& target);

/// Whether both paths lead to the same existing file.
bool IsSameFile(const std::string& one, const std::string& other);

}  // namespace vex2::lab
