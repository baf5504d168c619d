#pragma once

#include <string>
#include <vector>

#include "tools/vex/document/Document.h"
#include "tools/vex/document/Rewriting.h"

namespace vex2::tool {

/// Brings the documents at `paths` into `study` as plates, one after the other, and answers a line
/// about each. An empty document becomes a study for plates like the first. Throws an error that
/// says why a plate cannot be added; the study is then of no use any more.
std::string AddPlates(Vex2FileManager& study, const std::string& studyPath,
                      const std::vector<std::string>& paths, const Rewriting& rewriting);

/// Saves one plate of `study` to `target` as a document of its own. Throws an error when that
/// fails. `OutputFiles` says whether `target` may be written.
void ExtractPlate(const Document& study, const Document::Plate& plate, const std::string& target,
                  const Rewriting& rewriting);

/// Throws an error unless `document` is a study.
void RequireStudy(const Document& document);

}  // namespace vex2::tool
