#pragma once

#include <string>
#include <string_view>

namespace vex2::lab {

/// `text`, which is UTF-8, without the characters that XML cannot hold: each becomes U+FFFD.
std::string XmlText(std::string_view text);

/// Writes XML after what a text holds: an element a line, indented. Texts must be such as `XmlText`
/// returns; what is special in XML is escaped here.
class XmlWriter {
 public:
  /// `out` must outlive the writer. `depth` is that of the next element.
  explicit XmlWriter(std::string& out, int depth = 0) : out_(out), depth_(depth) {}

  /// Begins an element; `attributes` is empty, or " name=\"value\"" as `Attribute` makes it.
  void Open(std::string_view name, std::string_view attributes = {});
  void Close(std::string_view name);
  /// An element with a text and nothing else.
  void Leaf(std::string_view name, std::string_view text, std::string_view attributes = {});
  /// An element without content.
  void Empty(std::string_view name, std::string_view attributes = {});

  /// " name=\"value\"", escaped.
  static std::string Attribute(std::string_view name, std::string_view value);

 private:
  void indent() { out_.append(static_cast<std::size_t>(depth_), ' '); }

  std::string& out_;
  int depth_;
};

}  // namespace vex2::lab
