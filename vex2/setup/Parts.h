#pragma once

#include <memory>
#include <stdexcept>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"

/// Helpers that convert a caller's record to components and components to a record. Internal.
namespace vex2 {

/// Adds a component constructed from `arguments`. Throws `std::length_error` if the list is full: a
/// record is converted completely or not at all.
template <typename Component, typename... Arguments>
void AddPart(CContainerComp& list, Arguments&&... arguments) {
  if (!list.AddChild(std::make_unique<Component>(std::forward<Arguments>(arguments)...))) {
    throw std::length_error("a list of records is full");
  }
}

/// Returns `component` as a `Component` if that is exactly its class, otherwise null. The tag does
/// not determine the class, because a placeholder may have any tag. Faster than `dynamic_cast`,
/// which also accepts derived classes.
template <typename Component>
const Component* PartAs(const CComponent& component) {
  return typeid(component) == typeid(Component) ? static_cast<const Component*>(&component)
                                                : nullptr;
}

/// The characters of a text, without a trailing zero byte; valid as long as the component. Unlike
/// `GetValueString`, it does not change the component or the lengths of the lists around it.
inline std::string_view PartText(const CBlockValueComp& block) {
  const auto* data = reinterpret_cast<const char*>(block.GetData());
  std::string_view text(data, data != nullptr ? block.GetLength() : 0);
  if (text.ends_with('\0')) text.remove_suffix(1);
  return text;
}

}  // namespace vex2
