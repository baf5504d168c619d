#include "lab/picture/Shortened.h"

#include <cstddef>
#include <vector>

namespace vex2::lab {

namespace {

std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) ++end;
    characters.push_back(text.substr(begin, end - begin));
    begin = end;
  }
  return characters;
}

}  // namespace

double WidthOfText(std::string_view text, WidthOfCharacter* widthOf) {
  double width = 0;
  for (const std::string_view character : charactersOf(text)) width += widthOf(character);
  return width;
}

std::string Shortened(std::string_view text, double room, WidthOfCharacter* widthOf,
                      std::string_view ellipsis) {
  if (WidthOfText(text, widthOf) <= room) return std::string(text);
  const auto characters = charactersOf(text);
  std::string front;
  std::string back;
  double left = room - WidthOfText(ellipsis, widthOf);
  std::size_t first = 0;
  std::size_t last = characters.size();
  // Take characters from the front and from the back in turn.
  for (bool isFront = true; first < last; isFront = !isFront) {
    const std::string_view next = isFront ? characters[first++] : characters[--last];
    left -= widthOf(next);
    if (left < 0) break;
    isFront ? front.append(next) : back.insert(0, next);
  }
  return front + std::string(ellipsis) + back;
}

}  // namespace vex2::lab
