#pragma once

#include <cerrno>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "lab/SystemError.h"
#include "vex2/framework/CFileException.h"
#include "vex2/framework/FileError.h"

namespace vex2::lab {

/// Calls `work`, which works on the document at `path`, and returns its result. Turns whatever it
/// throws into an `Error` that names a file.
template <typename Work>
auto Guarded(const std::string& path, Work&& work) -> decltype(std::forward<Work>(work)()) {
  try {
    return std::forward<Work>(work)();
  } catch (const Error& error) {
    if (!error.File().empty() || path.empty()) throw;
    throw Error(error.Code(), path, error.Problem(), error.Offset(), error.Remedy(),
                error.SystemErrorNumber());
  } catch (const CFileException& failure) {
    // The offset of a failed write is in a new file that has already been removed, so leave it out.
    const bool hasOffset = failure.GetOperation() == FileOperation::kRead;
    throw SystemError(failure.GetPath().empty() ? path : failure.GetPath(), failure.GetError(),
                      hasOffset ? std::optional(failure.GetOffset()) : std::nullopt);
  } catch (const std::filesystem::filesystem_error& failure) {
    throw SystemError(path, failure.code().value());
  } catch (const std::bad_alloc&) {
    throw SystemError(path, ENOMEM);
  } catch (const std::length_error&) {
    throw SystemError(path, ENOMEM);
  } catch (const std::exception& failure) {
    throw Error(ErrorCode::kSystem, path, failure.what());
  }
}

}  // namespace vex2::lab
