#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace vex2::lab::rdml {

class RdmlReader;

/// What to do at the beginning and at the end of an element. `text` is the text of the element at
/// its end, and empty at its beginning.
struct RdmlElement {
  using Work = void (*)(RdmlReader& reader, std::string_view text);

  Work begin = nullptr;
  Work end = nullptr;
};

/// The element at this path, as "rdml/sample/type"; null for one of which no document holds
/// anything.
const RdmlElement* FindElement(const std::string& path);

}  // namespace vex2::lab::rdml
