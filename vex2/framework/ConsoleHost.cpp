#include "vex2/framework/ConsoleHost.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>

namespace vex2 {
namespace {

constexpr std::string_view kSpaces = " \t\r\v\f";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kFileName = "vex2/settings.ini";

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kSpaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

char lowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool sameName(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, lowerCase, lowerCase);
}

std::optional<std::uint32_t> toNumber(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

Setting toSetting(std::string_view value) {
  if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
    return std::string(value.substr(1, value.size() - 2));
  }
  if (const auto number = toNumber(value)) return *number;
  return std::string(value);
}

// Finds a setting in the lines of one file.
Setting findInText(std::string_view text, const std::string& key, const std::string& name) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  Setting found;
  bool inSection = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (line.front() == '[') {
      inSection = line.back() == ']' && sameName(trim(line.substr(1, line.size() - 2)), key);
      if (inSection) found = NoValue();
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!inSection || equals == std::string_view::npos) continue;
    if (sameName(trim(line.substr(0, equals)), name)) {
      return toSetting(trim(line.substr(equals + 1)));
    }
  }
  return found;
}

// Reads only regular files: reading a pipe or a terminal could block.
std::string readText(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return {};
  std::ifstream file(path, std::ios::binary);
  const auto size =
      std::min<std::uintmax_t>(std::filesystem::file_size(path, ignored), kSettingsFileLimit);
  std::string text(static_cast<std::size_t>(size), '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
  return text;
}

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string userFile() {
  const std::string folder = environment("XDG_CONFIG_HOME");
  if (folder.starts_with('/')) return folder + '/' + kFileName;
  const std::string home = environment("HOME");
  return home.empty() ? std::string() : home + "/.config/" + kFileName;
}

}  // namespace

std::vector<std::string> SettingsFiles(bool localMachine) {
  std::vector<std::string> files;
  if (localMachine) files.push_back(std::string("/etc/") + kFileName);
  if (std::string file = userFile(); !file.empty()) files.push_back(std::move(file));
  return files;
}

Setting FindSetting(std::span<const std::string> files, const std::string& key,
                    const std::string& name) {
  Setting found;
  for (const std::string& file : files) {
    Setting setting = findInText(readText(file), key, name);
    if (std::holds_alternative<std::monostate>(setting)) continue;
    found = std::move(setting);
    if (!std::holds_alternative<NoValue>(found)) break;
  }
  return found;
}

}  // namespace vex2
