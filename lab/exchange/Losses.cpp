#include "lab/exchange/Losses.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kLongestExample = 120;

// Shortens a long text so that it does not fill the screen. Does not cut characters in half.
std::string shortened(const std::string& text) {
  if (text.size() <= kLongestExample) return text;
  std::size_t end = kLongestExample;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "...";
}

void note(std::vector<Loss>& losses, std::string_view what, const std::string& example,
          std::uint64_t count, bool isChanged) {
  if (count == 0) return;
  const auto found = std::find_if(losses.begin(), losses.end(), [&](const Loss& loss) {
    return loss.what == what && loss.isChanged == isChanged;
  });
  if (found != losses.end()) {
    found->count += count;
    return;
  }
  losses.push_back({std::string(what), count, shortened(example), isChanged});
}

}  // namespace

void Losses::Add(std::string_view what, const std::string& example, std::uint64_t count) {
  note(losses, what, example, count, false);
}

void Losses::AddChanged(std::string_view what, const std::string& example, std::uint64_t count) {
  note(losses, what, example, count, true);
}

// The count follows the kind in parentheses, so that the plural reads well for a single value too.
std::string TextOf(const Loss& loss, bool hasDocument) {
  const std::string values = fmt::format("{} ({})", loss.what, loss.count) +
                             (loss.example.empty() ? "" : ", as " + loss.example);
  if (!hasDocument) return (loss.isChanged ? "changed: " : "lost: ") + values;
  return (loss.isChanged ? "other programs see changed: " : "other programs do not see: ") + values;
}

}  // namespace vex2::lab
