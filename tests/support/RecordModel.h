#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A second, literal implementation of the records of a document. It shares no code with the
/// library; both must produce the same bytes.
namespace vex2::test::model {

/// Bytes as a `std::string`, because a failed comparison prints strings.
using Text = std::string;

/// Convert `value` to `width` bytes, most significant byte first, and back.
Text Big(std::uint64_t value, int width);
std::uint32_t NumberAt(const Text& bytes, std::size_t at, int width);

/// One record in memory. The tag determines which members are used.
struct Part {
  Text tag;
  std::uint32_t length = 0;  ///< the length that the record declares
  Text value;                ///< a value, a text, a program, spectra; a cell's five fixed bytes
  /// The count that a list declares; above the number of children if the file ends within the list.
  std::uint32_t count = 0;
  std::vector<Part> children;  ///< of lists and cells, and the records of a plate of a study
  bool isUnknown = false;      ///< an unknown record in a list
  Text header;                 ///< only of a plate of a study

  // Data blocks only.
  std::uint32_t version = 2;
  Text times = Text(12, '\0');
  std::vector<std::uint16_t> wells;
  std::map<std::int64_t, Text> frames;  ///< 88 bytes for each well; a missing frame is all zero

  std::int64_t FrameCount() const;
  Text FrameAt(std::int64_t index) const;
  /// A frame as it is stored in a file: 80 bytes for each well.
  Text StoredFrame(std::int64_t index) const;
};

/// A reader of the bytes of a document.
struct Stream {
  const Text& bytes;
  std::size_t at = 0;

  /// Returns false for a short read, which leaves the reader at the end.
  bool Take(std::size_t count, Text& out);
};

/// Whether the tag is known: a document keeps only top-level records with known tags.
bool IsKnown(const Text& tag);
bool IsBlock(const Text& tag);

/// Reads a whole record and adds the size that it declares after reading to `counted`.
int ReadRecord(Stream& stream, Part& part, std::uint64_t& counted);
/// Tag, declared length and body.
Text Written(const Part& part);
std::uint32_t SizeOf(const Part& part);

/// A whole document.
struct Document {
  int status = 0;  ///< of reading it
  Text header;     ///< 72 bytes plus four for each row; fewer if the file ends within it
  std::vector<Part> parts;
};
Document ReadDocument(const Text& bytes);

/// The record in a copy of a document: without the unknown records in its lists.
Part Copied(const Part& part);

/// Functions that build records.
Part ValuePart(const Text& tag, const Text& value);
Part ListPart(const Text& tag, const std::vector<Part>& children = {});
void Add(Part& list, Part child);
void Remove(Part& list, std::size_t index);
Part BlockPart(const Text& tag, const std::vector<std::uint16_t>& wells);
/// Adds the frame and increases the length, as building and appending do.
void AddFrame(Part& block, const Text& frame);

}  // namespace vex2::test::model
