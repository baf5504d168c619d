#include "lab/csv/MeasuredTexts.h"

#include <algorithm>

namespace vex2::lab {

MeasuredTexts::MeasuredTexts(const ReadingScale& scale)
    : scale_(scale), texts_(std::make_unique<Text[]>(kStoredNumbers)) {}

void MeasuredTexts::AppendTo(std::string& out, std::uint16_t stored) {
  Text& text = texts_[stored];
  if (text.length == 0) {
    const std::string made = scale_.MeasuredText(stored);
    if (made.size() > text.characters.size()) {
      out += made;
      return;
    }
    std::copy(made.begin(), made.end(), text.characters.begin());
    text.length = static_cast<std::uint8_t>(made.size());
  }
  out.append(text.characters.data(), text.length);
}

}  // namespace vex2::lab
