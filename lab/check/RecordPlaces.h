#pragma once

#include <string_view>
#include <vector>

namespace vex2::lab {

/// Whether writers put records with this tag directly into a list with the tag `list`. An empty
/// `list` means the document or a plate itself. Readers accept every tag everywhere.
bool StandsIn(std::string_view list, std::string_view tag);

/// The tags of all lists for which `StandsIn(list, tag)` holds, the usual list first. An empty tag
/// means the document itself. Empty if no writer uses `tag`.
std::vector<std::string_view> HomesOf(std::string_view tag);

/// The list from `HomesOf(tag)` that best fits `near`, which is the tag of an open list or of the
/// next record. A list fits if it is `near` itself, can hold `near`, or can be in `near`. Returns
/// the first list that fits; if none does, the first of all; if there are none, an empty text.
std::string_view HomeOf(std::string_view tag, std::string_view near = {});

}  // namespace vex2::lab
