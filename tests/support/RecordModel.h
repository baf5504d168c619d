#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A second, literal implementation of the document's records. It shares no code with the library:
/// both must come to the same bytes on their own.
namespace vex2::test::model {

/// Bytes; a `std::string`, because a failed comparison of two prints them.
using Text = std::string;

/// `value` in `width` bytes, the most significant first, and back.
Text Big(std::uint64_t value, int width);
std::uint32_t NumberAt(const Text& bytes, std::size_t at, int width);

/// One record in memory. Which members a kind uses follows from its tag.
struct Part {
  Text tag;
  std::uint32_t length = 0;  ///< what the record declares
  Text value;                ///< a value, a text, a program, spectra; a cell's five fixed bytes
  /// What a list says of its children: more than there are where the file ends within it.
  std::uint32_t count = 0;
  std::vector<Part> children;  ///< of lists and cells; of a study's plate, its records
  bool isUnknown = false;      ///< a record of an unknown kind inside a list
  Text header;                 ///< of a study's plate

  // Data blocks only.
  std::uint32_t version = 2;
  Text times = Text(12, '\0');
  std::vector<std::uint16_t> wells;
  std::map<std::int64_t, Text> frames;  ///< 88 bytes a well; a missing one is all zero

  std::int64_t FrameCount() const;
  Text FrameAt(std::int64_t index) const;
  /// The 80 bytes a well that the file keeps of a frame.
  Text StoredFrame(std::int64_t index) const;
};

/// A place in a document's bytes.
struct Stream {
  const Text& bytes;
  std::size_t at = 0;

  /// False for a short read, which leaves the place at the end.
  bool Take(std::size_t count, Text& out);
};

/// Whether a record of the tag is kept at the top of a document.
bool IsKnown(const Text& tag);
bool IsBlock(const Text& tag);

/// Reads a whole record. `counted` grows by what the record declares after it was read.
int ReadRecord(Stream& stream, Part& part, std::uint64_t& counted);
/// Tag, declared length and body.
Text Written(const Part& part);
std::uint32_t SizeOf(const Part& part);

/// A whole document.
struct Document {
  int status = 0;  ///< of reading it
  Text header;     ///< 72 bytes and four a row, or fewer where the file ends within it
  std::vector<Part> parts;
};
Document ReadDocument(const Text& bytes);

/// What a copy of a document keeps of the record: no unknown records in its lists.
Part Copied(const Part& part);

/// Building.
Part ValuePart(const Text& tag, const Text& value);
Part ListPart(const Text& tag, const std::vector<Part>& children = {});
void Add(Part& list, Part child);
void Remove(Part& list, std::size_t index);
Part BlockPart(const Text& tag, const std::vector<std::uint16_t>& wells);
/// Counts the frame in, as building and appending do.
void AddFrame(Part& block, const Text& frame);

}  // namespace vex2::test::model
