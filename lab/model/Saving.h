#pragma once

#include <string>

#include "lab/model/Document.h"
#include "lab/model/SaveRules.h"

namespace vex2::lab {

/// Throws an error when `document` cannot be saved to `target` without harm: it was not read whole,
/// or holds data blocks of the old version that `rules` does not upgrade; or it is saved over
/// itself and would lose what cannot be kept. Upgrades the blocks otherwise.
void PrepareToSave(Document& document, const std::string& target, const SaveRules& rules);

/// Throws an error when one of the document's plates cannot be saved alone, to another file,
/// without harm.
void PreparePlateToSave(const Document& document, const Document::Plate& plate,
                        const std::string& target, const SaveRules& rules);

/// Saves `document` to `target`. Throws an error when that fails, or when the document was read to
/// be changed and another program has changed it since; the file at `target` is then as it was.
void SaveDocument(DocumentFile& document, const std::string& target);

/// Whether both paths lead to the same existing file.
bool IsSameFile(const std::string& one, const std::string& other);

}  // namespace vex2::lab
