#pragma once

#include <string>

#include "lab/model/Document.h"
#include "lab/model/SaveRules.h"

namespace vex2::lab {

/// Throws an error if a save of `document` to `target` would do damage. That is so if the document
/// was not read completely; if it holds data blocks of version 1, and `rules` do not allow
/// upgrading them; or if the save would replace the document itself and lose records. Otherwise
/// upgrades the blocks.
void PrepareToSave(Document& document, const std::string& target, const SaveRules& rules);

/// Throws an error if saving one plate of the document to another file would do damage; see
/// `PrepareToSave`.
void PreparePlateToSave(const Document& document, const Document::Plate& plate,
                        const std::string& target, const SaveRules& rules);

/// Saves `document` to `target`. Throws an error if that fails, or if the document was read to be
/// changed and another program has changed it since. The file at `target` is then unchanged.
void SaveDocument(DocumentFile& document, const std::string& target);

/// Whether both paths name the same existing file.
bool IsSameFile(const std::string& one, const std::string& other);

}  // namespace vex2::lab
