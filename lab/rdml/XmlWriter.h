#pragma once

#include <string>
#include <string_view>

namespace vex2::lab {

/// `text`, in UTF-8, with U+FFFD for each character that XML cannot hold.
std::string XmlText(std::string_view text);

/// Appends XML to a text: one element per line, indented. All texts must be results of `XmlText`;
/// the writer escapes the special characters of XML.
class XmlWriter {
 public:
  /// `out` must outlive the writer. `depth` is the level of the first element.
  explicit XmlWriter(std::string& out, int depth = 0) : out_(out), depth_(depth) {}

  /// Begins an element. `attributes` is empty, or consists of results of `Attribute`.
  void Open(std::string_view name, std::string_view attributes = {});
  void Close(std::string_view name);
  /// Writes an element that contains only a text.
  void Leaf(std::string_view name, std::string_view text, std::string_view attributes = {});
  /// Writes an element without content.
  void Empty(std::string_view name, std::string_view attributes = {});

  /// The attribute with escaped value, such as " name=\"value\"".
  static std::string Attribute(std::string_view name, std::string_view value);

 private:
  void indent() { out_.append(static_cast<std::size_t>(depth_), ' '); }

  std::string& out_;
  int depth_;
};

}  // namespace vex2::lab
