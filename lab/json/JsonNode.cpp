#include "lab/json/JsonNode.h"

#include "lab/Error.h"
#include "lab/Text.h"

namespace vex2::lab {

void JsonNode::Refuse(const std::string& why) const {
  throw Error(ErrorCode::kDocument, *file_, (path_.empty() ? "the object" : path_) + ": " + why);
}

void JsonNode::refuseSize(std::size_t size) const {
  Refuse("does not have " + Counted(size, "character"));
}

void JsonNode::refuseCount(std::size_t count) const {
  Refuse("is no array of " + Counted(count, "number"));
}

JsonNode JsonNode::operator[](const char* key) const {
  if (!Has(key)) Refuse(std::string("it has no \"") + key + "\"");
  return {(*value_)[key], path_.empty() ? key : path_ + "." + key, *file_};
}

std::string JsonNode::Text() const {
  if (!value_->is_string()) Refuse("is no text");
  return value_->get<std::string>();
}

std::string JsonNode::Stored() const {
  const auto text = ToLatin1(Text());
  if (!text) Refuse("has a character that documents cannot hold (Latin-1 only)");
  return *text;
}

std::vector<std::uint8_t> JsonNode::Bytes() const {
  const std::string text = Text();
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const auto byte = NumberIn<std::uint8_t>(std::string_view(text).substr(i, 2), 16);
    if (!byte || i + 1 == text.size()) Refuse("is not in hexadecimal digits");
    bytes.push_back(*byte);
  }
  return bytes;
}

}  // namespace vex2::lab
