#pragma once

#include <array>
#include <string_view>

namespace vex2::lab {

/// The colours of all pictures. People who cannot distinguish red from green, or blue from yellow,
/// can still distinguish the colours of one list: as they see them, any two are more than 11 apart
/// in CIELAB.
struct Palette {
  /// For groups, in this order, on a light background.
  static constexpr std::array<std::string_view, 8> kLight = {
      "#0072b2", "#d55e00", "#009e73", "#cc6aa5", "#dd9b00", "#45a8e6", "#4a137e", "#5a6470"};
  /// For the same groups on a dark background.
  static constexpr std::array<std::string_view, 8> kDark = {
      "#5aa9e6", "#ff7f3a", "#1fae84", "#f59ac9", "#ffd24a", "#c4e8ff", "#8f6bff", "#8a95a1"};
  /// For numbers from low to high on a light background: dark blue to sand.
  static constexpr std::array<std::string_view, 8> kScaleLight = {
      "#00224e", "#123570", "#3b496c", "#575d6d", "#707173", "#8a8678", "#a59c74", "#c3b369"};
  /// For numbers from low to high on a dark background: slate to yellow.
  static constexpr std::array<std::string_view, 7> kScaleDark = {
      "#4b5f8f", "#66708a", "#808285", "#979280", "#b3a872", "#d3c164", "#fee838"};
};

}  // namespace vex2::lab
