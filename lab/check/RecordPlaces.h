#pragma once

#include <string_view>
#include <vector>

namespace vex2::lab {

/// Whether writers put records with this tag directly into a list with the tag `list`. If `list` is
/// empty: whether they put them directly into a document or plate. Readers accept every tag
/// everywhere.
bool StandsIn(std::string_view list, std::string_view tag);

/// The tags of the lists into which writers put records with this tag directly, the usual list
/// first. An empty tag stands for the document itself. Empty if no writer uses `tag`.
std::vector<std::string_view> HomesOf(std::string_view tag);

/// The list from `HomesOf(tag)` that best fits `near`, the tag of an open list or of the next
/// record: the first one that is `near`, can hold `near`, or can be in `near`. If none fits, the
/// first list; empty if `HomesOf(tag)` is empty.
std::string_view HomeOf(std::string_view tag, std::string_view near = {});

}  // namespace vex2::lab
