#pragma once

#include <new>
#include <stdexcept>

#include "vex2/framework/CFileException.h"
#include "vex2/framework/FunctionRef.h"
#include "vex2/storage/LastFileError.h"

namespace vex2 {

/// Runs `operation` and returns its status. If the system refuses something or memory runs out,
/// returns `failure` and keeps the reason in `last`, which may be null for operations that touch no
/// file.
inline int StatusOf(int failure, FunctionRef<int()> operation, LastFileError* last = nullptr) {
  try {
    return operation();
  } catch (const CFileException& refusal) {
    if (last != nullptr) last->Note(refusal);
  } catch (const std::bad_alloc&) {
    if (last != nullptr) last->NoteNoMemory();
  } catch (const std::length_error&) {
    if (last != nullptr) last->NoteNoMemory();
  }
  return failure;
}

}  // namespace vex2
