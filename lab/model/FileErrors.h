#pragma once

#include <new>
#include <stdexcept>
#include <string_view>

#include "lab/Error.h"
#include "vex2/framework/CFileException.h"

namespace vex2::lab {

/// Does the work on the file at `path`. What the library and the standard library throw there
/// becomes an error that names the file.
template <typename Work>
auto WithFileErrors(std::string_view path, const Work& work) {
  constexpr const char* kNoRoom = "there is not enough memory to read it";
  try {
    return work();
  } catch (const CFileException& refusal) {
    throw SystemError(path, refusal.GetError(), refusal.GetOffset());
  } catch (const std::bad_alloc&) {
    throw Error(ErrorCode::kNoMemory, path, kNoRoom);
  } catch (const std::length_error&) {
    throw Error(ErrorCode::kNoMemory, path, kNoRoom);
  }
}

}  // namespace vex2::lab
