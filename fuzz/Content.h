#pragma once

#include <string>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::fuzz {

/// What a document holds, in a form that can be compared: all of it but for what the format does
/// not carry. That is: the header's two positions, which every save sets anew; what length fields
/// say, where a record's kind tells its end; zero bytes at the end of a text, of which every
/// reading drops one; the bodies of unknown records; the times of a block of the old version, and
/// of one without a body.
struct Content {
  std::string header;
  std::vector<std::string> components;
  /// Whether a save can be read again at all. Not so with a block of the old version, which is
  /// saved with times that its version denies; with more rows than a header has room for; and with
  /// a list that the end of the file completed, where anything may follow: it would be taken for
  /// the rest.
  bool isReadable = true;
};

/// All that the document holds.
Content ContentOf(const Vex2FileManager& document);
/// What a saved one holds when it is read again: of a study, the kinds that are kept and its end.
Content SavedContentOf(const Vex2FileManager& document);

/// The content of one component alone.
std::string ContentOf(const CComponent& component);

/// Saves the document and reads it again; requires that it holds the same. True when it could be
/// saved and read, so that there was something to compare.
bool RequireKept(Vex2FileManager& document);

/// Whether records that are appended to the document that was saved last and kept, and read again
/// into `saved`, will be found. Not so behind a list that still waits for records, and behind
/// lengths that count more than there is.
bool CanBeFollowed(const Vex2FileManager& document, const Vex2FileManager& saved);

}  // namespace vex2::fuzz
