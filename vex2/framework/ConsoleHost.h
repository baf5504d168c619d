#pragma once

#include <span>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"
#include "vex2/framework/Host.h"

/// The console host's settings store.
///
/// Settings are kept in INI files. A section is a key, its parts separated by backslashes, and a
/// line in it is a setting:
///
///     [Software\Orbanet Scientific\Vex2]
///     ; comments begin with a semicolon or a hash sign
///     Blue LED Array Illumination = 1
///     Colour = 0xFF8800
///     Folder = "C:\data"
///
/// What stands behind the first equals sign is a number where it is one of 32 bits, decimal or
/// hexadecimal with 0x, and else a text; a text in double quotes is never a number, and keeps its
/// spaces. Spaces around keys, names and values do not count, nor does the case of ASCII letters
/// in keys and names. The first line that fits is taken. Lines that are none of this are passed
/// over, so are lines behind the first `kSettingsFileLimit` bytes of a file.
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
