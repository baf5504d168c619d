#pragma once

#include <span>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"
#include "vex2/framework/Host.h"

/// @file
/// The console host's settings store. Settings are stored in INI files. A section is a key, whose
/// parts are separated by backslashes, and each line in it is a setting:
///
///     [Software\Orbanet Scientific\Vex2]
///     ; comments begin with a semicolon or a hash sign
///     Blue LED Array Illumination = 1
///     Colour = 0xFF8800
///     Folder = "C:\data"
/// A value, after the first equals sign, is a number if it is a decimal number, or a hexadecimal
/// one with 0x, of up to 32 bits; otherwise it is a text. A text in double quotes is never a
/// number, and keeps its spaces. Spaces around keys, names and values are ignored, and so is the
/// case of ASCII letters in keys and names. The first matching line counts. All other lines are
/// skipped, and so are lines after the first `kSettingsFileLimit` bytes of a file.
namespace vex2 {

/// Bytes at the start of a settings file that are read. Settings files are small; a larger file is
/// something else.
inline constexpr std::size_t kSettingsFileLimit = std::size_t{1024} * 1024;

/// The files that hold the settings of the current user, or of the machine, best first. The user's
/// is `vex2/settings.ini` under `$XDG_CONFIG_HOME`, where that is an absolute path, else under
/// `$HOME/.config`. The machine's is `/etc/vex2/settings.ini` and then the user's, so that no
/// administrator is needed to try a setting.
VEX2_API std::vector<std::string> SettingsFiles(bool localMachine);

/// The setting `name` under `key` in the first of `files` that has it. If none has it: `NoValue` if
/// a file has the section `key`, otherwise nothing (`std::monostate`). A file that is missing, is
/// not a regular file or cannot be read has no settings.
VEX2_API Setting FindSetting(std::span<const std::string> files, const std::string& key,
                             const std::string& name);

}  // namespace vex2
