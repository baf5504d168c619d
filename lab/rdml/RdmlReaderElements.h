#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace vex2::lab::rdml {

class RdmlReader;

/// The functions to call at the beginning and at the end of an element. `text` is the text of the
/// element at its end, and empty at its beginning.
struct RdmlElement {
  using Work = void (*)(RdmlReader& reader, std::string_view text);

  Work begin = nullptr;
  Work end = nullptr;
};

/// The functions for the element at this path, such as "rdml/sample/type"; null if documents do not
/// store such elements.
const RdmlElement* FindElement(const std::string& path);

}  // namespace vex2::lab::rdml
