#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lab/json/Json.h"

namespace vex2::lab {

/// A JSON value to be read, and its path for errors, such as "blocks[0].tag". If the value is not
/// of the requested kind, throws an error that names the file and the path. The value and the name
/// of the file must outlive the node.
class JsonNode {
 public:
  JsonNode(const nlohmann::ordered_json& value, std::string path, const std::string& file)
      : value_(&value), path_(std::move(path)), file_(&file) {}

  [[noreturn]] void Refuse(const std::string& why) const;

  bool Has(const char* key) const { return value_->is_object() && value_->contains(key); }
  bool IsNull() const { return value_->is_null(); }
  const nlohmann::ordered_json& Json() const { return *value_; }
  /// The value of a key, which must exist.
  JsonNode operator[](const char* key) const;

  /// Calls `take` for each value of an array.
  template <typename Take>
  void ForEach(const Take& take) const {
    if (!value_->is_array()) Refuse("is no array");
    std::size_t index = 0;
    for (const nlohmann::ordered_json& one : *value_) {
      take(JsonNode(one, path_ + "[" + std::to_string(index++) + "]", *file_));
    }
  }

  /// A whole number that fits into `Number`; true is read as 1.
  template <typename Number>
  Number As() const {
    if (value_->is_boolean()) return value_->get<bool>() ? Number{1} : Number{0};
    const bool isTooLarge =
        value_->is_number_unsigned() && value_->get<std::uint64_t>() > std::uint64_t{INT64_MAX};
    if (value_->is_number_integer() && !isTooLarge) {
      const auto number = value_->get<std::int64_t>();
      if (number >= std::int64_t{std::numeric_limits<Number>::min()} &&
          number <= static_cast<std::int64_t>(std::numeric_limits<Number>::max())) {
        return static_cast<Number>(number);
      }
    }
    Refuse("is no whole number that a document can hold");
  }

  std::string Text() const;
  /// A text, converted to Latin-1, as documents store it.
  std::string Stored() const;
  /// The bytes that a text of hexadecimal digits represents.
  std::vector<std::uint8_t> Bytes() const;

  /// Copies a text that must have exactly `size` characters.
  template <std::size_t size>
  void CopyTo(char (&to)[size]) const {
    const std::string text = Stored();
    if (text.size() != size) refuseSize(size);
    text.copy(to, size);
  }

  /// Copies an array that must have exactly `count` whole numbers.
  template <typename Array>
  void NumbersTo(Array&& to, std::size_t count) const {
    if (!value_->is_array() || value_->size() != count) refuseCount(count);
    std::size_t index = 0;
    ForEach(
        [&](const JsonNode& one) { to[index++] = one.As<std::remove_cvref_t<decltype(to[0])>>(); });
  }

 private:
  [[noreturn]] void refuseSize(std::size_t size) const;
  [[noreturn]] void refuseCount(std::size_t count) const;

  const nlohmann::ordered_json* value_;
  std::string path_;
  const std::string* file_;
};

}  // namespace vex2::lab
