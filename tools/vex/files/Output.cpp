#include "tools/vex/files/Output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "lab/model/RawFile.h"
#include "tools/vex/Errors.h"
#include "tools/vex/Interrupts.h"

namespace vex2::tool {

namespace {

bool isSameAs(const std::string& path, int handle) {
  struct stat named {};
  struct stat open {};
  return ::stat(path.c_str(), &named) == 0 && ::fstat(handle, &open) == 0 &&
         named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

bool isStandardOutput(const std::string& path) {
  return path.empty() || path == "-" || isSameAs(path, STDOUT_FILENO);
}

bool isDevice(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode);
}

}  // namespace

Output::Output(const std::string& path) : path_(path), stream_(&text_) {
  if (isStandardOutput(path)) {
    path_ = "standard output";
    stream_ = &std::cout;
  } else if (IsStandardStream(path)) {
    stream_ = &std::cerr;
  } else if (isDevice(path)) {
    errno = 0;
    device_.open(path, std::ios::binary);
    if (!device_) throw SystemError(path_, errno != 0 ? errno : EIO);
    stream_ = &device_;
  }
}

void Output::Finish() {
  if (stream_ == &text_) return replaceFile();
  FinishStream(*stream_, path_);
  if (!device_.is_open()) return;
  errno = 0;
  device_.close();
  if (!device_) throw SystemError(path_, errno != 0 ? errno : EIO);
}

void FinishStream(std::ostream& stream, const std::string& name) {
  // A stream writes nothing more after a failed write, so errno still holds the reason.
  if (stream) errno = 0;
  stream.flush();
  if (!stream) throw SystemError(name, errno != 0 ? errno : EIO);
}

void Output::replaceFile() {
  const std::string text = text_.str();
  // If the user interrupts the command from here on, the path holds the whole new file or the old
  // one, and no temporary file remains.
  const Interrupts interrupts;
  NewFile file(path_);
  file.Write(text.data(), text.size());
  file.PutInPlace();
}

bool IsStandardStream(const std::string& path) {
  return isStandardOutput(path) || isSameAs(path, STDERR_FILENO);
}

}  // namespace vex2::tool
