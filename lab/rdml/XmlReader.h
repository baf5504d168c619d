#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lab/Error.h"

namespace vex2::lab {

/// An attribute of an element. It is valid only during the call to which it is passed.
struct XmlAttribute {
  std::string_view name;
  std::string_view value;
};

/// Gets the elements of a document from an `XmlReader`. Paths are the names of the elements from
/// the root on, such as "rdml/sample/type"; all texts are UTF-8.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void Begin(const std::string& path, const std::vector<XmlAttribute>& attributes) = 0;
  /// Called at the end of an element. `text` is the text of the element itself, after the last
  /// other element in it. `isLeaf` says whether the element contains no other element.
  virtual void End(const std::string& path, std::string_view text, bool isLeaf) = 0;
};

/// Reads XML piece by piece, in UTF-8, UTF-16, Latin-1 or ASCII. The elements of the expected
/// namespace may have any prefix or none. The names of elements of other namespaces begin with "~".
///
/// Nothing in the XML is trusted. A document that declares entities is refused, so that it can
/// neither grow without end nor include another file. A document is also refused if its elements
/// nest more than `kMostDepth` levels deep, or if a tag or a text has more than `kMostToken` bytes.
/// Errors name the line and the element.
class XmlReader {
 public:
  static constexpr std::size_t kMostDepth = 64;           ///< RDML nests ten levels deep
  static constexpr std::uint64_t kMostToken = 8U << 20U;  ///< bytes that are held in memory at once

  /// Errors call the document `name`. `handler` must outlive the reader. If `handler` throws an
  /// exception, `Feed` passes it on.
  XmlReader(XmlHandler& handler, std::string name, std::string_view ownNamespace);
  ~XmlReader();
  XmlReader(const XmlReader&) = delete;
  XmlReader& operator=(const XmlReader&) = delete;

  /// Reads the next bytes of the document.
  void Feed(std::string_view bytes);
  /// Ends the document. Throws an error if it is not complete.
  void Finish();

  /// The line, from 1, of the element or text that is being handled.
  std::uint64_t Line() const;
  /// An error at the current line, in the element that is being handled.
  Error Failure(const std::string& what) const;

 private:
  struct Parser;

  std::unique_ptr<Parser> parser_;
};

}  // namespace vex2::lab
