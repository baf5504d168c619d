#pragma once

#include <span>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"
#include "vex2/framework/Host.h"

/// @file
/// The console host's settings store, which keeps settings in INI files. The name of a section is a
/// key, with backslashes between its parts. Each line of the section is a setting:
///
///     [Software\Orbanet Scientific\Vex2]
///     ; comments begin with a semicolon or a hash sign
///     Blue LED Array Illumination = 1
///     Colour = 0xFF8800
///     Folder = "C:\data"
/// A value follows the first equals sign. It is a number if it is a decimal number, or a
/// hexadecimal number with 0x, of at most 32 bits; otherwise it is a text. A text in double quotes
/// is never a number, and keeps its spaces. Spaces around keys, names and values are ignored, and
/// so is the case of ASCII letters in keys and names. If several lines match, the first one is
/// used. All other lines are skipped, and so are lines after the first `kSettingsFileLimit` bytes
/// of a file.
namespace vex2 {

/// The number of bytes that are read from the start of a settings file. Settings files are small,
/// so a larger file is probably not one.
inline constexpr std::size_t kSettingsFileLimit = std::size_t{1024} * 1024;

/// The files that hold the settings of the current user or of the machine, in the order in which
/// they are searched. The user's file is `vex2/settings.ini` in the folder `$XDG_CONFIG_HOME` if
/// that is an absolute path, otherwise in `$HOME/.config`. The settings of the machine are in
/// `/etc/vex2/settings.ini`, then in the user's file, so that a user can try a setting without an
/// administrator.
VEX2_API std::vector<std::string> SettingsFiles(bool localMachine);

/// The setting `name` under `key` in the first of `files` that has it. If no file has it, returns
/// `NoValue` if a file has the section `key`, otherwise nothing (`std::monostate`). A file that is
/// missing, is not a regular file or cannot be read has no settings.
VEX2_API Setting FindSetting(std::span<const std::string> files, const std::string& key,
                             const std::string& name);

}  // namespace vex2
