#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lab/Error.h"

namespace vex2::lab {

/// An attribute of an element; valid during the call that hands it on.
struct XmlAttribute {
  std::string_view name;
  std::string_view value;
};

/// What an `XmlReader` tells of a document, element by element. Paths are the names of the elements
/// from the root on, as "rdml/sample/type"; all texts are UTF-8.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void Begin(const std::string& path, const std::vector<XmlAttribute>& attributes) = 0;
  /// `text` is what stands directly in the element, after the last other element in it. `isLeaf` is
  /// whether there is no other element.
  virtual void End(const std::string& path, std::string_view text, bool isLeaf) = 0;
};

/// Reads XML in pieces: in UTF-8, UTF-16, Latin-1 or ASCII, with any prefixes for the one namespace
/// that is asked for, or without. Elements of other namespaces have a "~" before their names.
///
/// Nothing in the XML is trusted: documents that declare entities are refused, so that none can
/// grow without end or lead to another file; so are those whose elements nest more than
/// `kMostDepth` deep, and those with a tag or a text of more than `kMostToken` bytes. Errors name
/// the line and the element.
class XmlReader {
 public:
  static constexpr std::size_t kMostDepth = 64;           ///< a stack of names; RDML nests ten deep
  static constexpr std::uint64_t kMostToken = 8U << 20U;  ///< held in memory at once

  /// `name` is what errors call the document. `handler` must outlive the reader; what it throws is
  /// thrown by `Feed`.
  XmlReader(XmlHandler& handler, std::string name, std::string_view ownNamespace);
  ~XmlReader();
  XmlReader(const XmlReader&) = delete;
  XmlReader& operator=(const XmlReader&) = delete;

  /// Reads on with the next bytes of the document.
  void Feed(std::string_view bytes);
  /// Says that there are no more. Throws an error when the document is not complete.
  void Finish();

  /// The line of what is being handed on, from 1.
  std::uint64_t Line() const;
  /// An error at this line, in the element that is being handed on.
  Error Failure(const std::string& what) const;

 private:
  struct Parser;

  std::unique_ptr<Parser> parser_;
};

}  // namespace vex2::lab
