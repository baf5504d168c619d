#pragma once

#include <string_view>

/// The files in page/ and the library that draws the curves, as they were when the library was
/// built.
namespace vex2::lab::page {

extern const std::string_view kHtml;  ///< contains {{names}} in place of the other parts
extern const std::string_view kStyle;
extern const std::string_view kScripts;  ///< all scripts, each after the scripts that it needs
extern const std::string_view kIcon;     ///< SVG icon of the browser tab

}  // namespace vex2::lab::page
