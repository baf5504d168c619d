#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The one of `names` that a user who typed `word` most likely meant. It is the name that is the
/// fewest edits away; an edit is a missing, surplus or different letter, or two swapped letters. If
/// no name is near enough, but exactly one begins with `word`, the result is that name; otherwise
/// nothing. Never returns `word` itself.
std::optional<std::string> NearestName(std::string_view word, std::span<const std::string> names);

/// "; did you mean 'info'?" for the nearest name; empty if no name is near.
std::string DidYouMean(std::string_view word, std::span<const std::string> names);

}  // namespace vex2::lab
