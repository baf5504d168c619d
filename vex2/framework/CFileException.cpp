#include "vex2/framework/CFileException.h"

#include <system_error>
#include <utility>

CFileException::CFileException(int error, std::string path, std::uint64_t offset,
                               vex2::FileOperation operation)
    : error_(error), operation_(operation), offset_(offset), path_(std::move(path)) {
  text_ = path_ + ": at byte " + std::to_string(offset_) + ": " +
          std::generic_category().message(error_);
}

const char* CFileException::what() const noexcept {
  return text_.c_str();
}
