#pragma once

#include <string_view>
#include <vector>

namespace vex2::lab {

/// Whether writers put records with this tag right into a list with the tag `list`; into a document
/// or a plate itself for an empty `list`. Readers take every tag everywhere.
bool StandsIn(std::string_view list, std::string_view tag);

/// The lists that writers put the tag right into, the usual one first; an empty one for the
/// document itself. None for tags that no writer uses.
std::vector<std::string_view> HomesOf(std::string_view tag);

/// The one of them that `near` is, stands in, or holds: a list that is open, or the record behind.
/// Else the first; empty where there is none.
std::string_view HomeOf(std::string_view tag, std::string_view near = {});

}  // namespace vex2::lab
