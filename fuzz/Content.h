#pragma once

#include <string>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::fuzz {

/// The content of a document in a form that can be compared. It leaves out what a save does not
/// keep: the two offsets in the header, which every save sets; length fields of records whose kind
/// determines their end; zero bytes at the end of a text, of which every reading drops one; the
/// bodies of unknown records; the times of a data block of version 1, and of one without a body.
struct Content {
  std::string header;
  std::vector<std::string> components;
  /// Whether a saved document can be read again. It cannot with a data block of version 1, which is
  /// saved with times that version 1 does not have; with more rows than fit in a header; and with a
  /// list that was cut off by the end of the file, because the records that follow it in the saved
  /// file would be read as its rest.
  bool isReadable = true;
};

/// The content of the document.
Content ContentOf(const Vex2FileManager& document);
/// The content of the document after it is saved and read again: of a study, only the kinds of
/// records that are saved, and its end.
Content SavedContentOf(const Vex2FileManager& document);

/// The content of one component alone.
std::string ContentOf(const CComponent& component);

/// Saves the document, reads it again, and requires that the content is the same. Returns true if
/// it could be saved and read, so that the contents were compared.
bool RequireKept(Vex2FileManager& document);

/// Whether a reader will find records that are appended to the last saved document, which was read
/// again into `saved`. It will not behind a list that still expects records, nor behind lengths
/// that count more bytes than exist.
bool CanBeFollowed(const Vex2FileManager& document, const Vex2FileManager& saved);

}  // namespace vex2::fuzz
