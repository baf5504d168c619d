#pragma once

#include <type_traits>
#include <utility>

#include "vex2/framework/Language.h"

namespace vex2 {

template <typename Signature>
class FunctionRef;

/// A reference to a callable, valid during one call. It does not own the callable and, unlike
/// `std::function`, never allocates, so that passing an operation cannot run out of memory.
template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
 public:
  /// Refers to `callable`, which must outlive every call.
  template <typename Callable>
  requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef>)
      FunctionRef(const Callable& callable)
      : callable_(&callable), call_([](const void* object, Arguments... arguments) -> Result {
          return (*static_cast<const Callable*>(object))(std::forward<Arguments>(arguments)...);
        }) {}

  /// Calls the callable.
  Result operator()(Arguments... arguments) const {
    return call_(callable_, std::forward<Arguments>(arguments)...);
  }

 private:
  const void* callable_;
  Result (*call_)(const void*, Arguments...);
};

}  // namespace vex2
