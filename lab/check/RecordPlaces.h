#pragma once

#include <string_view>
#include <vector>

namespace vex2::lab {

/// Whether writers put records with this tag directly into a list with the tag `list`, or, if
/// `list` is empty, into a document or plate itself. Readers take every tag everywhere.
bool StandsIn(std::string_view list, std::string_view tag);

/// The lists into which writers put the tag directly, the usual one first; an empty name stands for
/// the document itself. Returns none for tags that no writer uses.
std::vector<std::string_view> HomesOf(std::string_view tag);

/// The list from `HomesOf(tag)` that fits `near`, the tag of an open list or of the next record:
/// the list is `near`, can hold `near`, or can be in `near`. Otherwise the first list; empty if
/// there is none.
std::string_view HomeOf(std::string_view tag, std::string_view near = {});

}  // namespace vex2::lab
