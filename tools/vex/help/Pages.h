#pragma once

#include <string>

#include "tools/vex/help/CommandTable.h"

namespace vex2::tool {

/// Writes the pages and completions that are installed with the command into `folder`: the man
/// pages into man1/, the completions as bash/vex, zsh/_vex and fish/vex.fish. Overwrites older
/// files. Throws `std::system_error` or `std::ios_base::failure`.
void WritePages(const CommandText& vex, const std::string& folder);

/// Opens a man page with the program man, and waits until the user closes it. Returns false without
/// showing anything if standard output is not a terminal or man cannot show the page.
bool OpenManPage(const std::string& page);

}  // namespace vex2::tool
