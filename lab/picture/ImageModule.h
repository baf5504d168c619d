#pragma once

#include <cstddef>

/// The interface of the module that draws SVG as PNG and PDF. It is apart from the library because
/// its own libraries take longer to load than most commands run.
namespace vex2::lab {

/// Takes bytes of the image; `target` is what `DrawImage` was given.
using TakeBytes = void(void* target, const char* bytes, std::size_t size);

/// Draws the SVG as PNG, or as PDF. Hands the image to `take`, and the reason for a failure to the
/// same as `error`. False when it fails.
using DrawImage = bool(const char* svg, std::size_t size, bool isPdf, TakeBytes* take, void* image,
                       void* error);

/// The name of that operation in the module.
inline constexpr const char* kDrawImage = "vex2_draw_image";

}  // namespace vex2::lab
