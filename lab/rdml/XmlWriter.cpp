#include "lab/rdml/XmlWriter.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Escapes the text. In attributes also escapes line ends and tabs, which a reader would change;
// carriage returns are escaped everywhere.
void appendEscaped(std::string& out, std::string_view text, bool isAttribute) {
  for (const char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"' && isAttribute) {
      out += "&quot;";
    } else if (c == '\r' || (isAttribute && (c == '\n' || c == '\t'))) {
      out += c == '\r' ? "&#13;" : c == '\n' ? "&#10;" : "&#9;";
    } else {
      out += c;
    }
  }
}

}  // namespace

std::string XmlText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    const bool isAllowed = code >= 0x20U || c == '\t' || c == '\n' || c == '\r';
    if (isAllowed) {
      result += c;
    } else {
      result += kReplacement;
    }
  }
  return result;
}

void XmlWriter::Open(std::string_view name, std::string_view attributes) {
  indent();
  out_.append("<").append(name).append(attributes).append(">\n");
  ++depth_;
}

void XmlWriter::Close(std::string_view name) {
  --depth_;
  indent();
  out_.append("</").append(name).append(">\n");
}

void XmlWriter::Leaf(std::string_view name, std::string_view text, std::string_view attributes) {
  indent();
  out_.append("<").append(name).append(attributes).append(">");
  appendEscaped(out_, text, false);
  out_.append("</").append(name).append(">\n");
}

void XmlWriter::Empty(std::string_view name, std::string_view attributes) {
  indent();
  out_.append("<").append(name).append(attributes).append("/>\n");
}

std::string XmlWriter::Attribute(std::string_view name, std::string_view value) {
  std::string text = " ";
  text.append(name).append("=\"");
  appendEscaped(text, value, true);
  return text.append("\"");
}

}  // namespace vex2::lab
