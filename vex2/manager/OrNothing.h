#pragma once

#include <new>

/// Internal.
namespace vex2 {

/// What `ask` answers; null, 0 or false where memory runs out on the way. For operations that have
/// no status to tell it with.
template <class Ask>
auto OrNothing(Ask ask) -> decltype(ask()) {
  try {
    return ask();
  } catch (const std::bad_alloc&) {
    return decltype(ask())();
  }
}

}  // namespace vex2
