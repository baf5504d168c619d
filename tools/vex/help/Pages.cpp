#include "tools/vex/help/Pages.h"

#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tools/vex/Terminal.h"
#include "tools/vex/help/Completion.h"
#include "tools/vex/help/ManPage.h"

namespace vex2::tool {

namespace {

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file;
  file.exceptions(std::ios::failbit | std::ios::badbit);
  file.open(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
}

}  // namespace

void WritePages(const CommandText& vex, const std::string& folder) {
  const std::filesystem::path root = folder;
  writeFile(root / "man1" / "vex.1", MainManPage(vex));
  for (const CommandText& command : vex.commands) {
    writeFile(root / "man1" / (ManPageName(command) + ".1"), ManPageOf(command));
  }
  writeFile(root / "bash" / "vex", BashCompletion(vex));
  writeFile(root / "zsh" / "_vex", ZshCompletion(vex));
  writeFile(root / "fish" / "vex.fish", FishCompletion(vex));
}

bool OpenManPage(const std::string& page) {
  // On a terminal that cannot erase lines, pagers first stop and wait for a key.
  if (!Terminal::Out().CanRewriteLines()) return false;
  // Check whether man exists before the page is written to a pipe; the status of the shell says it.
  if (std::system("command -v man >/dev/null 2>&1") != 0) return false;
  // If the user closes the pager before it has read the whole page, the write must not end the
  // command.
  const auto previous = std::signal(SIGPIPE, SIG_IGN);
  const std::string width = std::to_string(Terminal::Out().Width());
  std::FILE* const man = ::popen(("MANWIDTH=" + width + " man -l -").c_str(), "w");
  bool isShown = man != nullptr;
  if (man != nullptr) {
    std::fwrite(page.data(), 1, page.size(), man);
    const int status = ::pclose(man);
    isShown = status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  std::signal(SIGPIPE, previous);
  return isShown;
}

}  // namespace vex2::tool
