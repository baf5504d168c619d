#pragma once

#include <new>

/// Internal.
namespace vex2 {

/// Returns what `ask` returns, or null, 0 or false if memory runs out. For operations that have no
/// status to report this.
template <class Ask>
auto OrNothing(Ask ask) -> decltype(ask()) {
  try {
    return ask();
  } catch (const std::bad_alloc&) {
    return decltype(ask())();
  }
}

}  // namespace vex2
