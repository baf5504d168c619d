#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vex2::tool {

/// A name and its explanation in a man page.
struct ManEntry {
  std::string_view name;
  std::string_view text;
};

/// The paragraphs of the man page of the command `call` ("vex" or "vex record") that are not in the
/// table of its options. Empty for a subcommand.
std::vector<std::string> ManTextOf(std::string_view call);

/// The exit codes of every command.
inline constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kExitCodes = {{
    {"0", "success"},
    {"1", "problem in a document, or in another file that was read"},
    {"2", "usage error: wrong arguments, or a path that does not exist"},
    {"3", "system error: disk, memory, locks"},
    {"130", "interrupted by the user"},
}};

inline constexpr std::array<ManEntry, 4> kEnvironment = {{
    {"COLUMNS",
     "The width of the output, unless --width is given. If neither is set, it is the width of the "
     "terminal. Text that goes to a file or a pipe is not wrapped; a plate wider than 200 columns "
     "is printed in groups of columns."},
    {"NO_COLOR",
     "If it is set and not empty, nothing is printed in color unless --color=always is given."},
    {"TERM", "If it is 'dumb', only ASCII characters are printed, without colors."},
    {"LC_ALL, LC_CTYPE, LANG",
     "If the locale does not use UTF-8, other characters than ASCII are printed as \\uNNNN."},
}};

inline constexpr std::array<ManEntry, 3> kFiles = {{
    {"~/.config/vex2/settings.ini",
     "The user's settings of the instrument. If XDG_CONFIG_HOME is set, that folder replaces "
     "~/.config."},
    {"/etc/vex2/settings.ini", "The settings of the instrument for all users."},
    {".NAME.recording",
     "In the folder of the document NAME: the lock of the program that records into it."},
}};

}  // namespace vex2::tool
