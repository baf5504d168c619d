#include "lab/model/PlateLayout.h"

#include <algorithm>

#include "lab/Text.h"

namespace vex2::lab {
namespace {

constexpr std::uint32_t kLetters = 26;

}  // namespace

std::string PlateLayout::NameOf(unsigned well) const {
  return WellName(well, columns);
}

std::optional<unsigned short> PlateLayout::Find(std::string_view wellName) const {
  const auto number = WellNumber(wellName, rows, columns);
  if (!number) return std::nullopt;
  return static_cast<unsigned short>(*number);
}

std::optional<unsigned short> PlateLayout::FindAsWritten(std::string_view wellName) const {
  return Find(PlainWellName(wellName));
}

std::string PlainWellName(std::string_view wellName) {
  std::string name;
  for (const char letter : wellName) {
    const bool isLower = letter >= 'a' && letter <= 'z';
    name += isLower ? static_cast<char>(letter - 'a' + 'A') : letter;
  }
  const std::size_t column =
      std::min(name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), name.size());
  const std::size_t digits = std::min(name.find_first_not_of('0', column), name.size());
  name.erase(column, digits - column);
  return name;
}

std::string WellName(std::uint32_t number, std::uint32_t columns) {
  if (number == 0 || columns == 0) return std::to_string(number);
  std::string name = std::to_string((number - 1) % columns + 1);
  for (std::uint32_t row = (number - 1) / columns + 1; row > 0; row = (row - 1) / kLetters) {
    name.insert(name.begin(), static_cast<char>('A' + (row - 1) % kLetters));
  }
  return name;
}

std::optional<std::uint32_t> WellNumber(std::string_view name, std::uint32_t rows,
                                        std::uint32_t columns) {
  std::uint32_t row = 0;
  while (!name.empty() && name.front() >= 'A' && name.front() <= 'Z' && row <= rows) {
    row = row * kLetters + static_cast<std::uint32_t>(name.front() - 'A') + 1;
    name.remove_prefix(1);
  }
  const auto column = NumberIn<std::uint32_t>(name);
  if (row == 0 || row > rows || !column || *column == 0 || *column > columns) return std::nullopt;
  if (name.front() == '0') return std::nullopt;
  return (row - 1) * columns + *column;
}

}  // namespace vex2::lab
