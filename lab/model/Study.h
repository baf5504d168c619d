#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/Saving.h"

namespace vex2::lab {

/// Adds the documents at `paths` to `study` as plates, one after the other, and returns a line
/// about each. Calls `onPlate` with each path before it is added. An empty document becomes a study
/// with the plate type of the first plate. Throws an error that says why a plate cannot be added;
/// the study must not be used after that.
std::string AddPlates(Vex2FileManager& study, const std::string& studyPath,
                      const std::vector<std::string>& paths, const SaveRules& rules,
                      const std::function<void(const std::string& path)>& onPlate);

/// Adds `plate`, which was not read from a file, to `study` under `name`, in UTF-8. `modified` is
/// the date of its last change, in the form that a study stores; if it is empty, the current time.
/// Throws an error if the plate cannot be added.
void AddMadePlate(Vex2FileManager& study, DocumentFile& plate, const std::string& name,
                  const std::string& modified = {});

/// Saves one plate of `study` to `target` as a separate document. Throws an error if that fails.
/// Does not check whether `target` may be replaced: see `OutputFiles`.
void ExtractPlate(const Document& study, const Document::Plate& plate, const std::string& target,
                  const SaveRules& rules);

/// Converts the date that a study stores for a plate, in the form "Mar 05, 2003 02:07 PM", to
/// "2003-03-05T14:07". The date is the local time at which the plate's own file was last changed.
/// Any other text is returned unchanged.
std::string PlateDateText(const std::string& stored);

/// Throws an error unless `document` is a study.
void RequireStudy(const Document& document);

/// A summary of a plate in a study. Texts are UTF-8.
struct StudyPlate {
  std::string name;
  std::string modified;  ///< when the plate's own file was last changed, see `PlateDateText`
  unsigned wells = 0;
  int frames = 0;  ///< number of frames of the raw readings
  std::string status;
  std::uint64_t offset = 0;  ///< in bytes from the start of the file
  std::uint64_t size = 0;    ///< in bytes
};

/// The plates of a study, in its order. Throws an error unless `document` is a study.
std::vector<StudyPlate> StudyPlatesOf(const Document& document);

}  // namespace vex2::lab
