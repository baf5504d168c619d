#include "lab/csv/DecimalMark.h"

#include <fmt/core.h>

#include <algorithm>

namespace vex2::lab {

namespace {

constexpr std::string_view kDigits = "0123456789";

std::size_t countOf(std::string_view text, char character) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), character));
}

bool looksLikeNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789.,+-eE") == std::string_view::npos &&
         text.find_first_of(kDigits) != std::string_view::npos;
}

// Whether the mark may also separate thousands. It may if one to three digits are before it, the
// first of them not 0, and exactly three digits are after it.
bool mayPartThousands(std::string_view text, std::size_t markAt) {
  constexpr std::size_t kGroup = 3;
  std::string_view before = text.substr(0, markAt);
  if (before.starts_with('-') || before.starts_with('+')) before.remove_prefix(1);
  const std::string_view behind = text.substr(markAt + 1);
  const auto isDigits = [](std::string_view part) {
    return part.find_first_not_of(kDigits) == std::string_view::npos;
  };
  return !before.empty() && before.size() <= kGroup && before.front() != '0' && isDigits(before) &&
         behind.size() == kGroup && isDigits(behind);
}

// The decimal mark, if this number shows which one it is; otherwise 0.
char toldBy(std::string_view text) {
  if (!looksLikeNumber(text) || countOf(text, '.') + countOf(text, ',') != 1) return 0;
  const std::size_t at = text.find_first_of(".,");
  return mayPartThousands(text, at) ? '\0' : text[at];
}

char toldBy(std::span<const std::string_view> fields) {
  char told = 0;
  for (const std::string_view field : fields) {
    const char mark = toldBy(field);
    if (mark != 0 && told != 0 && mark != told) return 0;
    if (mark != 0) told = mark;
  }
  return told;
}

std::string nameOf(char mark) {
  return mark == ',' ? "comma" : "point";
}

}  // namespace

DecimalMark::Plain DecimalMark::Read(std::string_view text,
                                     std::span<const std::string_view> beside) {
  const std::size_t marks = countOf(text, '.') + countOf(text, ',');
  if (marks == 0 || !looksLikeNumber(text)) return {std::string(text), ""};
  if (countOf(text, '.') > 0 && countOf(text, ',') > 0) {
    return {"", "has a point and a comma; write numbers without a mark between thousands"};
  }
  const char found = text[text.find_first_of(".,")];
  if (mark_ == 0) mark_ = toldBy(text);
  if (mark_ == 0) mark_ = toldBy(beside);
  if (mark_ == 0) {
    return {"", fmt::format("may have a decimal {} or a mark between thousands", nameOf(found)),
            ErrorRemedy::kGiveDecimalMark};
  }
  if (found != mark_) {
    return {
        "",
        fmt::format("has a {}, but decimals are marked by a {} here", nameOf(found), nameOf(mark_)),
        found == ',' ? ErrorRemedy::kTakeDecimalComma : ErrorRemedy::kTakeDecimalPoint};
  }
  std::string plain(text);
  std::replace(plain.begin(), plain.end(), ',', '.');
  return {plain, ""};
}

}  // namespace vex2::lab
