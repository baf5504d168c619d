#pragma once

#include <string>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::fuzz {

/// The content of a document in a form that can be compared. It leaves out what a save does not
/// keep:
/// - the two offsets in the header, which every save sets;
/// - the length fields of records whose kind determines their end;
/// - zero bytes at the end of a text, of which every reading drops one;
/// - the bodies of unknown records;
/// - the times of a data block that has version 1 or no body.
struct Content {
  std::string header;
  std::vector<std::string> components;
  /// Whether a saved document can be read again. It cannot be read if it has
  /// - a data block of version 1, which is saved with times that version 1 does not have;
  /// - more rows than fit in a header;
  /// - a list that was cut off by the end of the file: the records that follow it in the saved file
  ///   would be read as its missing children.
  bool isReadable = true;
};

/// The content of the document.
Content ContentOf(const Vex2FileManager& document);
/// The content of the document after it is saved and read again. For a study, this is only the
/// kinds of records that a save writes, and the end record.
Content SavedContentOf(const Vex2FileManager& document);

/// The content of one component alone.
std::string ContentOf(const CComponent& component);

/// Saves the document, reads it again, and requires that the content is the same. Returns true if
/// it could be saved and read, so that the contents were compared.
bool RequireKept(Vex2FileManager& document);

/// Whether a reader will find records that are appended to the last saved document, which was read
/// again into `saved`. It will not find them after a list that still expects records, or after
/// lengths that count more bytes than exist.
bool CanBeFollowed(const Vex2FileManager& document, const Vex2FileManager& saved);

}  // namespace vex2::fuzz
