#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/Saving.h"

namespace vex2::lab {

/// Brings the documents at `paths` into `study` as plates, one after the other, and returns a line
/// about each; `onPlate` gets the path of the next one. An empty document becomes a study for
/// plates like the first. Throws an error that says why a plate cannot be added; the study is then
/// of no use any more.
std::string AddPlates(Vex2FileManager& study, const std::string& studyPath,
                      const std::vector<std::string>& paths, const SaveRules& rules,
                      const std::function<void(const std::string& path)>& onPlate);

/// Brings `plate`, which was not read from a file, into `study` under `name`, which is UTF-8 and
/// stands for the name of its file without the extension. `modified` is when it was last changed,
/// as a study stores it; empty is now. Throws an error when that cannot be.
void AddMadePlate(Vex2FileManager& study, DocumentFile& plate, const std::string& name,
                  const std::string& modified = {});

/// Saves one plate of `study` to `target` as a document of its own. Throws an error when that
/// fails. `OutputFiles` says whether `target` may be written.
void ExtractPlate(const Document& study, const Document::Plate& plate, const std::string& target,
                  const SaveRules& rules);

/// When a plate's own file was last changed, as "2003-03-05T14:07" in local time, given what the
/// study stores, "Mar 05, 2003 02:07 PM". Any other text is returned unchanged.
std::string PlateDateText(const std::string& stored);

/// Throws an error unless `document` is a study.
void RequireStudy(const Document& document);

/// A plate of a study in a few words. Texts are UTF-8.
struct StudyPlate {
  std::string name;
  std::string modified;  ///< when the plate's own file was last changed, see `PlateDateText`
  unsigned wells = 0;
  int frames = 0;  ///< of the raw readings
  std::string status;
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::uint64_t size = 0;    ///< bytes
};

/// The plates of a study, in its order. Throws an error unless `document` is a study.
std::vector<StudyPlate> StudyPlatesOf(const Document& document);

}  // namespace vex2::lab
