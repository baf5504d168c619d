#include "tools/vex/text/Output.h"

#include <cerrno>
#include <iostream>

#include "tools/vex/Errors.h"

namespace vex2::tool {

Output::Output(const std::string& path)
    : name_(path.empty() || path == "-" ? "standard output" : path), stream_(&std::cout) {
  if (path.empty() || path == "-") return;
  errno = 0;
  file_.open(path, std::ios::binary | std::ios::trunc);
  if (!file_) throw SystemError(name_, errno != 0 ? errno : EIO);
  stream_ = &file_;
}

void Output::Finish() {
  errno = 0;
  stream_->flush();
  if (file_.is_open()) file_.close();
  if (!*stream_) throw SystemError(name_, errno != 0 ? errno : EIO);
}

}  // namespace vex2::tool
