#include "lab/Nearest.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace vex2::lab {

namespace {

// Longer than every name; limits the work for malicious words.
constexpr std::size_t kLongestWord = 40;

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& character : result) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return result;
}

// The number of edits that turn one word into the other; swapping two neighbours counts as one.
std::size_t distance(const std::string& from, const std::string& to) {
  std::vector<std::vector<std::size_t>> edits(from.size() + 1,
                                              std::vector<std::size_t>(to.size() + 1));
  for (std::size_t i = 0; i <= from.size(); ++i) edits[i][0] = i;
  for (std::size_t j = 0; j <= to.size(); ++j) edits[0][j] = j;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t other = from[i - 1] != to[j - 1] ? 1 : 0;
      edits[i][j] =
          std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, edits[i - 1][j - 1] + other});
      if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
        edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
      }
    }
  }
  return edits[from.size()][to.size()];
}

std::optional<std::string> onlyWithStart(const std::string& start,
                                         std::span<const std::string> names) {
  constexpr std::size_t kLeastStart = 3;
  if (start.size() < kLeastStart) return std::nullopt;
  std::optional<std::string> found;
  for (const std::string& name : names) {
    if (!lower(name).starts_with(start)) continue;
    if (found) return std::nullopt;
    found = name;
  }
  return found;
}

}  // namespace

std::optional<std::string> NearestName(std::string_view word, std::span<const std::string> names) {
  if (word.empty() || word.size() > kLongestWord) return std::nullopt;
  const std::string typed = lower(word);
  const std::size_t most = std::max<std::size_t>(1, typed.size() / 3);
  std::optional<std::string> nearest;
  std::size_t least = most + 1;
  for (const std::string& name : names) {
    if (name == word) continue;
    const std::size_t edits = distance(typed, lower(name));
    // With as many edits as it has letters, a word can become any other word.
    if (edits >= least || edits >= typed.size()) continue;
    least = edits;
    nearest = name;
  }
  return nearest ? nearest : onlyWithStart(typed, names);
}

std::string DidYouMean(std::string_view word, std::span<const std::string> names) {
  const auto name = NearestName(word, names);
  return name ? fmt::format("; did you mean '{}'?", *name) : std::string();
}

}  // namespace vex2::lab
