#pragma once

#include <cstddef>

/// The interface of the module that draws SVG as PNG and PDF. It is separate from the library
/// because its libraries take longer to load than most commands run.
namespace vex2::lab {

/// Takes bytes of the image or of an error text. `target` is the `image` or `error` that was passed
/// to `DrawImage`.
using TakeBytes = void(void* target, const char* bytes, std::size_t size);

/// Draws the SVG as PNG, or as PDF if `isPdf`. Passes the image to `take` with `image`. If it
/// fails, passes the reason to `take` with `error`, and returns false.
using DrawImage = bool(const char* svg, std::size_t size, bool isPdf, TakeBytes* take, void* image,
                       void* error);

/// The name of the function in the module.
inline constexpr const char* kDrawImage = "vex2_draw_image";

}  // namespace vex2::lab
