#include "vex2/framework/CString.h"

#include <algorithm>
#include <ostream>

namespace {

std::size_t notNegative(int count) {
  return static_cast<std::size_t>(std::max(count, 0));
}

int indexOrNone(std::size_t found) {
  return found != std::string::npos ? static_cast<int>(found) : -1;
}

}  // namespace

CString::CString(const char* text) : text_(text != nullptr ? text : "") {}

CString::CString(const char* text, int length) {
  if (text != nullptr) text_.assign(text, notNegative(length));
}

char CString::GetAt(int index) const {
  return index >= 0 && index < GetLength() ? text_[notNegative(index)] : '\0';
}

CString& CString::operator+=(const CString& tail) {
  text_ += tail.text_;
  return *this;
}

CString& CString::operator+=(char tail) {
  text_ += tail;
  return *this;
}

CString operator+(const CString& left, const CString& right) {
  CString sum = left;
  return sum += right;
}

CString operator+(const CString& left, char right) {
  CString sum = left;
  return sum += right;
}

int CString::Compare(const char* other) const {
  return text_.compare(other != nullptr ? other : "");
}

int CString::Find(char character, int start) const {
  return indexOrNone(text_.find(character, notNegative(start)));
}

int CString::Find(const char* part, int start) const {
  return indexOrNone(text_.find(part != nullptr ? part : "", notNegative(start)));
}

int CString::ReverseFind(char character) const {
  return indexOrNone(text_.rfind(character));
}

CString CString::Left(int count) const {
  return CString(View().substr(0, notNegative(count)));
}

CString CString::Right(int count) const {
  const std::size_t kept = std::min(notNegative(count), text_.size());
  return CString(View().substr(text_.size() - kept));
}

CString CString::Mid(int first) const {
  return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
  const std::size_t start = std::min(notNegative(first), text_.size());
  return CString(View().substr(start, notNegative(count)));
}

void CString::MakeUpper() {
  for (char& character : text_) {
    if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
  }
}

std::ostream& operator<<(std::ostream& out, const CString& text) {
  return out << text.View();
}
