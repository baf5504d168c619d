#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The one of `names` that a person who typed `word` most likely meant: the one that is the fewest
/// letters away, where a letter is missing, surplus, another, or two are swapped, or the only one
/// that begins with the word. Returns nothing if none is near. Never returns `word` itself.
std::optional<std::string> NearestName(std::string_view word, std::span<const std::string> names);

/// "; did you mean 'info'?", or nothing if no name is near.
std::string DidYouMean(std::string_view word, std::span<const std::string> names);

}  // namespace vex2::lab
