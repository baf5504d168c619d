#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "vex2/framework/Export.h"

/// A text of single-byte characters, which may contain zero bytes. Copies are independent.
class VEX2_API CString {
 public:
  CString() = default;
  /// A copy of the text up to its terminating zero; empty for a null pointer.
  CString(const char* text);  // NOLINT: hosts pass literals
  /// The first `length` characters of `text`, zero bytes included.
  CString(const char* text, int length);
  /// A copy of `text`, zero bytes included.
  explicit CString(std::string_view text) : text_(text) {}

  /// The number of characters, zero bytes included.
  int GetLength() const { return static_cast<int>(text_.size()); }
  /// Whether the text has no characters.
  bool IsEmpty() const { return text_.empty(); }
  /// Removes all characters.
  void Empty() { text_.clear(); }

  /// The characters with a terminating zero; valid until the text changes or is destroyed.
  const char* GetString() const { return text_.c_str(); }
  /// The characters with a terminating zero; valid until the text changes or is destroyed.
  operator const char*() const { return text_.c_str(); }  // NOLINT: hosts pass a text on as it is
  /// The characters, zero bytes included; valid until the text changes or is destroyed.
  std::string_view View() const { return text_; }

  /// The character at `index`, from 0; 0 at the end and for an index out of range.
  char GetAt(int index) const;

  /// Appends `tail`.
  CString& operator+=(const CString& tail);
  /// Appends one character.
  CString& operator+=(char tail);
  /// Returns `left` followed by `right`.
  friend VEX2_API CString operator+(const CString& left, const CString& right);
  /// Returns `left` followed by `right`. Without this operator, `path + '/'` would add to the
  /// pointer that a text converts to.
  friend VEX2_API CString operator+(const CString& left, char right);

  /// Compares all characters, including zero bytes; case-sensitive.
  friend bool operator==(const CString& left, const CString& right) {
    return left.text_ == right.text_;
  }
  /// Compares with the characters of `right` up to its terminating zero; case-sensitive. A null
  /// pointer equals the empty text.
  friend bool operator==(const CString& left, const char* right) {
    return left.text_ == (right != nullptr ? right : "");
  }
  /// Whether `left` sorts before `right`, byte by byte.
  friend bool operator<(const CString& left, const CString& right) {
    return left.text_ < right.text_;
  }

  /// Returns a value below, equal to or above 0 if this text sorts before, equal to or after
  /// `other`, byte by byte.
  int Compare(const char* other) const;
  /// Index of the first `character` at or after `start`, or -1.
  int Find(char character, int start = 0) const;
  /// Index of the first occurrence of `part` at or after `start`, or -1.
  int Find(const char* part, int start = 0) const;
  /// Index of the last `character`, or -1.
  int ReverseFind(char character) const;
  /// The first `count` characters; fewer if the text is shorter.
  CString Left(int count) const;
  /// The last `count` characters; fewer if the text is shorter.
  CString Right(int count) const;
  /// The characters from the index `first`, from 0, to the end.
  CString Mid(int first) const;
  /// At most `count` characters, beginning at the index `first`, from 0.
  CString Mid(int first, int count) const;
  /// Converts ASCII letters to upper case, independent of the locale.
  void MakeUpper();

 private:
  std::string text_;
};

/// Writes the characters of `text`, zero bytes included.
VEX2_API std::ostream& operator<<(std::ostream& out, const CString& text);
