#pragma once

#include <memory>
#include <stdexcept>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/framework/CString.h"

/// What components share that are made from a record and turned back into one.
namespace vex2 {

/// Adds a component that is made of these arguments. A list that cannot hold one more throws
/// `std::length_error`: a record is taken over whole or not at all.
template <typename Component, typename... Arguments>
void AddPart(CContainerComp& list, Arguments&&... arguments) {
  if (!list.AddChild(std::make_unique<Component>(std::forward<Arguments>(arguments)...))) {
    throw std::length_error("a list of records is full");
  }
}

/// The component as one of just this class, null when it is of another. A tag does not tell the
/// class: a placeholder may have any. Cheaper than a cast that also looks for derived classes.
template <typename Component>
const Component* PartAs(const CComponent& component) {
  return typeid(component) == typeid(Component) ? static_cast<const Component*>(&component)
                                                : nullptr;
}

/// The characters of a block without the zero byte that may end it; valid as long as the block.
/// Unlike `GetValueString` it leaves the block as it is, and so the lengths of the lists around it.
inline std::string_view PartText(const CBlockValueComp& block) {
  const auto* data = reinterpret_cast<const char*>(block.GetData());
  std::string_view text(data, data != nullptr ? block.GetLength() : 0);
  if (text.ends_with('\0')) text.remove_suffix(1);
  return text;
}

}  // namespace vex2
