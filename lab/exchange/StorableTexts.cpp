#include "lab/exchange/StorableTexts.h"

#include <array>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

constexpr std::array<std::string_view, 25> kGreek = {
    "alpha", "beta",   "gamma",   "delta", "epsilon", "zeta",    "eta",  "theta", "iota",
    "kappa", "lambda", "mu",      "nu",    "xi",      "omicron", "pi",   "rho",   "sigma",
    "sigma", "tau",    "upsilon", "phi",   "chi",     "psi",     "omega"};
constexpr std::uint32_t kAlpha = 0x3B1;
constexpr std::uint32_t kCapitalAlpha = 0x391;

// Removes the first UTF-8 character from the text and returns it. Returns U+FFFD for bytes that are
// not UTF-8.
std::uint32_t takeCharacter(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  text.remove_prefix(1);
  if (first < 0x80U) return first;
  const std::size_t more = first >= 0xF0U ? 3 : first >= 0xE0U ? 2 : first >= 0xC0U ? 1 : 0;
  std::uint32_t code = first & (0x3FU >> more);
  for (std::size_t i = 0; i < more; ++i) {
    if (text.empty() || (static_cast<unsigned char>(text.front()) & 0xC0U) != 0x80U) return 0xFFFD;
    code = code << 6U | (static_cast<unsigned char>(text.front()) & 0x3FU);
    text.remove_prefix(1);
  }
  return more == 0 ? 0xFFFD : code;
}

std::string storable(std::uint32_t code) {
  if (code == 0x3BC) return "\xC2\xB5";  // Latin-1 has the micro sign for this Greek letter
  if (code >= kAlpha && code < kAlpha + kGreek.size()) return std::string(kGreek[code - kAlpha]);
  if (code >= kCapitalAlpha && code < kCapitalAlpha + kGreek.size()) {
    std::string name(kGreek[code - kCapitalAlpha]);
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return name;
  }
  if (code == 0x2010 || code == 0x2011 || code == 0x2013 || code == 0x2014 || code == 0x2212) {
    return "-";
  }
  return "?";
}

}  // namespace

std::string StorableText(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view before = text;
    const std::uint32_t code = takeCharacter(text);
    if (code != 0 && code <= 0xFFU) {
      result += before.substr(0, before.size() - text.size());
    } else {
      result += storable(code);
    }
  }
  return result;
}

const std::string& StorableNames::Take(const std::string& name) {
  const auto [entry, isNew] = stored_.emplace(name, std::string());
  if (!isNew) return entry->second;
  const std::string plain = StorableText(name);
  std::string stored = plain;
  for (int turn = 2; !taken_.insert(stored).second; ++turn) {
    stored = plain + " (" + std::to_string(turn) + ")";
  }
  if (stored != name) losses_.AddChanged(what_, "'" + name + "' is '" + stored + "'");
  entry->second = std::move(stored);
  return entry->second;
}

}  // namespace vex2::lab
