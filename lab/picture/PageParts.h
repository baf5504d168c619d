#pragma once

#include <string_view>

/// The files of page/ and the library that draws the curves, as they are when the library is built.
namespace vex2::lab::page {

extern const std::string_view kHtml;  ///< with {{names}} where the other parts belong
extern const std::string_view kStyle;
extern const std::string_view
    kScripts;                         ///< all scripts, in the order in which they need each other
extern const std::string_view kIcon;  ///< of the browser's tab, SVG

}  // namespace vex2::lab::page
